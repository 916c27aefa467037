// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageSpec.h"

namespace QVFormats
{
/** Offsets of the sections; everything else of the summary follows from the spec. */
struct FSectionOffsets
{
	std::int32_t HeaderSize = 0;
	std::int32_t Names = 0;
	std::int32_t SoftPaths = 0;
	std::int32_t GatherableText = 0;
	std::int32_t Imports = 0;
	std::int32_t Exports = 0;
	std::int32_t Depends = 0;
	std::int32_t SoftPackages = 0;
	std::int32_t SearchableNames = 0;
	std::int32_t AssetRegistry = 0;
	std::int64_t BulkData = 0;
	std::int64_t Trailer = 0;
};

struct FSummaryCounts
{
	std::size_t Names = 0;
	std::size_t DataNames = 0;
	std::size_t SoftPackages = 0;
};

/** The summary of a package in the making; its size does not depend on the offsets. */
std::vector<std::byte> WriteSummary(
	const FPackageSpec& Spec, const FSectionOffsets& Offsets, const FSummaryCounts& Counts);
} // namespace QVFormats
