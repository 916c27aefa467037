// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/SummaryFields.h"

#include <algorithm>

namespace QVFormats
{
std::int32_t FSummaryReader::Offset()
{
	const std::size_t Position = In.Position();
	const std::int32_t Value = In.I32();
	Out.OffsetFields.push_back({Position, 4, Value});
	return Value;
}

std::int64_t FSummaryReader::LongOffset()
{
	const std::size_t Position = In.Position();
	const std::int64_t Value = In.I64();
	Out.OffsetFields.push_back({Position, 8, Value});
	return Value;
}

FPackageTable FSummaryReader::Table()
{
	const std::int32_t Count = In.I32();
	return {Count, Offset()};
}

FEngineVersion FSummaryReader::Engine()
{
	FEngineVersion Version;
	Version.Major = In.U16();
	Version.Minor = In.U16();
	Version.Patch = In.U16();
	Version.Changelist = In.U32();
	Version.Branch = In.String();
	return Version;
}

void FSummaryReader::Versions()
{
	In.U32();
	Out.LegacyVersion = In.I32();
	In.I32(); // UE3
	Out.FileVersionUE4 = In.I32();
	Out.FileVersionUE5 = Out.LegacyVersion <= -8 ? In.I32() : 0;
	Out.FileVersionLicensee = In.I32();
	if (!Out.IsUnversioned())
	{
		Out.LayoutUE4 = EUE4Version{Out.FileVersionUE4};
		Out.LayoutUE5 = EUE5Version{Out.FileVersionUE5};
	}
	else if (Out.LegacyVersion <= -9)
	{
		Out.LayoutUE5 = std::max(Out.LayoutUE5, EUE5Version::SavedHash);
	}
}

void FSummaryReader::HeaderSizeAndCustomVersions()
{
	const bool bSavedHash = Out.IsAtLeast(EUE5Version::SavedHash);
	if (bSavedHash)
	{
		Out.SavedHash = In.Take(SavedHashBytes);
		Out.TotalHeaderSize = Offset();
	}
	const std::int32_t Count = In.Count(CustomVersionBytes);
	Out.CustomVersions = In.Take(static_cast<std::uint64_t>(Count) * CustomVersionBytes);
	if (!bSavedHash)
	{
		Out.TotalHeaderSize = Offset();
	}
}

void FSummaryReader::Tables()
{
	Out.PackageNameAt = In.Position();
	Out.PackageName = In.String();
	Out.Flags = In.U32();
	Out.Names = Table();
	if (Out.IsAtLeast(EUE5Version::SoftObjectPathList))
	{
		Out.SoftObjectPaths = Table();
	}
	if (!IsFiltered() && Out.IsAtLeast(EUE4Version::LocalizationId))
	{
		Out.LocalizationId = In.String();
	}
	Out.GatherableText = Table();
	Out.Exports = Table();
	Out.Imports = Table();
	if (Out.IsAtLeast(EUE5Version::Cells))
	{
		Out.CellExports = Table();
		Out.CellImports = Table();
	}
	Out.MetaDataOffset = Out.IsAtLeast(EUE5Version::MetaData) ? Offset() : 0;
	Out.DependsOffset = Offset();
	Out.SoftPackageReferences = Table();
	Out.SearchableNamesOffset = Out.IsAtLeast(EUE4Version::SearchableNames) ? Offset() : 0;
	Out.ThumbnailTableOffset = Offset();
	if (Out.IsAtLeast(EUE5Version::ImportTypeHierarchies))
	{
		Out.ImportTypeHierarchies = Table();
	}
}

void FSummaryReader::Identity()
{
	if (!Out.IsAtLeast(EUE5Version::SavedHash))
	{
		Out.Guid = Guid();
	}
	if (!IsFiltered() && Out.IsAtLeast(EUE4Version::PersistentGuid))
	{
		Out.PersistentGuid = Guid();
		if (!Out.IsAtLeast(EUE4Version::NoOwnerGuid))
		{
			Guid();
		}
	}
	Out.GenerationCount = In.Count(8);
	Out.GenerationsAt = In.Position();
	In.Skip(static_cast<std::uint64_t>(Out.GenerationCount) * 8);
	Out.SavedBy = Engine();
	Out.CompatibleWith = Engine();
}

void FSummaryReader::Tail()
{
	In.U32();			   // compression flags
	if (In.Count(16) != 0) // chunks of a package that is compressed as a whole, which no UE5 writes
	{
		In.Fail();
	}
	Out.PackageSource = In.U32();
	for (std::int32_t Left = In.Count(4); Left > 0; --Left) // additional packages to cook
	{
		In.String();
	}
	Out.AssetRegistryOffset = Offset();
	Out.BulkDataStart = LongOffset();
	Out.WorldTileInfoOffset = Offset();
	In.Skip(static_cast<std::uint64_t>(In.Count(4)) * 4); // chunk ids
	Out.PreloadDependencies = Table();
	Out.NamesReferencedFromExportData = Out.IsAtLeast(EUE5Version::NamesReferencedFromExportData) ? In.I32() : 0;
	Out.PayloadTocOffset = Out.IsAtLeast(EUE5Version::PayloadToc) ? LongOffset() : 0;
	Out.DataResourceOffset = Out.IsAtLeast(EUE5Version::DataResources) ? Offset() : 0;
	Out.End = In.Position();
}
} // namespace QVFormats
