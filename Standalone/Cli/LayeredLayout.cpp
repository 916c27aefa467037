// SPDX-License-Identifier: MIT
#include "Standalone/Cli/LayeredLayout.h"

#include "Standalone/Cli/LayeredGrid.h"

#include <algorithm>

namespace QVCli
{
namespace
{
/** Moves all so that the highest box or line begins at 0; gives the height. */
double MoveToTop(const FLayoutInput& Input, const FLayoutGrid& Grid, std::vector<double>& Middles)
{
	double Top = 0;
	double Bottom = 0;
	for (std::uint32_t Vertex = 0; Vertex < Middles.size(); ++Vertex)
	{
		const double Half = Grid.IsBox(Vertex) ? Input.NodeHeight / 2 : 0;
		Top = Vertex == 0 ? Middles[Vertex] - Half : std::min(Top, Middles[Vertex] - Half);
		Bottom = Vertex == 0 ? Middles[Vertex] + Half : std::max(Bottom, Middles[Vertex] + Half);
	}
	for (double& Middle : Middles)
	{
		Middle -= Top;
	}
	return Bottom - Top;
}

std::vector<FLayoutPoint> PointsOf(const FLayoutInput& Input, const FLayoutGrid& Grid,
	const std::vector<double>& Middles, const std::vector<std::uint32_t>& Path)
{
	std::vector<FLayoutPoint> Points;
	for (const std::uint32_t Vertex : Path)
	{
		const double X = Grid.Vertices[Vertex].Column * (Input.NodeWidth + Input.ColumnGap);
		Points.push_back({X, Middles[Vertex]});
		Points.push_back({X + Input.NodeWidth, Middles[Vertex]});
	}
	if (!Points.empty()) // from the first box's right side to the last one's left
	{
		Points.erase(Points.begin());
		Points.pop_back();
	}
	return Points;
}
} // namespace

FLayout LayOut(const FLayoutInput& Input)
{
	FLayoutRanks Ranks = FindRanks(Input);
	FLayoutGrid Grid = MakeGrid(Input, Ranks);
	ReduceCrossings(Grid);
	std::vector<double> Middles = PlaceVertices(Input, Grid);
	FLayout Layout;
	Layout.Height = MoveToTop(Input, Grid, Middles);
	Layout.Width = std::max(0.0, Ranks.ColumnCount * (Input.NodeWidth + Input.ColumnGap) - Input.ColumnGap);
	for (std::uint32_t Node = 0; Node < Input.NodeCount; ++Node)
	{
		Layout.Nodes.push_back(
			{Ranks.Columns[Node] * (Input.NodeWidth + Input.ColumnGap), Middles[Node] - Input.NodeHeight / 2});
	}
	for (const std::vector<std::uint32_t>& Path : Grid.Paths)
	{
		Layout.Edges.push_back(PointsOf(Input, Grid, Middles, Path));
	}
	Layout.Columns = std::move(Ranks.Columns);
	Layout.Reversed = std::move(Ranks.Reversed);
	return Layout;
}
} // namespace QVCli
