// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Pak/PakRecordWriter.h"

namespace QVFormats
{
/** The three tables behind the records, in the order in which they are written. */
struct FPakIndexBytes
{
	std::vector<std::byte> Index;
	std::vector<std::byte> PathHashIndex;
	std::vector<std::byte> DirectoryIndex;

	/** Version 11. The same files give the same bytes; where the tables lie decides the offsets in them. */
	static FPakIndexBytes Make(const FPakPlan& Plan, const std::vector<FPakStoredFile>& Files,
		std::uint64_t IndexOffset, std::uint64_t PathHashSeed);
};
} // namespace QVFormats
