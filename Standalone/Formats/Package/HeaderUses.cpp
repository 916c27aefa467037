// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/HeaderUses.h"

namespace QVFormats
{
namespace
{
FError LeavesHeader(const FPackageHeader& Header)
{
	return {"is damaged: a name or text leaves the header of " + std::to_string(Header.Bytes.size()) + " bytes"};
}

class FNameWalk
{
public:
	explicit FNameWalk(const FPackageHeader& InHeader)
		: Header(InHeader)
		, Summary(InHeader.Summary)
		, Reader(InHeader.Bytes)
	{
	}

	void Imports();
	void Exports();
	void SoftPaths();
	void SoftPackages();
	void SearchableNames();
	void MetaData();
	void BuildDependencies();

	const FPackageHeader& Header;
	const FPackageSummary& Summary;
	FByteReader Reader;
	std::vector<FNameUse> Uses;

private:
	void Name(ENameUse Kind, std::size_t Row = 0)
	{
		const std::size_t Position = Reader.Position();
		Uses.push_back({Kind, Position, Row, ReadName(Reader, Header.Names)});
	}
	void NamesAndTexts(std::int32_t Count);
};

void FNameWalk::Imports()
{
	for (std::size_t Row = 0; Row < Header.Imports.size(); ++Row)
	{
		Reader.Seek(Summary.Imports.Offset + static_cast<std::int64_t>(Row * Summary.ImportBytes()));
		Name(ENameUse::ClassPackage, Row);
		Name(ENameUse::ClassName, Row);
		Reader.I32(); // outer
		Name(ENameUse::ImportName, Row);
		if (Summary.ImportsHavePackageName())
		{
			Name(ENameUse::ImportPackage, Row);
		}
	}
}

void FNameWalk::Exports()
{
	constexpr std::size_t IndicesBefore = 4 * sizeof(FPackageIndex);
	for (std::size_t Row = 0; Row < Header.Exports.size(); ++Row)
	{
		Reader.Seek(Summary.Exports.Offset + static_cast<std::int64_t>(Row * Summary.ExportBytes() + IndicesBefore));
		Name(ENameUse::ExportName, Row);
	}
}

void FNameWalk::SoftPaths()
{
	Reader.Seek(Header.SoftObjectPaths.empty() ? 0 : Summary.SoftObjectPaths.Offset);
	for (std::size_t Row = 0; Row < Header.SoftObjectPaths.size(); ++Row)
	{
		Name(ENameUse::SoftPathPackage, Row);
		Name(ENameUse::SoftPathAsset, Row);
		const bool bUtf8 = Header.SoftObjectPaths[Row].bUtf8;
		bUtf8 ? Reader.Skip(static_cast<std::uint64_t>(Reader.Count(1))) : static_cast<void>(Reader.String());
	}
}

void FNameWalk::SoftPackages()
{
	if (!Summary.IsAtLeast(EUE4Version::SoftPackageNames) || Header.SoftPackageReferences.empty())
	{
		return;
	}
	Reader.Seek(Summary.SoftPackageReferences.Offset);
	for (std::size_t Row = 0; Row < Header.SoftPackageReferences.size(); ++Row)
	{
		Name(ENameUse::Package, Row);
	}
}

void FNameWalk::SearchableNames()
{
	if (Summary.SearchableNamesOffset <= 0)
	{
		return;
	}
	Reader.Seek(Summary.SearchableNamesOffset);
	for (std::int32_t Left = Reader.Count(8); Left > 0 && !Reader.Failed(); --Left)
	{
		Reader.I32();
		for (std::int32_t Names = Reader.Count(8); Names > 0 && !Reader.Failed(); --Names)
		{
			Name(ENameUse::Other);
		}
	}
}

void FNameWalk::NamesAndTexts(std::int32_t Count)
{
	for (; Count > 0 && !Reader.Failed(); --Count)
	{
		Name(ENameUse::Other);
		Reader.String();
	}
}

void FNameWalk::MetaData()
{
	if (Summary.MetaDataOffset <= 0)
	{
		return;
	}
	Reader.Seek(Summary.MetaDataOffset);
	const std::int32_t Objects = Reader.I32();
	const std::int32_t RootEntries = Reader.I32();
	for (std::int32_t Left = Objects; Left > 0 && !Reader.Failed(); --Left)
	{
		Reader.I32();
		NamesAndTexts(Reader.I32());
	}
	NamesAndTexts(RootEntries);
}

void FNameWalk::BuildDependencies()
{
	if (Header.Registry.DependencyBegin == 0 || !Summary.IsAtLeast(EUE5Version::BuildDependencies))
	{
		return;
	}
	Reader.Seek(static_cast<std::int64_t>(Header.Registry.DependencyBegin));
	for (int BitArray = 0; BitArray < 2; ++BitArray)
	{
		const auto Bits = static_cast<std::uint64_t>(Reader.U32());
		Reader.Skip((Bits + 31) / 32 * sizeof(std::uint32_t));
	}
	for (std::int32_t Left = Reader.Count(12); Left > 0 && !Reader.Failed(); --Left)
	{
		Name(ENameUse::Package);
		Reader.U32();
	}
}

class FTextWalk
{
public:
	explicit FTextWalk(const FPackageHeader& InHeader)
		: Header(InHeader)
		, Summary(InHeader.Summary)
		, Reader(InHeader.Bytes)
	{
	}

