// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/PackageCache.h"
#include "Standalone/Engine/PackageCacheLayout.h"
#include "Standalone/Engine/PackageGraphBuilder.h"
#include "Standalone/Formats/Base/CityHash.h"
#include "Standalone/Formats/Base/InputFile.h"
#include "Standalone/Formats/Base/Parallel.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** An array in the file, whose items need not be aligned. */
template<class T>
class TColumn
{
public:
	TColumn(FByteReader& Reader, std::uint64_t Count)
		: Bytes(Reader.Take(Count * sizeof(T)))
	{
	}
	T operator[](std::size_t Index) const
	{
		T Value{};
		std::memcpy(&Value, Bytes.data() + Index * sizeof(T), sizeof(T));
		return Value;
	}

private:
	FBytes Bytes;
};

std::string ReadText(FByteReader& Reader)
{
	const FBytes Bytes = Reader.Take(Reader.U32());
	return {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()};
}

/** Whole numbers of a file are true if their check sum is; all the same nothing is read outside of it. */
class FCacheParser
{
public:
	explicit FCacheParser(FBytes Body)
		: Reader(Body)
	{
	}

	/** False if the content makes no sense. */
	bool Parse(FScannedPackages& Out)
	{
		Counts = Reader.Read<FPackageCacheCounts>();
		return ReadNames() && ReadGraph(Out) && ReadTexts(Out) && Reader.Remaining() == 0;
	}

private:
	FByteReader Reader;
	FPackageCacheCounts Counts;
	/** By number; the first is no name. */
	std::vector<FQVName> Names;
	bool bGood = true;

	FQVName NameOf(std::uint32_t Number)
	{
		bGood = bGood && Number < Names.size();
		return bGood ? Names[Number] : FQVName();
	}

	bool ReadNames()
	{
		const TColumn<std::uint32_t> Ends(Reader, Counts.Names);
		if (Reader.Failed())
		{
			return false;
		}
		const FBytes Letters = Reader.Take(Counts.Names == 0 ? 0 : Ends[Counts.Names - std::size_t{1}]);
		for (std::uint32_t Index = 0; Index < Counts.Names; ++Index)
		{
			bGood = bGood && (Index == 0 ? 0 : Ends[Index - std::size_t{1}]) < Ends[Index];
		}
		if (!bGood || Reader.Failed())
		{
			return false;
		}
		Names.resize(Counts.Names + std::size_t{1});
		Intern(Ends, {reinterpret_cast<const char*>(Letters.data()), Letters.size()});
		return true;
	}

	void Intern(const TColumn<std::uint32_t>& Ends, std::string_view Letters)
	{
		constexpr std::size_t Lot = 1024;
		const std::size_t Lots = (Counts.Names + Lot - 1) / Lot;
		ParallelFor(ThreadCount(0, Lots), Lots,
			[&](unsigned, std::size_t Number)
			{
				std::size_t Begin = Number == 0 ? 0 : Ends[Number * Lot - 1];
				for (std::size_t Index = Number * Lot; Index < std::min<std::size_t>((Number + 1) * Lot, Counts.Names);
					 ++Index)
				{
					Names[Index + 1] = FQVName(Letters.substr(Begin, Ends[Index] - Begin));
					Begin = Ends[Index];
				}
			});
	}

