// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageSections.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
constexpr std::size_t NameBytes = 8;
/** Metadata of gatherable text nests; nothing real is deeper. */
constexpr int DeepestMetaData = 16;

using FWalk = void (*)(FByteReader&, const FPackageHeader&);

void SkipItems(FByteReader& Reader, std::int64_t Count, std::size_t ItemBytes)
{
	if (Count < 0)
	{
		Reader.Fail();
		return;
	}
	Reader.Skip(static_cast<std::uint64_t>(Count) * ItemBytes);
}

void SkipTextMetaData(FByteReader& Reader, int Depth);

void SkipTextMetaDataValue(FByteReader& Reader, int Depth)
{
	enum EKind : std::int32_t
	{
		Nothing,
		Boolean,
		String,
		Array,
		Object
	};
	switch (Depth > DeepestMetaData ? -1 : Reader.I32())
	{
	case Nothing:
		return;
	case Boolean:
		Reader.Bool32();
		return;
	case String:
		Reader.String();
		return;
	case Array:
		for (std::int32_t Left = Reader.Count(4); Left > 0 && !Reader.Failed(); --Left)
		{
			SkipTextMetaDataValue(Reader, Depth + 1);
		}
		return;
	case Object:
		SkipTextMetaData(Reader, Depth + 1);
		return;
	default:
		Reader.Fail();
	}
}

void SkipTextMetaData(FByteReader& Reader, int Depth)
{
	for (std::int32_t Left = Reader.Count(8); Left > 0 && !Reader.Failed(); --Left)
	{
		Reader.String();
		SkipTextMetaDataValue(Reader, Depth);
	}
}

void WalkGatherableText(FByteReader& Reader, const FPackageHeader& Header)
{
	for (std::int32_t Entry = 0; Entry < Header.Summary.GatherableText.Count && !Reader.Failed(); ++Entry)
	{
		Reader.String();
		Reader.String();
		SkipTextMetaData(Reader, 0);
		for (std::int32_t Left = Reader.Count(24); Left > 0 && !Reader.Failed(); --Left)
		{
			Reader.String();
			Reader.String();
			Reader.Bool32();
			Reader.Bool32();
			SkipTextMetaData(Reader, 0);
			SkipTextMetaData(Reader, 0);
		}
	}
}

void SkipNamesAndStrings(FByteReader& Reader, std::int32_t Count)
{
	for (; Count > 0 && !Reader.Failed(); --Count)
	{
		Reader.Skip(NameBytes);
		Reader.String();
	}
}

void WalkMetaData(FByteReader& Reader, const FPackageHeader&)
{
	const std::int32_t Objects = Reader.I32();
	const std::int32_t RootEntries = Reader.I32();
	for (std::int32_t Left = Objects; Left > 0 && !Reader.Failed(); --Left)
	{
		Reader.I32();
		SkipNamesAndStrings(Reader, Reader.I32());
	}
	SkipNamesAndStrings(Reader, RootEntries);
}

void WalkDepends(FByteReader& Reader, const FPackageHeader& Header)
{
	for (std::size_t Left = Header.Exports.size(); Left > 0 && !Reader.Failed(); --Left)
	{
		SkipItems(Reader, Reader.I32(), 4);
	}
}

void WalkSoftPackageReferences(FByteReader& Reader, const FPackageHeader& Header)
{
	const bool bNames = Header.Summary.IsAtLeast(EUE4Version::SoftPackageNames);
	for (std::size_t Left = Header.SoftPackageReferences.size(); Left > 0 && !Reader.Failed(); --Left)
	{
		bNames ? Reader.Skip(NameBytes) : static_cast<void>(Reader.String());
	}
}

void WalkSearchableNames(FByteReader& Reader, const FPackageHeader&)
{
	for (std::int32_t Left = Reader.Count(8); Left > 0 && !Reader.Failed(); --Left)
	{
		Reader.I32();
		SkipItems(Reader, Reader.I32(), NameBytes);
	}
}

