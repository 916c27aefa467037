// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageHeader.h"

namespace QVFormats
{
enum class EPackageSection
{
	Summary,
	Names,
	SoftObjectPaths,
	GatherableText,
	MetaData,
	Imports,
	Exports,
	Depends,
	SoftPackageReferences,
	SearchableNames,
	Thumbnail,
	ThumbnailTable,
	RegistryTags,
	RegistryDependencies,
	WorldTileInfo,
	PreloadDependencies,
	DataResources,
};

struct FPackageSection
{
	EPackageSection Kind = EPackageSection::Summary;
	std::size_t Begin = 0;
	std::size_t End = 0;
};

/**
 * Walks every section of the header to its end, in order of position. In a good file they lie end to end from 0 to
 * TotalHeaderSize: what an edit relies on, and the sharpest test of a reader.
 */
TResult<std::vector<FPackageSection>> LocateSections(const FPackageHeader& Header);

/** Every field of the header that holds an offset from the start of the file. */
TResult<std::vector<FOffsetField>> LocateOffsetFields(const FPackageHeader& Header);
} // namespace QVFormats
