// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageSummary.h"

#include <algorithm>

namespace QVFormats
{
std::string FEngineVersion::ToText() const
{
	constexpr std::uint32_t LicenseeBit = 0x80000000;
	return std::to_string(Major) + "." + std::to_string(Minor) + "." + std::to_string(Patch) + "-" +
		   std::to_string(Changelist & ~LicenseeBit);
}

bool FPackageSummary::ImportsHavePackageName() const
{
	constexpr std::int64_t BytesWithPackageName = 40;
	if (!IsAtLeast(EUE4Version::ImportPackageName))
	{
		return false;
	}
	// 5.8 keeps the field in cooked packages. No flag tells, but the distance to the next table does.
	const std::int64_t TableBytes = static_cast<std::int64_t>(Exports.Offset) - Imports.Offset;
	return !Has(EPackageFlags::FilterEditorOnly) ||
		   (IsAtLeast(EUE5Version::ImportTypeHierarchies) && TableBytes == Imports.Count * BytesWithPackageName);
}

std::size_t FPackageSummary::ImportBytes() const
{
	return 28u + (ImportsHavePackageName() ? 8u : 0u) + (IsAtLeast(EUE5Version::OptionalResources) ? 4u : 0u);
}

std::size_t FPackageSummary::ExportBytes() const
{
	const bool bScriptOffsets = IsAtLeast(EUE5Version::ScriptOffsets) && !Has(EPackageFlags::UnversionedProperties);
	return 80u + (IsAtLeast(EUE4Version::ExportSizes64Bit) ? 8u : 0u) +
		   (IsAtLeast(EUE5Version::OptionalResources) ? 4u : 0u) +
		   (IsAtLeast(EUE5Version::NoExportPackageGuid) ? 0u : 16u) +
		   (IsAtLeast(EUE5Version::ExportInheritance) ? 4u : 0u) + (bScriptOffsets ? 16u : 0u);
}

std::int32_t FPackageSummary::CustomVersion(const FPackageGuid& Key) const
{
	FByteReader Reader(CustomVersions);
	while (Reader.Remaining() >= CustomVersionBytes)
	{
		const FPackageGuid Found = Reader.Read<FPackageGuid>();
		const std::int32_t Version = Reader.I32();
		if (Found == Key)
		{
			return Version;
		}
	}
	return -1;
}

std::string DescribeEngine(const FPackageSummary& Summary)
{
	struct FRelease
	{
		EUE5Version Newest;
		std::string_view Engine;
	};
	static constexpr FRelease Releases[] = {{EUE5Version::None, "UE 4"}, {EUE5Version::LargeWorldCoordinates, "UE 5.0"},
		{EUE5Version::SoftObjectPathList, "UE 5.1"}, {EUE5Version::DataResources, "UE 5.2 or 5.3"},
		{EUE5Version::PropertyTagTypeNames, "UE 5.4"}, {EUE5Version::BuildDependencies, "UE 5.5"},
		{EUE5Version{1017}, "UE 5.6"}, {EUE5Version::Newest, "UE 5.7 or 5.8"}};
	const auto* Release = std::find_if(std::begin(Releases), std::end(Releases) - 1,
		[&Summary](const FRelease& Each) { return Summary.LayoutUE5 <= Each.Newest; });
	if (Summary.IsUnversioned())
	{
		return "cooked, header like " + std::string(Release->Engine);
	}
	if (Summary.SavedBy.Major == 0)
	{
		return std::string(Release->Engine) + " by its file version";
	}
	return "UE " + Summary.SavedBy.ToText();
}
} // namespace QVFormats
