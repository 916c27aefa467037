// SPDX-License-Identifier: MIT
#include "Standalone/Engine/AssetRegistry.h"

#include "Core/QVString.h"
#include "Standalone/Engine/PackageFacts.h"
#include "Standalone/Engine/PackageHeaderBytes.h"
#include "Standalone/Engine/PackageSpelling.h"

#include <algorithm>

namespace QVStandalone
{
namespace
{
FQVAssetData MakeAssetData(FQVName Package, const FAssetRow& Row)
{
	return {Package, Row.AssetName, Row.ClassPath, Row.OuterPath};
}
} // namespace

void FAssetRegistry::GetAssets(const FQVAssetFilter& Filter, std::vector<FQVAssetData>& Out) const
{
	Out.clear();
	const FPackageGraph& Graph = Packages->Graph;
	const auto [First, Last] = Graph.RowsBelow(Filter.PackagePath);
	for (std::uint32_t Row = First; Row < Last; ++Row)
	{
		for (const FAssetRow& Asset : Graph.AssetsAt(Row))
		{
			if (Filter.ClassPath.IsNone() || Asset.ClassPath == Filter.ClassPath)
			{
				Out.push_back(MakeAssetData(Graph.NameAt(Row), Asset));
			}
		}
	}
}

void FAssetRegistry::GetAssetsByPackageName(FQVName Package, std::vector<FQVAssetData>& Out) const
{
	Out.clear();
	const std::uint32_t Row = Packages->Graph.FindRow(Package);
	if (Row != FPackageGraph::NoRow)
	{
		for (const FAssetRow& Asset : Packages->Graph.AssetsAt(Row))
		{
			Out.push_back(MakeAssetData(Package, Asset));
		}
	}
}

void FAssetRegistry::AppendDependencies(FQVName Package, const FPackedReference* First, EQVDependencyQuery Query,
	std::vector<FQVPackageDependency>& Out) const
{
	for (const FPackedReference* Reference = First; Reference != nullptr;
		 Reference = Reference->IsLast() ? nullptr : Reference + 1)
	{
		if (Query == EQVDependencyQuery::All || Reference->IsUsedInGame())
		{
			Out.push_back(Reference->Unpack());
		}
	}
	Externals.AppendTo(Package, Packages->Graph, Out);
}

void FAssetRegistry::GetDependencies(
	FQVName Package, EQVDependencyQuery Query, std::vector<FQVPackageDependency>& Out) const
{
	Out.clear();
	AppendDependencies(Package, Packages->Graph.FirstReferenceOf(Package), Query, Out);
}

/** Each step asks for the memory of all packages before the next one needs it. */
void FAssetRegistry::GetDependenciesOfEach(
	std::span<const FQVName> OfPackages, EQVDependencyQuery Query, FQVDependencyLists& Out) const
{
	const FPackageGraph& Graph = Packages->Graph;
	Out.All.clear();
	Out.Ends.clear();
	for (const FQVName Package : OfPackages)
	{
		Graph.PrefetchReferenceOf(Package);
	}
	std::vector<const FPackedReference*> Firsts;
	Firsts.reserve(OfPackages.size());
	for (const FQVName Package : OfPackages)
	{
		Firsts.push_back(Graph.FirstReferenceOf(Package));
		Prefetch(Firsts.back());
	}
	for (std::size_t Place = 0; Place < OfPackages.size(); ++Place)
	{
		AppendDependencies(OfPackages[Place], Firsts[Place], Query, Out.All);
		Out.Ends.push_back(Out.All.size());
	}
}

void FAssetRegistry::GetReferencers(FQVName Package, std::vector<FQVName>& Out) const
{
	Out.clear();
	std::uint32_t Previous = FPackageGraph::NoRow;
	for (const std::uint32_t Row : Packages->Graph.ReferencersOf(Package))
	{
		if (Row != Previous)
		{
			Out.push_back(Packages->Graph.NameAt(Row));
		}
		Previous = Row;
	}
}

void FAssetRegistry::GetExternalPackages(FQVName Map, std::vector<FQVName>& Out) const
{
	Out.clear();
	Externals.AppendTo(Map, Packages->Graph, Out);
}

std::optional<std::int64_t> FAssetRegistry::GetPackageSize(FQVName Package) const
{
	const std::uint32_t Row = Packages->Graph.FindRow(Package);
	return Row != FPackageGraph::NoRow ? std::optional(Packages->Graph.FileAt(Row).Size) : std::nullopt;
}

std::string FAssetRegistry::GetPackageFile(FQVName Package) const
{
	const std::uint32_t Row = Packages->Graph.FindRow(Package);
	return Row != FPackageGraph::NoRow ? Packages->PathAt(Row) : std::string();
}

void FAssetRegistry::GetUnreadablePackages(std::vector<FQVUnreadablePackage>& Out) const
{
	Out.clear();
	for (const FUnreadablePackage& Each : Packages->Unreadable)
	{
		Out.push_back({Each.File, Each.Reason});
	}
}

std::string FAssetRegistry::GetNewerEngine(FQVName Package) const
{
	const std::uint32_t Row = Packages->Graph.FindRow(Package);
	if (Row == FPackageGraph::NoRow || !Packages->Graph.TraitsAt(Row).bNewerEngine)
	{
		return {};
	}
	FPackageHeaderReader Reader;
	const QVFormats::TResult<QVFormats::FPackageHeader> Header = Reader.Read(Packages->PathAt(Row));
	return Header ? QVFormats::DescribeEngine(Header->Summary) : "a newer engine";
}

void FAssetRegistry::GetMisspelledReferences(FQVName Package, std::vector<FQVMisspelledReference>& Out) const
{
	const std::uint32_t Row = Packages->Graph.FindRow(Package);
	Out =
		Row != FPackageGraph::NoRow ? FindMisspelledReferences(*Packages, Row) : std::vector<FQVMisspelledReference>();
}

bool FAssetRegistry::GetTagValue(const FQVAssetData& Asset, std::string_view Tag, std::string& Out) const
{
	const std::string File = GetPackageFile(Asset.PackageName);
	FPackageHeaderReader Reader;
	const QVFormats::TResult<QVFormats::FPackageHeader> Header = File.empty() ? QVFormats::FError{} : Reader.Read(File);
	if (!Header)
	{
		return false;
	}
	for (const QVFormats::FPackageAsset& Each : Header->Registry.Assets)
	{
		const FAssetRow Row = MakeAssetRow(*Header, Each, Asset.PackageName);
		if (Row.AssetName != Asset.AssetName || Row.OuterPath != Asset.OuterPath)
		{
			continue;
		}
		const std::span<const QVFormats::FPackageTag> Tags = Header->Registry.TagsOf(Each);
		const auto Found = std::find_if(Tags.begin(), Tags.end(),
			[Tag](const QVFormats::FPackageTag& Candidate)
			{ return FQVString::EqualsIgnoreCase(Candidate.Key.ToUtf8(), Tag); });
		if (Found != Tags.end())
		{
			Out = Found->Value.ToUtf8();
			return true;
		}
	}
	return false;
}
} // namespace QVStandalone
