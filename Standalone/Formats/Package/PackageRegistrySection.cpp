// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageRegistrySection.h"

namespace QVFormats
{
namespace
{
constexpr std::size_t SmallestAsset = 12;
constexpr std::size_t SmallestTag = 8;
constexpr std::size_t ExtraDependencyBytes = 12;

FBitView ReadBits(FByteReader& Reader)
{
	const std::int32_t Bits = Reader.I32();
	if (Bits < 0)
	{
		Reader.Fail();
		return {};
	}
	const std::uint64_t Words = (static_cast<std::uint64_t>(Bits) + 31) / 32;
	const FBytes Bytes = Reader.Take(Words * sizeof(std::uint32_t));
	return Reader.Failed() ? FBitView() : FBitView(Bytes, static_cast<std::size_t>(Bits));
}

void ReadAssets(FByteReader& Reader, FPackageRegistrySection& Section)
{
	const std::int32_t AssetCount = Reader.Count(SmallestAsset);
	for (std::int32_t Left = AssetCount; Left > 0 && !Reader.Failed(); --Left)
	{
		FPackageAsset Asset;
		Asset.ObjectPath = Reader.String();
		Asset.Class = Reader.String();
		Asset.FirstTag = Section.Tags.size();
		Asset.TagCount = static_cast<std::size_t>(Reader.Count(SmallestTag));
		for (std::size_t Tag = 0; Tag < Asset.TagCount && !Reader.Failed(); ++Tag)
		{
			const FStringView Key = Reader.String();
			Section.Tags.push_back({Key, Reader.String()});
		}
		Section.Assets.push_back(Asset);
	}
}

void ReadDependencyBits(FByteReader& Reader, const FPackageSummary& Summary, FPackageRegistrySection& Section)
{
	Section.DependencyBegin = Reader.Position();
	Section.ImportUsedInGame = ReadBits(Reader);
	Section.SoftPackageUsedInGame = ReadBits(Reader);
	if (Summary.IsAtLeast(EUE5Version::BuildDependencies))
	{
		Reader.Skip(static_cast<std::uint64_t>(Reader.Count(ExtraDependencyBytes)) * ExtraDependencyBytes);
	}
	Section.DependencyEnd = Reader.Position();
}
} // namespace

bool FBitView::IsUsedInGame(std::size_t Index) const
{
	return Index >= Count || (std::to_integer<unsigned>(Words[Index / 8]) >> (Index % 8) & 1) != 0;
}

TResult<FPackageRegistrySection> ReadRegistrySection(FBytes Header, const FPackageSummary& Summary)
{
	FPackageRegistrySection Section;
	if (Summary.AssetRegistryOffset <= 0)
	{
		return Section;
	}
	FByteReader Reader(Header);
	Reader.Seek(Summary.AssetRegistryOffset);
	const bool bDependencies =
		Summary.IsAtLeast(EUE4Version::DependencyFlags) && !Summary.Has(EPackageFlags::FilterEditorOnly);
	Section.DependencyOffsetAt = bDependencies ? Reader.Position() : 0;
	const std::int64_t DependencyOffset = bDependencies ? Reader.I64() : 0;
	ReadAssets(Reader, Section);
	Section.TagsEnd = Reader.Position();
	if (bDependencies)
	{
		Reader.Seek(DependencyOffset);
		ReadDependencyBits(Reader, Summary, Section);
	}
	if (Reader.Failed())
	{
		return FError{"is damaged: its registry section at " + std::to_string(Summary.AssetRegistryOffset) +
					  " leaves the header of " + std::to_string(Header.size()) + " bytes"};
	}
	return Section;
}
} // namespace QVFormats