	void PackageName()
	{
		Reader.Seek(static_cast<std::int64_t>(Summary.PackageNameAt));
		Text(ETextUse::PackageName);
	}
	void SubPaths();
	void SoftPackages();
	void Thumbnails();
	void Registry();

	const FPackageHeader& Header;
	const FPackageSummary& Summary;
	FByteReader Reader;
	std::vector<FTextUse> Uses;

private:
	std::string Text(ETextUse Kind)
	{
		const std::size_t Begin = Reader.Position();
		const FStringView View = Reader.String();
		Uses.push_back({Kind, Begin, Reader.Position(), View});
		return Kind == ETextUse::Other ? View.ToUtf8() : std::string();
	}
};

void FTextWalk::SubPaths()
{
	Reader.Seek(Header.SoftObjectPaths.empty() ? 0 : Summary.SoftObjectPaths.Offset);
	for (const FPackageSoftPath& Path : Header.SoftObjectPaths)
	{
		if (Path.bUtf8)
		{
			return;
		}
		Reader.Skip(2 * sizeof(FNameRef));
		Text(ETextUse::Other);
	}
}

void FTextWalk::SoftPackages()
{
	if (Summary.IsAtLeast(EUE4Version::SoftPackageNames) || Header.SoftPackageReferences.empty())
	{
		return;
	}
	Reader.Seek(Summary.SoftPackageReferences.Offset);
	for (std::size_t Left = Header.SoftPackageReferences.size(); Left > 0; --Left)
	{
		Text(ETextUse::Package);
	}
}

void FTextWalk::Thumbnails()
{
	if (Summary.ThumbnailTableOffset <= 0)
	{
		return;
	}
	Reader.Seek(Summary.ThumbnailTableOffset);
	for (std::int32_t Left = Reader.Count(12); Left > 0 && !Reader.Failed(); --Left)
	{
		Text(ETextUse::FreeText); // class
		Text(ETextUse::ObjectPath);
		Reader.I32();
	}
}

void FTextWalk::Registry()
{
	if (Summary.AssetRegistryOffset <= 0)
	{
		return;
	}
	Reader.Seek(Summary.AssetRegistryOffset);
	Reader.Skip(Header.Registry.DependencyOffsetAt != 0 ? sizeof(std::int64_t) : 0);
	for (std::int32_t Left = Reader.Count(12); Left > 0 && !Reader.Failed(); --Left)
	{
		Text(ETextUse::ObjectPath);
		Text(ETextUse::FreeText); // class
		for (std::int32_t Tags = Reader.Count(8); Tags > 0 && !Reader.Failed(); --Tags)
		{
			const bool bPrimaryName = Text(ETextUse::Other) == "PrimaryAssetName";
			Text(bPrimaryName ? ETextUse::PrimaryAssetName : ETextUse::FreeText);
		}
	}
}
} // namespace

TResult<std::vector<FNameUse>> LocateNames(const FPackageHeader& Header)
{
	FNameWalk Walk(Header);
	Walk.Imports();
	Walk.Exports();
	Walk.SoftPaths();
	Walk.SoftPackages();
	Walk.SearchableNames();
	Walk.MetaData();
	Walk.BuildDependencies();
	if (Walk.Reader.Failed())
	{
		return LeavesHeader(Header);
	}
	return std::move(Walk.Uses);
}

TResult<std::vector<FTextUse>> LocateTexts(const FPackageHeader& Header)
{
	FTextWalk Walk(Header);
	Walk.PackageName();
	Walk.SubPaths();
	Walk.SoftPackages();
	Walk.Thumbnails();
	Walk.Registry();
	if (Walk.Reader.Failed())
	{
		return LeavesHeader(Header);
	}
	return std::move(Walk.Uses);
}
} // namespace QVFormats