	bool ReadGraph(FScannedPackages& Out)
	{
		const TColumn<std::uint32_t> Packages(Reader, Counts.Packages);
		const TColumn<std::int64_t> Sizes(Reader, Counts.Packages);
		const TColumn<std::int64_t> Times(Reader, Counts.Packages);
		const TColumn<std::uint8_t> Flags(Reader, Counts.Packages);
		const TColumn<std::uint32_t> AssetEnds(Reader, Counts.Packages);
		const TColumn<std::uint32_t> ReferenceEnds(Reader, Counts.Packages);
		const TColumn<std::array<std::uint32_t, 3>> Assets(Reader, Counts.Assets);
		const TColumn<std::uint32_t> References(Reader, Counts.References);
		if (Reader.Failed())
		{
			return false;
		}
		FPackageGraphBuilder Builder;
		Builder.Reserve(Counts.Packages, Counts.Assets, Counts.References);
		std::uint32_t Asset = 0;
		std::uint32_t Reference = 0;
		for (std::uint32_t Row = 0; Row < Counts.Packages; ++Row)
		{
			const auto Has = [Each = Flags[Row]](EPackageCacheFlag Flag)
			{ return (Each & static_cast<std::uint8_t>(Flag)) != 0; };
			Builder.AddPackage(NameOf(Packages[Row]), {Sizes[Row], Times[Row], Has(EPackageCacheFlag::Map)},
				{Has(EPackageCacheFlag::NewerEngine), Has(EPackageCacheFlag::OddReferences)});
			for (; Asset < std::min(AssetEnds[Row], Counts.Assets); ++Asset)
			{
				const auto [Name, Class, Outer] = Assets[Asset];
				Builder.AddAsset({NameOf(Name), NameOf(Class), NameOf(Outer)});
			}
			for (; Reference < std::min(ReferenceEnds[Row], Counts.References); ++Reference)
			{
				const std::uint32_t Bits = References[Reference];
				Builder.AddReference({NameOf(Bits >> 2), (Bits & 1) != 0, (Bits & 2) != 0});
			}
		}
		Out.Graph = Builder.Build();
		return bGood && Asset == Counts.Assets && Reference == Counts.References;
	}

	bool ReadTexts(FScannedPackages& Out)
	{
		for (std::uint32_t Left = Counts.Mounts; Left > 0 && !Reader.Failed(); --Left)
		{
			std::string Root = ReadText(Reader);
			Out.Mounts.push_back({std::move(Root), ReadText(Reader)});
		}
		for (std::uint32_t Left = Counts.Odd; Left > 0 && !Reader.Failed(); --Left)
		{
			const FQVName Name = NameOf(Reader.U32());
			Out.OddlySpelled[Name] = ReadText(Reader);
		}
		for (std::uint32_t Left = Counts.Unreadable; Left > 0 && !Reader.Failed(); --Left)
		{
			FUnreadablePackage& Each = Out.Unreadable.emplace_back();
			Each.File = ReadText(Reader);
			Each.Reason = ReadText(Reader);
			Each.Stamp.Size = Reader.I64();
			Each.Stamp.Time = Reader.I64();
			Each.Stamp.bMap = Reader.U8() != 0;
		}
		return bGood && !Reader.Failed();
	}
};
} // namespace

TResult<FScannedPackagesRef> ReadPackageCache(FBytes Bytes)
{
	FPackageCacheHead Head;
	if (Bytes.size() < sizeof(Head))
	{
		return FError{"is cut short"};
	}
	std::memcpy(&Head, Bytes.data(), sizeof(Head));
	if (Head.Magic != FPackageCacheHead::RightMagic || Head.Version != FPackageCacheHead::RightVersion)
	{
		return FError{"is of another version"};
	}
	const FBytes Body = Bytes.subspan(sizeof(Head));
	const auto Packages = std::make_shared<FScannedPackages>();
	if (Head.Hash != CityHash64(Body) || !FCacheParser(Body).Parse(*Packages))
	{
		return FError{"is damaged"};
	}
	return FScannedPackagesRef(Packages);
}

TResult<FScannedPackagesRef> LoadPackageCache(const std::string& Path)
{
	TResult<FInputFile> File = FInputFile::Open(ToOsPath(Path));
	if (!File)
	{
		return File.Error();
	}
	std::vector<std::byte> Bytes(static_cast<std::size_t>(File->Size()));
	const TResult<std::size_t> Count = File->ReadAt(0, Bytes);
	TResult<FScannedPackagesRef> Packages =
		Count ? ReadPackageCache(FBytes(Bytes).first(*Count)) : TResult<FScannedPackagesRef>(Count.Error());
	return Packages || !Count ? std::move(Packages) : FError{Path + " " + Packages.Error().Message};
}
} // namespace QVStandalone
