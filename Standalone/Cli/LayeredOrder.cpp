// SPDX-License-Identifier: MIT
#include "Standalone/Cli/LayeredGrid.h"

#include <algorithm>

namespace QVCli
{
namespace
{
/** Sweeps in each direction; fewer where there is much to sweep over. */
constexpr int MostSweeps = 16;
constexpr int FewestSweeps = 4;
constexpr std::size_t VerticesForMostSweeps = 10'000;

using FNeighbours = std::vector<std::uint32_t> FLayoutGrid::FVertex::*;

/** Counts, for the lines between two columns, those that have been met and end further down. */
class FCounter
{
public:
	explicit FCounter(std::size_t Size)
		: Sums(Size + 1)
	{
	}

	void Add(std::size_t Place)
	{
		++Total;
		for (std::size_t At = Place + 1; At < Sums.size(); At += At & (~At + 1))
		{
			++Sums[At];
		}
	}
	std::size_t CountBelow(std::size_t Place) const
	{
		std::size_t UpToPlace = 0;
		for (std::size_t At = Place + 1; At > 0; At -= At & (~At + 1))
		{
			UpToPlace += Sums[At];
		}
		return Total - UpToPlace;
	}

private:
	std::vector<std::size_t> Sums;
	std::size_t Total = 0;
};

class FCrossings
{
public:
	explicit FCrossings(FLayoutGrid& InGrid)
		: Grid(InGrid)
		, Places(Grid.Vertices.size())
		, Wishes(Grid.Vertices.size())
	{
		for (const std::vector<std::uint32_t>& Column : Grid.Columns)
		{
			Number(Column);
		}
	}

	void Reduce()
	{
		const int Sweeps = Grid.Vertices.size() <= VerticesForMostSweeps ? MostSweeps : FewestSweeps;
		std::vector<std::vector<std::uint32_t>> Best = Grid.Columns;
		std::size_t Fewest = SIZE_MAX;
		for (int Sweep = 0; Sweep < Sweeps && Fewest != 0; ++Sweep)
		{
			SweepRight();
			SweepLeft();
			const std::size_t Count = CountAll();
			if (Count < Fewest)
			{
				Fewest = Count;
				Best = Grid.Columns;
			}
		}
		Grid.Columns = std::move(Best);
	}

private:
	FLayoutGrid& Grid;
	/** By vertex: where it stands in its column. */
	std::vector<std::size_t> Places;
	std::vector<double> Wishes;

	void Number(const std::vector<std::uint32_t>& Column)
	{
		for (std::size_t Place = 0; Place < Column.size(); ++Place)
		{
			Places[Column[Place]] = Place;
		}
	}

	void SweepRight()
	{
		for (std::size_t Column = 1; Column < Grid.Columns.size(); ++Column)
		{
			Sort(Column, Column - 1, &FLayoutGrid::FVertex::Left);
		}
	}

	void SweepLeft()
	{
		for (std::size_t Column = Grid.Columns.size(); Column-- > 1;)
		{
			Sort(Column - 1, Column, &FLayoutGrid::FVertex::Right);
		}
	}

	/** Each to the middle of its neighbours; one that has none stays about where it is. */
	void Sort(std::size_t Column, std::size_t Other, FNeighbours Side)
	{
		std::vector<std::uint32_t>& Vertices = Grid.Columns[Column];
		const double Scale = static_cast<double>(Grid.Columns[Other].size()) / static_cast<double>(Vertices.size());
		for (const std::uint32_t Vertex : Vertices)
		{
			const std::vector<std::uint32_t>& Neighbours = Grid.Vertices[Vertex].*Side;
			double Sum = Neighbours.empty() ? static_cast<double>(Places[Vertex]) * Scale : 0;
			for (const std::uint32_t Neighbour : Neighbours)
			{
				Sum += static_cast<double>(Places[Neighbour]);
			}
			Wishes[Vertex] = Neighbours.empty() ? Sum : Sum / static_cast<double>(Neighbours.size());
		}
		std::stable_sort(Vertices.begin(), Vertices.end(),
			[this](std::uint32_t A, std::uint32_t B) { return Wishes[A] < Wishes[B]; });
		Number(Vertices);
	}

	std::size_t CountAll() const
	{
		std::size_t Count = 0;
		for (std::size_t Column = 1; Column < Grid.Columns.size(); ++Column)
		{
			Count += CountBetween(Grid.Columns[Column - 1], Grid.Columns[Column].size());
		}
		return Count;
	}

	std::size_t CountBetween(const std::vector<std::uint32_t>& Left, std::size_t RightSize) const
	{
		FCounter Met(RightSize);
		std::size_t Count = 0;
		for (const std::uint32_t Vertex : Left)
		{
			const std::vector<std::uint32_t>& Right = Grid.Vertices[Vertex].Right;
			for (const std::uint32_t Neighbour : Right)
			{
				Count += Met.CountBelow(Places[Neighbour]);
			}
			for (const std::uint32_t Neighbour : Right)
			{
				Met.Add(Places[Neighbour]);
			}
		}
		return Count;
	}
};
} // namespace

void ReduceCrossings(FLayoutGrid& Grid)
{
	FCrossings(Grid).Reduce();
}
} // namespace QVCli
