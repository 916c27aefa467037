// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVAssetRegistry.h"

#include <span>

/** Changes to assets that reach into other packages. Game thread. */
class IQVAssetTools
{
public:
	virtual ~IQVAssetTools() = default;

	/**
	 * Makes every package that refers to one of the redirectors refer to what it leads to, saves it, and deletes the
	 * redirectors that nothing refers to any more. What could not be done is told by the engine itself.
	 */
	virtual void FixupReferencers(std::span<const FQVAssetData> Redirectors) = 0;
};
