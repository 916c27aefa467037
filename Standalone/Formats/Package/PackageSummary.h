// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"
#include "Standalone/Formats/Base/Result.h"
#include "Standalone/Formats/Package/PackageVersion.h"

#include <array>
#include <vector>

namespace QVFormats
{
constexpr std::size_t CustomVersionBytes = 20;

/** Where a table lies; go by the count, an empty table's offset says nothing. */
struct FPackageTable
{
	std::int32_t Count = 0;
	std::int32_t Offset = 0;
};

/** A field that holds an offset from the start of the file: what an edit that moves sections has to mend. */
struct FOffsetField
{
	std::size_t Position = 0;
	/** 4 or 8 bytes. */
	int Width = 4;
	std::int64_t Value = 0;
};

struct FPackageGuid
{
	std::array<std::uint32_t, 4> Words{};

	bool operator==(const FPackageGuid&) const = default;
};

struct FEngineVersion
{
	std::uint16_t Major = 0;
	std::uint16_t Minor = 0;
	std::uint16_t Patch = 0;
	/** Bit 31: a licensee's build. */
	std::uint32_t Changelist = 0;
	FStringView Branch;

	/** `5.4.4-35576357`. */
	std::string ToText() const;
};

/** The fixed part at the start of a package, layouts of UE 4.15 to 5.8. Views point into the bytes that were read. */
struct FPackageSummary
{
	std::int32_t LegacyVersion = 0;
	/** As written: 0 in an unversioned, that is cooked, package. */
	std::int32_t FileVersionUE4 = 0;
	std::int32_t FileVersionUE5 = 0;
	std::int32_t FileVersionLicensee = 0;
	/** What the file was read as; guessed when it is unversioned. */
	EUE4Version LayoutUE4 = EUE4Version::AutomaticVersion;
	EUE5Version LayoutUE5 = EUE5Version::None;
	/** Entries of CustomVersionBytes: guid and number. */
	FBytes CustomVersions;
	FBytes SavedHash;
	std::int32_t TotalHeaderSize = 0;
	/** As of the last save: a file that was moved by hand keeps its old name here. */
	FStringView PackageName;
	/** Position of PackageName, length field included. */
	std::size_t PackageNameAt = 0;
	std::uint32_t Flags = 0;

	FPackageTable Names;
	FPackageTable SoftObjectPaths;
	FStringView LocalizationId;
	FPackageTable GatherableText;
	FPackageTable Exports;
	FPackageTable Imports;
	FPackageTable CellExports;
	FPackageTable CellImports;
	std::int32_t MetaDataOffset = 0;
	std::int32_t DependsOffset = 0;
	FPackageTable SoftPackageReferences;
	std::int32_t SearchableNamesOffset = 0;
	std::int32_t ThumbnailTableOffset = 0;
	FPackageTable ImportTypeHierarchies;
	FPackageGuid Guid;
	FPackageGuid PersistentGuid;
	/** Pairs of export count and name count; an edit that adds entries has to mend the last pair too. */
	std::int32_t GenerationCount = 0;
	std::size_t GenerationsAt = 0;
	FEngineVersion SavedBy;
	FEngineVersion CompatibleWith;
	std::uint32_t PackageSource = 0;
	std::int32_t AssetRegistryOffset = 0;
	std::int64_t BulkDataStart = 0;
	std::int32_t WorldTileInfoOffset = 0;
	FPackageTable PreloadDependencies;
	std::int32_t NamesReferencedFromExportData = 0;
	std::int64_t PayloadTocOffset = 0;
	std::int32_t DataResourceOffset = 0;
	/** Where the summary ends and the names begin. */
	std::size_t End = 0;
	/** Every absolute offset of the summary in file order, also those that are 0 or -1. */
	std::vector<FOffsetField> OffsetFields;

	bool IsUnversioned() const { return FileVersionUE4 == 0; }
	bool Has(EPackageFlags Flag) const { return (Flags & static_cast<std::uint32_t>(Flag)) != 0; }
	bool IsAtLeast(EUE4Version Version) const { return LayoutUE4 >= Version; }
	bool IsAtLeast(EUE5Version Version) const { return LayoutUE5 >= Version; }
	bool ImportsHavePackageName() const;
	std::size_t ImportBytes() const;
	std::size_t ExportBytes() const;
	/** -1: the package was saved without it. */
	std::int32_t CustomVersion(const FPackageGuid& Key) const;
};

/** What the first bytes of a file tell of its header's size. */
struct FHeaderSize
{
	/** The size of the header or, if not bKnown, how many bytes of the file have to be looked at to know it. */
	std::size_t Bytes = 0;
	bool bKnown = false;
};

/**
 * The size of the header, from the first bytes of a package; 4 KB are mostly enough. Errors here and below are said
 * without the file's name, to be put behind it: "is not an Unreal package: ...".
 */
TResult<FHeaderSize> PeekHeaderSize(FBytes Prefix);

/** Header: at least the header's bytes. Refuses what is no package, too old, too new or cut short. */
TResult<FPackageSummary> ReadPackageSummary(FBytes Header);

/** `UE 5.4.4-35576357`; `UE 5.4 by its file version`; `cooked, header like UE 5.4`. */
std::string DescribeEngine(const FPackageSummary& Summary);
} // namespace QVFormats
