// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/PackageCache.h"
#include "Standalone/Engine/PackageCacheLayout.h"
#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Base/CityHash.h"
#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Base/OutputFile.h"

#include <filesystem>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** Numbers the names in the order in which they are met. */
class FNameNumbers
{
public:
	std::uint32_t Of(FQVName Name)
	{
		if (Name.IsNone())
		{
			return 0;
		}
		if (Name.GetIndex() >= Numbers.size())
		{
			Numbers.resize(Name.GetIndex() + Name.GetIndex() / 2 + 1024);
		}
		std::uint32_t& Number = Numbers[Name.GetIndex()];
		if (Number == 0)
		{
			Names.push_back(Name);
			Number = static_cast<std::uint32_t>(Names.size());
		}
		return Number;
	}

	void Write(FByteWriter& Out) const
	{
		std::uint32_t End = 0;
		for (const FQVName Name : Names)
		{
			End += static_cast<std::uint32_t>(Name.ToView().size());
			Out.U32(End);
		}
		for (const FQVName Name : Names)
		{
			Out.Append(std::as_bytes(std::span(Name.ToView())));
		}
	}
	std::uint32_t Num() const { return static_cast<std::uint32_t>(Names.size()); }

private:
	std::vector<FQVName> Names;
	std::vector<std::uint32_t> Numbers;
};

void WriteText(FByteWriter& Out, std::string_view Text)
{
	Out.U32(static_cast<std::uint32_t>(Text.size()));
	Out.Append(std::as_bytes(std::span(Text)));
}

std::uint8_t FlagsOf(const FPackageFile& File, FPackageTraits Traits)
{
	const auto Bit = [](EPackageCacheFlag Flag, bool bSet) { return bSet ? static_cast<unsigned>(Flag) : 0U; };
	return static_cast<std::uint8_t>(Bit(EPackageCacheFlag::Map, File.bMap) |
									 Bit(EPackageCacheFlag::NewerEngine, Traits.bNewerEngine) |
									 Bit(EPackageCacheFlag::OddReferences, Traits.bOddReferences));
}

/** All columns of the packages, one behind the other. */
void WritePackages(FByteWriter& Out, const FPackageGraph& Graph, FNameNumbers& Names)
{
	const auto ForEach = [&Graph](const auto& Write)
	{
		for (std::uint32_t Row = 0; Row < Graph.Num(); ++Row)
		{
			Write(Row);
		}
	};
	std::uint32_t AssetsEnd = 0;
	std::uint32_t ReferencesEnd = 0;
	ForEach([&](std::uint32_t Row) { Out.U32(Names.Of(Graph.NameAt(Row))); });
	ForEach([&](std::uint32_t Row) { Out.I64(Graph.FileAt(Row).Size); });
	ForEach([&](std::uint32_t Row) { Out.I64(Graph.FileAt(Row).Time); });
	ForEach([&](std::uint32_t Row) { Out.U8(FlagsOf(Graph.FileAt(Row), Graph.TraitsAt(Row))); });
	ForEach([&](std::uint32_t Row) { Out.U32(AssetsEnd += static_cast<std::uint32_t>(Graph.AssetsAt(Row).size())); });
	ForEach([&](std::uint32_t Row)
		{ Out.U32(ReferencesEnd += static_cast<std::uint32_t>(Graph.ReferencesAt(Row).size())); });
}

void WriteRows(FByteWriter& Out, const FPackageGraph& Graph, FNameNumbers& Names, FPackageCacheCounts& Counts)
{
	for (std::uint32_t Row = 0; Row < Graph.Num(); ++Row)
	{
		for (const FAssetRow& Asset : Graph.AssetsAt(Row))
		{
			Out.U32(Names.Of(Asset.AssetName));
			Out.U32(Names.Of(Asset.ClassPath));
			Out.U32(Names.Of(Asset.OuterPath));
			++Counts.Assets;
		}
	}
	for (std::uint32_t Row = 0; Row < Graph.Num(); ++Row)
	{
		for (const FPackedReference Reference : Graph.ReferencesAt(Row))
		{
			Out.U32(Names.Of(Reference.Package()) << 2 | (Reference.Bits & 3));
			++Counts.References;
		}
	}
}

void WriteTexts(FByteWriter& Out, const FScannedPackages& Packages, FNameNumbers& Names)
{
	for (const FMountPoint& Mount : Packages.Mounts)
	{
		WriteText(Out, Mount.Root);
		WriteText(Out, Mount.Folder);
	}
	for (const auto& [Name, Path] : Packages.OddlySpelled)
	{
		Out.U32(Names.Of(Name));
		WriteText(Out, Path);
	}
	for (const FUnreadablePackage& Each : Packages.Unreadable)
	{
		WriteText(Out, Each.File);
		WriteText(Out, Each.Reason);
		Out.I64(Each.Stamp.Size);
		Out.I64(Each.Stamp.Time);
		Out.U8(Each.Stamp.bMap ? 1 : 0);
	}
}

FByteWriter WriteBody(const FScannedPackages& Packages)
{
	FNameNumbers Names;
	FPackageCacheCounts Counts;
	FByteWriter Rest;
	WritePackages(Rest, Packages.Graph, Names);
	WriteRows(Rest, Packages.Graph, Names, Counts);
	WriteTexts(Rest, Packages, Names);
	Counts.Names = Names.Num();
	Counts.Packages = Packages.Graph.Num();
	Counts.Mounts = static_cast<std::uint32_t>(Packages.Mounts.size());
	Counts.Odd = static_cast<std::uint32_t>(Packages.OddlySpelled.size());
	Counts.Unreadable = static_cast<std::uint32_t>(Packages.Unreadable.size());
	FByteWriter Body;
	Body.Write(Counts);
	Names.Write(Body);
	Body.Append(Rest.Bytes());
	return Body;
}
} // namespace

FStatus SavePackageCache(const std::string& Path, const FScannedPackages& Packages)
{
	const FByteWriter Body = WriteBody(Packages);
	FPackageCacheHead Head;
	Head.Hash = CityHash64(Body.Bytes());
	std::error_code Ignored; // a folder that cannot be made shows when the file is
	FDisk::MakeFolders(ToOsPath(Path).parent_path(), Ignored);
	TResult<FOutputFile> File = FOutputFile::Create(ToOsPath(Path));
	if (!File)
	{
		return File.Error();
	}
	FStatus Written = File->WriteAt(0, std::as_bytes(std::span(&Head, 1)));
	Written = Written ? File->WriteAt(sizeof(Head), Body.Bytes()) : std::move(Written);
	return Written ? File->Commit(sizeof(Head) + Body.Position()) : std::move(Written);
}
} // namespace QVStandalone
