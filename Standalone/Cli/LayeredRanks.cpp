// SPDX-License-Identifier: MIT
#include "Standalone/Cli/LayeredRanks.h"

#include <algorithm>
#include <cmath>

namespace QVCli
{
namespace
{
using FTargets = std::vector<std::vector<std::uint32_t>>;

/** A picture's width by its height. */
constexpr double WantedShape = 1.5;
constexpr std::size_t FewestInColumn = 12;

class FRankFinder
{
public:
	explicit FRankFinder(const FLayoutInput& InInput)
		: Input(InInput)
		, EdgesOf(Input.NodeCount)
		, Ranks(Input.NodeCount)
	{
		Result.Columns.resize(Input.NodeCount);
		Result.Reversed.resize(Input.Edges.size());
		for (std::uint32_t Edge = 0; Edge < Input.Edges.size(); ++Edge)
		{
			EdgesOf[Input.Edges[Edge].first].push_back(Edge);
		}
	}

	FLayoutRanks Run()
	{
		TurnCycles();
		TakeLongestPaths();
		SplitRanks();
		return std::move(Result);
	}

private:
	enum class EState : std::uint8_t
	{
		New,
		OnPath,
		Done
	};
	struct FVisit
	{
		std::uint32_t Node;
		std::size_t NextEdge = 0;
	};

	const FLayoutInput& Input;
	FTargets EdgesOf;
	std::vector<std::uint32_t> Ranks;
	/** Each node behind all that it leads to. */
	std::vector<std::uint32_t> Finished;
	std::vector<EState> States;
	FLayoutRanks Result;

	/** Depth first with a stack of our own: chains may be long. What leads back onto the path closes a cycle. */
	void Visit(std::uint32_t Start)
	{
		std::vector<FVisit> Path;
		const auto Enter = [&](std::uint32_t Node)
		{
			States[Node] = EState::OnPath;
			Path.push_back({Node});
		};
		if (States[Start] == EState::New)
		{
			Enter(Start);
		}
		while (!Path.empty())
		{
			FVisit& Top = Path.back();
			if (Top.NextEdge == EdgesOf[Top.Node].size())
			{
				States[Top.Node] = EState::Done;
				Finished.push_back(Top.Node);
				Path.pop_back();
				continue;
			}
			const std::uint32_t Edge = EdgesOf[Top.Node][Top.NextEdge++];
			const std::uint32_t Target = Input.Edges[Edge].second;
			Result.Reversed[Edge] = States[Target] == EState::OnPath && Target != Top.Node;
			if (States[Target] == EState::New)
			{
				Enter(Target);
			}
		}
	}

	void TurnCycles()
	{
		States.assign(Input.NodeCount, EState::New);
		for (const std::uint32_t Root : Input.Roots)
		{
			Visit(Root);
		}
		for (std::uint32_t Node = 0; Node < Input.NodeCount; ++Node)
		{
			Visit(Node);
		}
	}

	void TakeLongestPaths()
	{
		// what was finished last comes first: so all edges, the turned ones too, lead to what is still to come
		FTargets TurnedOf(Input.NodeCount);
		for (std::uint32_t Edge = 0; Edge < Input.Edges.size(); ++Edge)
		{
			if (Result.Reversed[Edge])
			{
				TurnedOf[Input.Edges[Edge].second].push_back(Input.Edges[Edge].first);
			}
		}
		for (auto Node = Finished.rbegin(); Node != Finished.rend(); ++Node)
		{
			for (const std::uint32_t Edge : EdgesOf[*Node])
			{
				if (!Result.Reversed[Edge])
				{
					Lower(*Node, Input.Edges[Edge].second);
				}
			}
			for (const std::uint32_t Target : TurnedOf[*Node])
			{
				Lower(*Node, Target);
			}
		}
	}

	void Lower(std::uint32_t From, std::uint32_t To)
	{
		if (From != To)
		{
			Ranks[To] = std::max(Ranks[To], Ranks[From] + 1);
		}
	}

	std::size_t MostInColumn() const
	{
		if (Input.MostInColumn != 0)
		{
			return Input.MostInColumn;
		}
		const double CellWidth = Input.NodeWidth + Input.ColumnGap;
		const double CellHeight = Input.NodeHeight + Input.NodeGap;
		const double Wanted = std::sqrt(Input.NodeCount * CellWidth / CellHeight / WantedShape);
		return std::max(FewestInColumn, static_cast<std::size_t>(Wanted));
	}

	/** A rank that is too high becomes several columns: first what leads nowhere, so that few arrows pass them by. */
	void SplitRanks()
	{
		FTargets ByRank;
		for (std::uint32_t Node = 0; Node < Input.NodeCount; ++Node)
		{
			ByRank.resize(std::max<std::size_t>(ByRank.size(), Ranks[Node] + 1));
			ByRank[Ranks[Node]].push_back(Node);
		}
		const std::size_t Most = MostInColumn();
		for (std::vector<std::uint32_t>& Nodes : ByRank)
		{
			std::stable_partition(
				Nodes.begin(), Nodes.end(), [this](std::uint32_t Node) { return EdgesOf[Node].empty(); });
			const std::size_t Count = (Nodes.size() + Most - 1) / Most;
			for (std::size_t Place = 0; Place < Nodes.size(); ++Place)
			{
				const std::size_t Part = Place * Count / Nodes.size();
				Result.Columns[Nodes[Place]] = Result.ColumnCount + static_cast<std::uint32_t>(Part);
			}
			Result.ColumnCount += static_cast<std::uint32_t>(Count);
		}
	}
};
} // namespace

FLayoutRanks FindRanks(const FLayoutInput& Input)
{
	return FRankFinder(Input).Run();
}
} // namespace QVCli
