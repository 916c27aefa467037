// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVDateTime.h"

#include <cstdint>
#include <string>

/** By which it is seen that a file has been written since. */
struct FQVFileStamp
{
	/** In bytes; -1: there is no such file, or it is not known. */
	std::int64_t Size = -1;
	FQVDateTime Time;

	bool operator==(const FQVFileStamp&) const = default;
};

/**
 * Files that a pack is about to replace or delete though they may hold what somebody else has written: a copy of each
 * goes to a folder of its own below the work folder, and the log says where. Any thread.
 */
struct FQVMapForeignFiles
{
	static FQVFileStamp StampOf(const std::string& File);
	/** File: full path, in the project. False, and said, if no copy could be kept: then the file must stay. */
	static bool Keep(const std::string& File);
	/** The same for a file that is not as it was left. True also when there was nothing to keep. */
	static bool KeepIfChanged(const std::string& File, const FQVFileStamp& Left);
};
