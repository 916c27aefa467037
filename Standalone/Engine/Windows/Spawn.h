// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Windows/Win32.h"

namespace QVStandalone
{
/** How a child starts: hidden, without input, and with nothing of ours but its output. */
struct FSpawnOptions
{
	/** Where its output and its complaints go; null: nowhere. */
	HANDLE Output = nullptr;
	/** With its windows, without our console, and on its own when we end. */
	bool bDetached = false;
	/** Empty: ours. */
	std::string WorkingFolder;
};

struct FSpawned
{
	QVFormats::FWinHandle Process;
	/** The child with all that it starts; none of a detached one. */
	QVFormats::FWinHandle Family;
};

/** Arguments as Windows has them, in one string, the program's own name not among them. */
std::error_code Spawn(
	FSpawned& Out, std::string_view Program, std::string_view Arguments, const FSpawnOptions& Options);
} // namespace QVStandalone
