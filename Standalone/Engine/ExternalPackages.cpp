// SPDX-License-Identifier: MIT
#include "Standalone/Engine/ExternalPackages.h"

#include "Core/QVString.h"

namespace QVStandalone
{
namespace
{
constexpr std::string_view Markers[] = {"__ExternalActors__", "__ExternalObjects__"};
/** `0/AB/<name>` behind the map's path. */
constexpr int PartsBelowMap = 3;

/** The map that a package belongs to by its place; empty if it lies too high up for that. */
std::string OwnerOf(std::string_view Package, std::string_view Marker)
{
	const std::size_t At = Package.find('/', 1) + 1;
	std::string_view Below = Package.substr(std::min(Package.size(), At + Marker.size() + 1));
	for (int Part = 0; Part < PartsBelowMap; ++Part)
	{
		const std::size_t Slash = Below.rfind('/');
		Below = Below.substr(0, Slash == std::string_view::npos ? 0 : Slash);
	}
	return Below.empty() ? std::string() : std::string(Package.substr(0, At)).append(Below);
}
} // namespace

FExternalPackages::FExternalPackages(const FPackageGraph& Graph)
{
	// the packages are sorted: one root after the other
	for (std::uint32_t Row = 0; Row < Graph.Num();)
	{
		const std::string_view Name = Graph.NameAt(Row).ToView();
		const std::string Root(Name.substr(0, Name.find('/', 1)));
		for (const std::string_view Marker : Markers)
		{
			AddBelow(Graph, Root, Marker);
		}
		Row = std::max(Row + 1, Graph.RowsBelow(Root).second);
	}
}

void FExternalPackages::AddBelow(const FPackageGraph& Graph, const std::string& Root, std::string_view Marker)
{
	const auto [First, Last] = Graph.RowsBelow(Root + "/" + std::string(Marker));
	FQVName Owner;
	for (std::uint32_t Row = First; Row < Last; ++Row)
	{
		const FQVName OfRow(OwnerOf(Graph.NameAt(Row).ToView(), Marker));
		if (OfRow.IsNone())
		{
			continue;
		}
		std::vector<FRows>& Rows = RowsOf[OfRow];
		if (OfRow == Owner && Rows.back().second == Row)
		{
			++Rows.back().second;
		}
		else
		{
			Rows.emplace_back(Row, Row + 1);
			Owners.Add(OfRow);
		}
		Owner = OfRow;
	}
}

template<class TAdd>
void FExternalPackages::ForEachOf(FQVName Map, const FPackageGraph& Graph, TAdd Add) const
{
	if (!Owners.Contains(Map))
	{
		return;
	}
	for (const FRows& Rows : RowsOf.at(Map))
	{
		for (std::uint32_t Row = Rows.first; Row < Rows.second; ++Row)
		{
			Add(Graph.NameAt(Row));
		}
	}
}

void FExternalPackages::AppendTo(FQVName Map, const FPackageGraph& Graph, std::vector<FQVPackageDependency>& Out) const
{
	ForEachOf(Map, Graph, [&Out](FQVName Package) { Out.push_back({Package, false, true}); });
}

void FExternalPackages::AppendTo(FQVName Map, const FPackageGraph& Graph, std::vector<FQVName>& Out) const
{
	ForEachOf(Map, Graph, [&Out](FQVName Package) { Out.push_back(Package); });
}
} // namespace QVStandalone
