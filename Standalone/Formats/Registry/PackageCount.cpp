// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/CityHash.h"
#include "Standalone/Formats/Registry/RegistryLayout.h"

#include <algorithm>
#include <functional>
#include <iterator>

namespace QVFormats
{
namespace
{
using namespace RegistryLayout;

/** The hash that all spellings of a name share. */
using FNameHashList = std::vector<std::uint64_t>;

void CollectHashes(FInput& In, FNameHashList& Out)
{
	const FNameBatch Batch = ReadNameBatch(In);
	Out.reserve(Batch.Count);
	if (Batch.Algorithm == CityHashAlgorithm)
	{
		FByteReader Hashes(Batch.Hashes);
		std::generate_n(std::back_inserter(Out), Batch.Count, [&Hashes] { return Hashes.U64(); });
	}
	else if (!ForEachName(Batch, [&Out](FStringView Name) { Out.push_back(CityHash64Folded(Name)); }))
	{
		In.Fail();
	}
}

void SkipBundles(FInput& In)
{
	for (std::int32_t Bundles = In.Count(8); Bundles > 0 && !In.Failed(); --Bundles)
	{
		In.SkipNames(1);
		for (std::int32_t Entries = In.Count(12); Entries > 0 && !In.Failed(); --Entries)
		{
			In.SkipNames(2);
			In.SkipText();
		}
	}
}

void SkipItems(FInput& In, std::size_t ItemBytes)
{
	In.Skip(static_cast<std::uint64_t>(In.Count(ItemBytes)) * ItemBytes);
}

/** Passes one asset; returns its package. */
FNameRef SkipAsset(FInput& In)
{
	const int NamesBefore = (In.IsAtLeast(EVersion::NoObjectPaths) ? 0 : 1) + 1 + In.NamesOfClass();
	In.SkipNames(static_cast<std::uint64_t>(NamesBefore));
	const FNameRef Package = In.Name();
	In.SkipNames(In.HasOuterPaths() ? 2 : 1);
	In.U64(); // tags
	SkipBundles(In);
	SkipItems(In, 4); // chunk ids
	In.U32();
	return Package;
}

void SkipPackage(FInput& In)
{
	In.SkipNames(1);
	In.I64();
	In.Skip(In.IsAtLeast(EVersion::PackageSavedHash) ? 20 : 16);
	In.Skip(In.Bool32() ? 16 : 0);
	if (In.IsAtLeast(EVersion::ChunkHashes))
	{
		SkipItems(In, 32);
	}
	if (In.IsAtLeast(EVersion::WorkspaceDomain))
	{
		In.Skip(In.IsAtLeast(EVersion::FileVersionUE5) ? 16 : 12); // versions and flags
		SkipItems(In, 20);
	}
	if (In.IsAtLeast(EVersion::ImportedClasses))
	{
		In.SkipNames(static_cast<std::uint64_t>(In.Count(4)));
	}
	if (In.IsAtLeast(EVersion::PackageExtension))
	{
		In.SkipText();
	}
}

template<class T>
std::int32_t CountDifferent(std::vector<T>& Items)
{
	std::sort(Items.begin(), Items.end());
	return static_cast<std::int32_t>(std::unique(Items.begin(), Items.end()) - Items.begin());
}
void WalkAssets(FInput& In, const FNameHashList& Hashes, FRegistryCount& Result)
{
	Result.Assets = In.Count(SmallestAsset);
	std::vector<std::pair<std::uint64_t, std::uint32_t>> Packages;
	Packages.reserve(static_cast<std::size_t>(Result.Assets));
	for (std::int32_t Left = Result.Assets; Left > 0 && !In.Failed(); --Left)
	{
		const FNameRef Package = SkipAsset(In);
		Packages.emplace_back(In.Failed() ? 0 : Hashes[Package.Entry], Package.Number);
	}
	Result.Packages = CountDifferent(Packages);
}

void WalkDependencies(FInput& In)
{
	const std::int64_t Bytes = In.I64();
	if (Bytes < 0)
	{
		In.Fail();
		return;
	}
	In.Skip(static_cast<std::uint64_t>(Bytes));
}

void WalkPackages(FInput& In, FRegistryCount& Result)
{
	Result.PackageData = In.Count(SmallestPackage);
	for (std::int64_t Left = Result.PackageData; Left > 0 && !In.Failed(); --Left)
	{
		SkipPackage(In);
	}
}
} // namespace

TResult<FRegistryCount> CountPackages(FBytes File)
{
	FInput In(File);
	if (const FStatus Status = ReadStart(In); !Status)
	{
		return Status.Error();
	}
	FRegistryCount Result;
	Result.Version = static_cast<std::int32_t>(In.Version);
	FNameHashList Hashes;
	const std::pair<std::string_view, std::function<void()>> Parts[] = {
		{"its names", [&] { CollectHashes(In, Hashes); }}, {"its tags", [&] { LocateTagStore(In); }},
		{"its assets", [&] { WalkAssets(In, Hashes, Result); }}, {"its dependencies", [&] { WalkDependencies(In); }},
		{"its package data", [&] { WalkPackages(In, Result); }}};
	for (const auto& [Where, Walk] : Parts)
	{
		Walk();
		if (In.Failed())
		{
			return Damaged(Where, In);
		}
	}
	return Result;
}
} // namespace QVFormats
