// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace QVFormats
{
constexpr std::uint32_t PackageTag = 0x9E2A83C1;
constexpr std::uint32_t SwappedPackageTag = 0xC1832A9E;

/** FileVersionUE4, by what a number brought to the header. Every UE5 package says AutomaticVersion. */
enum class EUE4Version : std::int32_t
{
	Oldest = 508,
	SearchableNames = 510,
	ExportSizes64Bit = 511,
	SoftPackageNames = 514,
	LocalizationId = 516,
	PersistentGuid = 518,
	NoOwnerGuid = 520,
	ImportPackageName = 520,
	DependencyFlags = 521,
	AutomaticVersion = 522,
};

/** FileVersionUE5, by what a number brought to the header. */
enum class EUE5Version : std::int32_t
{
	None = 0,
	NamesReferencedFromExportData = 1001,
	PayloadToc = 1002,
	OptionalResources = 1003,
	LargeWorldCoordinates = 1004,
	NoExportPackageGuid = 1005,
	ExportInheritance = 1006,
	SoftPathAssetNames = 1007,
	SoftObjectPathList = 1008,
	DataResources = 1009,
	ScriptOffsets = 1010,
	PropertyTagExtension = 1011,
	PropertyTagTypeNames = 1012,
	BuildDependencies = 1013,
	MetaData = 1014,
	Cells = 1015,
	SavedHash = 1016,
	ImportTypeHierarchies = 1018,
	Newest = 1018,
};

enum class EPackageFlags : std::uint32_t
{
	EditorOnly = 0x40,
	Cooked = 0x200,
	ContainsNoAsset = 0x400,
	UnversionedProperties = 0x2000,
	ContainsMapData = 0x4000,
	ContainsMap = 0x20000,
	RequiresLocalizationGather = 0x40000,
	FilterEditorOnly = 0x80000000,
};

enum class EObjectFlags : std::uint32_t
{
	Public = 0x1,
	Standalone = 0x2,
	Transactional = 0x8,
	ClassDefaultObject = 0x10,
};
} // namespace QVFormats
