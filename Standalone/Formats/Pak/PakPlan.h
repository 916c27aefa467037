// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Result.h"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

namespace QVFormats
{
/** A file to be packed. */
struct FPakSource
{
	std::filesystem::path Source;
	/** As the game sees it: `../../../<Project>/Content/...`. */
	std::string Destination;
	bool bCompress = false;
};

/** A file larger than this is packed in pieces by all threads together, a smaller one by one thread alone. */
inline constexpr std::uint64_t PakPieceworkBytes = 1024 * 1024;

struct FPlannedFile
{
	std::filesystem::path Source;
	std::string Destination;
	/** Where the part below the mount point begins. */
	std::size_t MountLength = 0;
	std::uint64_t Size = 0;
	bool bCompress = false;
	/** Samples say that compression will not pay. Only for large files, and only a guess. */
	bool bLooksIncompressible = false;

	std::string_view Path() const { return std::string_view(Destination).substr(MountLength); }
};

/** What goes into a pak, in the order of its records. */
struct FPakPlan
{
	std::string MountPoint;
	std::vector<FPlannedFile> Files;

	/** Of two files with one destination the last stays. Looks at every source, on so many threads. */
	static TResult<FPakPlan> Make(std::span<const FPakSource> Sources, unsigned Threads);
};
} // namespace QVFormats
