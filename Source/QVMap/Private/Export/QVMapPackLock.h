// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVFiles.h"

#include <memory>
#include <string>
#include <string_view>

/** A run's hold on a mod: two programs never pack, or put back, one mod at a time. Any thread. */
class FQVMapPackLock
{
public:
	/** Holds nothing. */
	FQVMapPackLock() = default;
	explicit FQVMapPackLock(std::string_view PluginName);

	/** False: another run has the mod, or the lock's folder cannot be made. */
	bool IsHeld() const { return Held != nullptr; }
	/** Why it is not held, for the user. */
	const std::string& GetObstacle() const { return Obstacle; }

private:
	std::unique_ptr<IQVFileLock> Held;
	std::string Obstacle;
};
