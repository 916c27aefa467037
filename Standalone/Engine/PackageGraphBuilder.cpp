// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageGraphBuilder.h"

#include "Core/QVCheck.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace QVStandalone
{
void FPackageGraphBuilder::Reserve(std::size_t Packages, std::size_t Assets, std::size_t References)
{
	Graph.Names.reserve(Packages);
	Graph.Files.reserve(Packages);
	Graph.Traits.reserve(Packages);
	Graph.AssetStarts.reserve(Packages + 1);
	Graph.ReferenceStarts.reserve(Packages + 1);
	Graph.Assets.reserve(Assets);
	Graph.References.reserve(References);
}

/** The starts' last item is where the next package begins. */
void FPackageGraphBuilder::ClosePackage()
{
	if (Graph.AssetStarts.size() <= Graph.Names.size())
	{
		Graph.AssetStarts.push_back(static_cast<std::uint32_t>(Graph.Assets.size()));
		Graph.ReferenceStarts.push_back(static_cast<std::uint32_t>(Graph.References.size()));
	}
}

void FPackageGraphBuilder::AddPackage(FQVName Name, const FPackageFile& File, FPackageTraits Traits)
{
	ClosePackage();
	Graph.Names.push_back(Name);
	Graph.Files.push_back(File);
	Graph.Traits.push_back(Traits);
}

void FPackageGraphBuilder::AddReference(const FQVPackageDependency& Reference)
{
	if (!Reference.Package.IsNone())
	{
		Graph.References.push_back(FPackedReference::Pack(Reference));
	}
}

void FPackageGraphBuilder::AddFrom(const FPackageGraph& Other, std::uint32_t Row)
{
	AddPackage(Other.NameAt(Row), Other.FileAt(Row), Other.TraitsAt(Row));
	const std::span<const FAssetRow> Assets = Other.AssetsAt(Row);
	Graph.Assets.insert(Graph.Assets.end(), Assets.begin(), Assets.end());
	const std::span<const FPackedReference> References = Other.ReferencesAt(Row);
	Graph.References.insert(Graph.References.end(), References.begin(), References.end());
}

bool FPackageGraphBuilder::IsInOrder() const
{
	return std::adjacent_find(Graph.Names.begin(), Graph.Names.end(),
			   [](FQVName A, FQVName B) { return !FQVName::LexicalLess(A, B); }) == Graph.Names.end();
}

void FPackageGraphBuilder::PutInOrder()
{
	const FPackageGraph Old = std::exchange(Graph, {});
	std::vector<std::uint32_t> Order(Old.Num());
	std::iota(Order.begin(), Order.end(), 0U);
	std::stable_sort(Order.begin(), Order.end(),
		[&Old](std::uint32_t A, std::uint32_t B) { return FQVName::LexicalLess(Old.Names[A], Old.Names[B]); });
	Reserve(Old.Num(), Old.Assets.size(), Old.References.size());
	for (const std::uint32_t Row : Order)
	{
		if (Graph.Names.empty() || Graph.Names.back() != Old.Names[Row])
		{
			AddFrom(Old, Row);
		}
	}
	ClosePackage();
}

/** Gives each package its row as its node, and what is only referred to the nodes behind them. */
std::uint32_t FPackageGraphBuilder::NumberNames()
{
	std::uint32_t Highest = 0;
	for (const FQVName Name : Graph.Names)
	{
		Highest = std::max(Highest, Name.GetIndex());
	}
	for (const FPackedReference Reference : Graph.References)
	{
		Highest = std::max(Highest, Reference.Package().GetIndex());
	}
	Graph.Nodes.assign(Highest + std::size_t{1}, FPackageGraph::NoRow);
	std::uint32_t Next = 0;
	for (const FQVName Name : Graph.Names)
	{
		Graph.Nodes[Name.GetIndex()] = Next++;
	}
	for (const FPackedReference Reference : Graph.References)
	{
		std::uint32_t& Node = Graph.Nodes[Reference.Package().GetIndex()];
		Node = Node == FPackageGraph::NoRow ? Next++ : Node;
	}
	return Next;
}

/** Counts, sums up, and fills from the back, after which each start has come to stand where it belongs. */
void FPackageGraphBuilder::LinkReferencers(std::uint32_t NodeCount)
{
	std::vector<std::uint32_t>& Starts = Graph.ReferencerStarts;
	Starts.assign(NodeCount + std::size_t{1}, 0);
	for (const FPackedReference Reference : Graph.References)
	{
		++Starts[Graph.NodeOf(Reference.Package())];
	}
	std::partial_sum(Starts.begin(), Starts.end(), Starts.begin());
	Graph.Referencers.resize(Graph.References.size());
	for (std::uint32_t Row = Graph.Num(); Row-- > 0;)
	{
		for (const FPackedReference Reference : Graph.ReferencesAt(Row))
		{
			Graph.Referencers[--Starts[Graph.NodeOf(Reference.Package())]] = Row;
		}
	}
}

void FPackageGraphBuilder::MarkReferences()
{
	Graph.FirstReferences.assign(Graph.Nodes.size(), FPackageGraph::NoRow);
	for (std::uint32_t Row = 0; Row < Graph.Num(); ++Row)
	{
		const std::uint32_t End = Graph.ReferenceStarts[Row + 1];
		for (std::uint32_t At = Graph.ReferenceStarts[Row]; At < End; ++At)
		{
			Graph.References[At].SetLast(At + 1 == End);
		}
		const bool bAny = Graph.ReferenceStarts[Row] < End;
		Graph.FirstReferences[Graph.Names[Row].GetIndex()] = bAny ? Graph.ReferenceStarts[Row] : FPackageGraph::NoRow;
	}
}

FPackageGraph FPackageGraphBuilder::Build()
{
	QV_CHECK(Graph.References.size() < FPackageGraph::NoRow && Graph.Assets.size() < FPackageGraph::NoRow);
	ClosePackage();
	if (!IsInOrder())
	{
		PutInOrder();
	}
	LinkReferencers(NumberNames());
	MarkReferences();
	Graph.Assets.shrink_to_fit();
	Graph.References.shrink_to_fit();
	return std::exchange(Graph, {});
}
} // namespace QVStandalone
