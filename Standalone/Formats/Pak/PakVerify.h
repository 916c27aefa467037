// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Pak/PakReader.h"

namespace QVFormats
{
/** What was found about one file of the pak. */
struct FPakFinding
{
	/** Below the mount point; empty when it concerns the whole pak. */
	std::string Path;
	std::string Message;

	bool operator==(const FPakFinding&) const = default;
};

struct FPakVerifyReport
{
	/** In the order of the entries. The pak is sound when there is none. */
	std::vector<FPakFinding> Problems;
	/** What could not be checked, and why. */
	std::vector<FPakFinding> Notes;
	std::size_t Files = 0;
	std::uint64_t HashedBytes = 0;
	std::uint64_t InflatedBytes = 0;

	bool IsSound() const { return Problems.empty(); }
};

/**
 * Compares every record head with the index, hashes every payload, inflates every Zlib block and looks every path up
 * in the path hash index. Threads: 0 for one on each core.
 */
FPakVerifyReport VerifyPak(const FPakReader& Reader, unsigned Threads = 0);
} // namespace QVFormats
