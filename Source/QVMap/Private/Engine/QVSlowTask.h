// SPDX-License-Identifier: MIT
#pragma once

/** Long work that a user may watch and cancel. Game thread. */
class IQVSlowTask
{
public:
	virtual ~IQVSlowTask() = default;

	virtual bool ShouldCancel() const = 0;
};
