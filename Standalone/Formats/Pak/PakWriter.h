// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Pak/PakPlan.h"

#include <functional>
#include <optional>
#include <string_view>

namespace QVFormats
{
struct FPakWriteProgress
{
	std::size_t FilesDone = 0;
	std::size_t Files = 0;
	/** The file that was finished last, as its source named it. */
	std::string_view Destination;
};

struct FPakWriteOptions
{
	/** 0: one for each core. The pak's bytes do not depend on it. */
	unsigned Threads = 0;
	/** Unset: from the pak's file name, so that the bytes do not depend on its folder. */
	std::optional<std::uint64_t> PathHashSeed;
	/** After every file, in the order of the records; on any thread, never twice at once. */
	std::function<void(const FPakWriteProgress&)> OnFile;
	/** Asked again and again, on any thread; true ends the work with an error. */
	std::function<bool()> ShouldStop;
};

struct FPakWriteSummary
{
	std::string MountPoint;
	std::size_t Files = 0;
	std::size_t CompressedFiles = 0;
	/** Of the sources. */
	std::uint64_t BytesIn = 0;
	/** Of the payloads as stored. */
	std::uint64_t PayloadBytes = 0;
	/** Of the whole pak. */
	std::uint64_t BytesOut = 0;
	std::uint64_t IndexBytes = 0;
	std::uint64_t PathHashIndexBytes = 0;
	std::uint64_t DirectoryIndexBytes = 0;
};

/**
 * Writes a pak of version 11. It appears whole or not at all, and an older one in its place stays until then. Memory is
 * bounded however large a file is.
 */
TResult<FPakWriteSummary> WritePak(
	const std::filesystem::path& Target, std::span<const FPakSource> Sources, const FPakWriteOptions& Options = {});
} // namespace QVFormats