void WalkSoftObjectPaths(FByteReader& Reader, const FPackageHeader& Header)
{
	for (const FPackageSoftPath& Path : Header.SoftObjectPaths)
	{
		Reader.Skip(2 * NameBytes);
		Path.bUtf8 ? SkipItems(Reader, Reader.I32(), 1) : static_cast<void>(Reader.String());
	}
}

void WalkWorldTileInfo(FByteReader& Reader, const FPackageHeader& Header)
{
	Reader.Skip(3 * 4);
	Reader.Skip(Header.Summary.IsAtLeast(EUE5Version::LargeWorldCoordinates) ? 6 * 8 + 1 : 6 * 4 + 1);
	Reader.String();
	Reader.Skip(5 * 4 + 4);
	Reader.String();
	SkipItems(Reader, Reader.I32(), 5 * 4);
	Reader.Skip(4);
}

void WalkDataResources(FByteReader& Reader, const FPackageHeader&)
{
	const bool bCookedIndex = Reader.U32() >= 2;
	SkipItems(Reader, Reader.I32(), bCookedIndex ? 45 : 44);
}

/** Collects sections; the first that cannot be walked stops it. */
class FSectionWalk
{
public:
	explicit FSectionWalk(const FPackageHeader& InHeader)
		: Header(InHeader)
		, Reader(InHeader.Bytes)
	{
	}

	void Add(EPackageSection Kind, std::size_t Begin, std::size_t End)
	{
		if (Begin != End)
		{
			Sections.push_back({Kind, Begin, End});
		}
	}
	void Table(EPackageSection Kind, const FPackageTable& Where, std::size_t ItemBytes)
	{
		if (Where.Count > 0)
		{
			Reader.Seek(Where.Offset);
			const std::size_t Begin = Reader.Position();
			SkipItems(Reader, Where.Count, ItemBytes);
			Add(Kind, Begin, Reader.Position());
		}
	}
	void Walk(EPackageSection Kind, std::int32_t Offset, FWalk Walker)
	{
		Reader.Seek(Offset);
		const std::size_t Begin = Reader.Position();
		Walker(Reader, Header);
		Add(Kind, Begin, Reader.Position());
	}
	void Thumbnails();
	void Registry();

	const FPackageHeader& Header;
	FByteReader Reader;
	std::vector<FPackageSection> Sections;
	std::vector<FOffsetField> ImageOffsets;
};

void FSectionWalk::Thumbnails()
{
	Reader.Seek(Header.Summary.ThumbnailTableOffset);
	const std::size_t Begin = Reader.Position();
	for (std::int32_t Left = Reader.Count(12); Left > 0 && !Reader.Failed(); --Left)
	{
		Reader.String();
		Reader.String();
		const std::size_t Position = Reader.Position();
		ImageOffsets.push_back({Position, 4, Reader.I32()});
	}
	Add(EPackageSection::ThumbnailTable, Begin, Reader.Position());
	for (const FOffsetField& Image : ImageOffsets)
	{
		Reader.Seek(Image.Value);
		Reader.Skip(8);
		SkipItems(Reader, Reader.I32(), 1);
		Add(EPackageSection::Thumbnail, static_cast<std::size_t>(Image.Value), Reader.Position());
	}
}

void FSectionWalk::Registry()
{
	const FPackageRegistrySection& Registry = Header.Registry;
	Add(EPackageSection::RegistryTags, static_cast<std::size_t>(Header.Summary.AssetRegistryOffset), Registry.TagsEnd);
	Add(EPackageSection::RegistryDependencies, Registry.DependencyBegin, Registry.DependencyEnd);
}

/** A section that has no table entry size: it has to be walked, and is absent when its offset is 0. */
struct FWalkedSection
{
	EPackageSection Kind;
	std::int32_t Offset;
	FWalk Walker;
};

