// SPDX-License-Identifier: MIT
#pragma once

/** The editor around the open level. Game thread. */
class IQVEditor
{
public:
	virtual ~IQVEditor() = default;

	/** Finishes all asset compilation that runs in the background and flushes the rendering commands. */
	virtual void FinishAllCompilation() = 0;
};
