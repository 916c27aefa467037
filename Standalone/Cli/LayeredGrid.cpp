// SPDX-License-Identifier: MIT
#include "Standalone/Cli/LayeredGrid.h"

#include <algorithm>
#include <unordered_map>

namespace QVCli
{
namespace
{
/** Arrows for which there are no waypoints left are drawn straight across. */
constexpr std::size_t MostWaypoints = 60'000;

class FGridMaker
{
public:
	FGridMaker(const FLayoutInput& InInput, const FLayoutRanks& InRanks)
		: Input(InInput)
		, Ranks(InRanks)
		, Outgoing(Input.NodeCount)
		, Incoming(Input.NodeCount)
	{
	}

	FLayoutGrid Run()
	{
		Grid.NodeCount = Input.NodeCount;
		Grid.Columns.resize(Ranks.ColumnCount);
		for (std::uint32_t Node = 0; Node < Input.NodeCount; ++Node)
		{
			AddVertex(Ranks.Columns[Node]);
		}
		for (std::uint32_t Edge = 0; Edge < Input.Edges.size(); ++Edge)
		{
			++Outgoing[Ends(Edge).first];
			++Incoming[Ends(Edge).second];
		}
		for (std::uint32_t Edge = 0; Edge < Input.Edges.size(); ++Edge)
		{
			Grid.Paths.push_back(MakePath(Ends(Edge)));
		}
		JoinNeighbours();
		return std::move(Grid);
	}

private:
	using FEdge = std::pair<std::uint32_t, std::uint32_t>;

	const FLayoutInput& Input;
	const FLayoutRanks& Ranks;
	std::vector<std::uint32_t> Outgoing;
	std::vector<std::uint32_t> Incoming;
	/** By the box that they belong to, the side of it, and the column. */
	std::unordered_map<std::uint64_t, std::uint32_t> Waypoints;
	FLayoutGrid Grid;

	/** From left to right. */
	FEdge Ends(std::uint32_t Edge) const
	{
		const auto [From, To] = Input.Edges[Edge];
		return Ranks.Reversed[Edge] ? FEdge(To, From) : FEdge(From, To);
	}

	std::uint32_t AddVertex(std::uint32_t Column)
	{
		const auto Vertex = static_cast<std::uint32_t>(Grid.Vertices.size());
		Grid.Vertices.push_back({Column, {}, {}});
		Grid.Columns[Column].push_back(Vertex);
		return Vertex;
	}

	std::vector<std::uint32_t> MakePath(FEdge Edge)
	{
		const auto [From, To] = Edge;
		std::vector<std::uint32_t> Path;
		if (From == To)
		{
			return Path;
		}
		Path.push_back(From);
		// the box with more arrows has one line for all of them as far as they run together
		const bool bOfTarget = Incoming[To] > Outgoing[From];
		const std::uint64_t Owner = std::uint64_t{bOfTarget ? To : From} * 2 + (bOfTarget ? 1 : 0);
		for (std::uint32_t Column = Ranks.Columns[From] + 1; Column < Ranks.Columns[To]; ++Column)
		{
			const std::uint64_t Key = Owner << 32 | Column;
			const auto Known = Waypoints.find(Key);
			if (Known == Waypoints.end() && Waypoints.size() >= MostWaypoints)
			{
				return {From, To};
			}
			Path.push_back(Known != Waypoints.end() ? Known->second : Waypoints[Key] = AddVertex(Column));
		}
		Path.push_back(To);
		return Path;
	}

	static void MakeUnique(std::vector<std::uint32_t>& List)
	{
		std::sort(List.begin(), List.end());
		List.erase(std::unique(List.begin(), List.end()), List.end());
	}

	void JoinNeighbours()
	{
		for (const std::vector<std::uint32_t>& Path : Grid.Paths)
		{
			for (std::size_t Place = 1; Place < Path.size(); ++Place)
			{
				if (Grid.Vertices[Path[Place]].Column == Grid.Vertices[Path[Place - 1]].Column + 1)
				{
					Grid.Vertices[Path[Place - 1]].Right.push_back(Path[Place]);
					Grid.Vertices[Path[Place]].Left.push_back(Path[Place - 1]);
				}
			}
		}
		for (FLayoutGrid::FVertex& Vertex : Grid.Vertices)
		{
			MakeUnique(Vertex.Left);
			MakeUnique(Vertex.Right);
		}
	}
};
} // namespace

FLayoutGrid MakeGrid(const FLayoutInput& Input, const FLayoutRanks& Ranks)
{
	return FGridMaker(Input, Ranks).Run();
}
} // namespace QVCli