std::vector<FWalkedSection> WalkedSections(const FPackageHeader& Header)
{
	const FPackageSummary& Summary = Header.Summary;
	const auto IfAny = [](const FPackageTable& Table) { return Table.Count == 0 ? 0 : Table.Offset; };
	return {{EPackageSection::SoftObjectPaths, IfAny(Summary.SoftObjectPaths), WalkSoftObjectPaths},
		{EPackageSection::GatherableText, IfAny(Summary.GatherableText), WalkGatherableText},
		{EPackageSection::MetaData, Summary.MetaDataOffset, WalkMetaData},
		{EPackageSection::Depends, Summary.DependsOffset, WalkDepends},
		{EPackageSection::SoftPackageReferences, IfAny(Summary.SoftPackageReferences), WalkSoftPackageReferences},
		{EPackageSection::SearchableNames, Summary.SearchableNamesOffset, WalkSearchableNames},
		{EPackageSection::WorldTileInfo, Summary.WorldTileInfoOffset, WalkWorldTileInfo},
		{EPackageSection::DataResources, Summary.DataResourceOffset, WalkDataResources}};
}

void WalkAll(FSectionWalk& Walk)
{
	constexpr std::size_t IndexBytes = 4;
	const FPackageSummary& Summary = Walk.Header.Summary;
	Walk.Add(EPackageSection::Summary, 0, Summary.End);
	Walk.Add(EPackageSection::Names, static_cast<std::size_t>(Summary.Names.Offset), Walk.Header.Names.EndPosition());
	Walk.Table(EPackageSection::Imports, Summary.Imports, Summary.ImportBytes());
	Walk.Table(EPackageSection::Exports, Summary.Exports, Summary.ExportBytes());
	Walk.Table(EPackageSection::PreloadDependencies, Summary.PreloadDependencies, IndexBytes);
	for (const FWalkedSection& Each : WalkedSections(Walk.Header))
	{
		if (Each.Offset > 0 && !Walk.Reader.Failed())
		{
			Walk.Walk(Each.Kind, Each.Offset, Each.Walker);
		}
	}
	if (Summary.ThumbnailTableOffset > 0)
	{
		Walk.Thumbnails();
	}
	if (Summary.AssetRegistryOffset > 0)
	{
		Walk.Registry();
	}
}

FStatus Check(const FSectionWalk& Walk)
{
	if (Walk.Reader.Failed())
	{
		return FError{"is damaged: a section of its header leaves the header of " +
					  std::to_string(Walk.Header.Bytes.size()) + " bytes"};
	}
	return Success();
}
} // namespace

TResult<std::vector<FPackageSection>> LocateSections(const FPackageHeader& Header)
{
	FSectionWalk Walk(Header);
	WalkAll(Walk);
	if (const FStatus Status = Check(Walk); !Status)
	{
		return Status.Error();
	}
	std::sort(Walk.Sections.begin(), Walk.Sections.end(),
		[](const FPackageSection& A, const FPackageSection& B) { return A.Begin < B.Begin; });
	return std::move(Walk.Sections);
}

TResult<std::vector<FOffsetField>> LocateOffsetFields(const FPackageHeader& Header)
{
	FSectionWalk Walk(Header);
	if (Header.Summary.ThumbnailTableOffset > 0)
	{
		Walk.Thumbnails();
	}
	if (const FStatus Status = Check(Walk); !Status)
	{
		return Status.Error();
	}
	std::vector<FOffsetField> Fields = Header.Summary.OffsetFields;
	const int SerialWidth = Header.Summary.IsAtLeast(EUE4Version::ExportSizes64Bit) ? 8 : 4;
	for (const FPackageExport& Export : Header.Exports)
	{
		Fields.push_back({Export.SerialOffsetAt, SerialWidth, Export.SerialOffset});
	}
	if (Header.Registry.DependencyOffsetAt != 0)
	{
		const auto Value = static_cast<std::int64_t>(Header.Registry.DependencyBegin);
		Fields.push_back({Header.Registry.DependencyOffsetAt, 8, Value});
	}
	Fields.insert(Fields.end(), Walk.ImageOffsets.begin(), Walk.ImageOffsets.end());
	return Fields;
}
} // namespace QVFormats
