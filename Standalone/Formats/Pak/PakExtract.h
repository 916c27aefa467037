// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Pak/PakVerify.h"

namespace QVFormats
{
struct FPakExtractReport
{
	/** In the order of the entries; of such a file nothing is written, and an older one in its place stays. */
	std::vector<FPakFinding> Problems;
	std::size_t Files = 0;
	std::uint64_t Bytes = 0;
};

/** Where an entry lands: the folder, the mount point without the `../` that it begins with, the entry's path. */
std::filesystem::path PakExtractedPath(
	const FPakReader& Reader, const FPakEntry& Entry, const std::filesystem::path& Folder);

/**
 * Writes one file below Folder, which is made. Nothing is ever written outside it: names that leave it are refused, and
 * so are links inside it. The content's hash is checked; the file appears whole or not at all.
 */
FStatus ExtractPakEntry(const FPakReader& Reader, const FPakEntry& Entry, const std::filesystem::path& Folder);

/** All files, on so many threads (0: one for each core); a file that fails does not keep the others back. */
FPakExtractReport ExtractPak(const FPakReader& Reader, const std::filesystem::path& Folder, unsigned Threads = 0);
} // namespace QVFormats
