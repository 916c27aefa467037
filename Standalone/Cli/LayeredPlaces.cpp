// SPDX-License-Identifier: MIT
#include "Standalone/Cli/LayeredGrid.h"

#include <algorithm>

namespace QVCli
{
namespace
{
constexpr int Sweeps = 10;
/** How strongly a line wants to run straight on through a column that it passes. */
constexpr double WaypointWeight = 3;

class FPlacer
{
public:
	FPlacer(const FLayoutInput& InInput, const FLayoutGrid& InGrid)
		: Input(InInput)
		, Grid(InGrid)
		, Middles(Grid.Vertices.size())
	{
	}

	std::vector<double> Run()
	{
		Stack();
		for (int Sweep = 0; Sweep < Sweeps; ++Sweep)
		{
			for (std::size_t Column = 0; Column < Grid.Columns.size(); ++Column)
			{
				Place(Grid.Columns[Column], true, Sweep + 1 == Sweeps);
			}
			for (std::size_t Column = Grid.Columns.size(); Column-- > 0;)
			{
				Place(Grid.Columns[Column], Sweep + 1 == Sweeps, true);
			}
		}
		return std::move(Middles);
	}

private:
	/** Neighbours in a column that press against one another, and so move as one. */
	struct FBlock
	{
		double WeightedSum = 0;
		double Weight = 0;
		std::size_t Count = 0;

		double Wish() const { return WeightedSum / Weight; }
	};

	const FLayoutInput& Input;
	const FLayoutGrid& Grid;
	std::vector<double> Middles;

	double HalfRoom(std::uint32_t Vertex) const
	{
		return (Grid.IsBox(Vertex) ? Input.NodeHeight + Input.NodeGap : Input.LineGap) / 2;
	}

	/** Distances from the first of a column when nothing is moved apart. */
	std::vector<double> Offsets(const std::vector<std::uint32_t>& Column) const
	{
		std::vector<double> Result(Column.size());
		for (std::size_t Place = 1; Place < Column.size(); ++Place)
		{
			Result[Place] = Result[Place - 1] + HalfRoom(Column[Place - 1]) + HalfRoom(Column[Place]);
		}
		return Result;
	}

	/** All columns about one line. */
	void Stack()
	{
		for (const std::vector<std::uint32_t>& Column : Grid.Columns)
		{
			const std::vector<double> Down = Offsets(Column);
			for (std::size_t Place = 0; Place < Column.size(); ++Place)
			{
				Middles[Column[Place]] = Down[Place] - Down.back() / 2;
			}
		}
	}

	FBlock WishOf(std::uint32_t Vertex, bool bLeft, bool bRight) const
	{
		FBlock Wish;
		const auto Add = [&](const std::vector<std::uint32_t>& Neighbours)
		{
			for (const std::uint32_t Neighbour : Neighbours)
			{
				const double Weight = Grid.IsBox(Vertex) || Grid.IsBox(Neighbour) ? 1 : WaypointWeight;
				Wish.WeightedSum += Weight * Middles[Neighbour];
				Wish.Weight += Weight;
			}
		};
		bLeft ? Add(Grid.Vertices[Vertex].Left) : void();
		bRight ? Add(Grid.Vertices[Vertex].Right) : void();
		if (Wish.Weight == 0)
		{
			return {Middles[Vertex], 1, 1};
		}
		// many arrows make a box no heavier than one: it would push aside all that stands near
		return {Wish.WeightedSum / Wish.Weight, 1, 1};
	}

	/** The least sum of squares of the distances to what each wishes, in the order given and without overlap. */
	void Place(const std::vector<std::uint32_t>& Column, bool bLeft, bool bRight)
	{
		const std::vector<double> Down = Offsets(Column);
		std::vector<FBlock> Blocks;
		for (std::size_t Place = 0; Place < Column.size(); ++Place)
		{
			FBlock Block = WishOf(Column[Place], bLeft, bRight);
			Block.WeightedSum -= Down[Place] * Block.Weight;
			while (!Blocks.empty() && Blocks.back().Wish() >= Block.Wish())
			{
				Block.WeightedSum += Blocks.back().WeightedSum;
				Block.Weight += Blocks.back().Weight;
				Block.Count += Blocks.back().Count;
				Blocks.pop_back();
			}
			Blocks.push_back(Block);
		}
		std::size_t Place = 0;
		for (const FBlock& Block : Blocks)
		{
			for (std::size_t Member = 0; Member < Block.Count; ++Member, ++Place)
			{
				Middles[Column[Place]] = Block.Wish() + Down[Place];
			}
		}
	}
};
} // namespace

std::vector<double> PlaceVertices(const FLayoutInput& Input, const FLayoutGrid& Grid)
{
	return FPlacer(Input, Grid).Run();
}
} // namespace QVCli
