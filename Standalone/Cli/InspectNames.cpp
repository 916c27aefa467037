// SPDX-License-Identifier: MIT
#include "Standalone/Cli/InspectNames.h"

#include "Core/QVPrintf.h"

#include <algorithm>
#include <span>

namespace QVCli
{
using namespace QVFormats;

namespace
{
struct FFlagName
{
	std::uint32_t Bit;
	const char* Name;
};

constexpr FFlagName PackageFlags[] = {{0x1, "NewlyCreated"}, {0x2, "ClientOptional"}, {0x4, "ServerSideOnly"},
	{0x10, "CompiledIn"}, {0x20, "ForDiffing"}, {0x40, "EditorOnly"}, {0x80, "Developer"}, {0x100, "UncookedOnly"},
	{0x200, "Cooked"}, {0x400, "ContainsNoAsset"}, {0x800, "NotExternallyReferenceable"},
	{0x2000, "UnversionedProperties"}, {0x4000, "ContainsMapData"}, {0x8000, "IsSaving"}, {0x10000, "Compiling"},
	{0x20000, "ContainsMap"}, {0x40000, "RequiresLocalizationGather"}, {0x100000, "PlayInEditor"},
	{0x200000, "ContainsScript"}, {0x400000, "DisallowExport"}, {0x08000000, "CookGenerated"},
	{0x10000000, "DynamicImports"}, {0x20000000, "RuntimeGenerated"}, {0x40000000, "ReloadingForCooker"},
	{0x80000000, "FilterEditorOnly"}};

constexpr FFlagName ObjectFlags[] = {{0x1, "Public"}, {0x2, "Standalone"}, {0x8, "Transactional"},
	{0x10, "ClassDefaultObject"}, {0x20, "ArchetypeObject"}, {0x40, "Transient"}, {0x40000, "DefaultSubObject"},
	{0x100000, "TextExportTransient"}, {0x400000, "InheritableComponentTemplate"},
	{0x2000000, "NonPIEDuplicateTransient"}};

std::vector<std::string> NamesOf(std::uint32_t Flags, std::span<const FFlagName> Known)
{
	std::vector<std::string> Names;
	for (std::uint32_t Bit = 1; Bit != 0; Bit <<= 1)
	{
		if ((Flags & Bit) != 0)
		{
			const auto Found =
				std::find_if(Known.begin(), Known.end(), [Bit](const FFlagName& Each) { return Each.Bit == Bit; });
			Names.push_back(Found == Known.end() ? QVPrintf("0x%08X", Bit) : Found->Name);
		}
	}
	return Names;
}
} // namespace

std::string SectionName(EPackageSection Section)
{
	switch (Section)
	{
	case EPackageSection::Summary:
		return "summary";
	case EPackageSection::Names:
		return "names";
	case EPackageSection::SoftObjectPaths:
		return "soft object paths";
	case EPackageSection::GatherableText:
		return "gatherable text";
	case EPackageSection::MetaData:
		return "metadata";
	case EPackageSection::Imports:
		return "imports";
	case EPackageSection::Exports:
		return "exports";
	case EPackageSection::Depends:
		return "depends map";
	case EPackageSection::SoftPackageReferences:
		return "soft package references";
	case EPackageSection::SearchableNames:
		return "searchable names";
	case EPackageSection::Thumbnail:
		return "thumbnail";
	case EPackageSection::ThumbnailTable:
		return "thumbnail table";
	case EPackageSection::RegistryTags:
		return "registry tags";
	case EPackageSection::RegistryDependencies:
		return "registry dependencies";
	case EPackageSection::WorldTileInfo:
		return "world tile info";
	case EPackageSection::PreloadDependencies:
		return "preload dependencies";
	case EPackageSection::DataResources:
		return "data resources";
	}
	return "unknown";
}

std::string GuidText(const FPackageGuid& Guid)
{
	const auto& Words = Guid.Words;
	return QVPrintf("%08X-%04X-%04X-%04X-%04X%08X", Words[0], Words[1] >> 16, Words[1] & 0xFFFF, Words[2] >> 16,
		Words[2] & 0xFFFF, Words[3]);
}

std::vector<std::string> PackageFlagNames(std::uint32_t Flags)
{
	return NamesOf(Flags, PackageFlags);
}

std::vector<std::string> ObjectFlagNames(std::uint32_t Flags)
{
	return NamesOf(Flags, ObjectFlags);
}
} // namespace QVCli
