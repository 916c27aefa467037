// SPDX-License-Identifier: MIT
#include "Standalone/Cli/LayeredLayout.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

using namespace QVCli;

namespace
{
/** Any arrows, also doubled ones, cycles and arrows to oneself. The generator is the same everywhere. */
FLayoutInput RandomGraph(std::uint32_t Nodes, std::uint32_t Edges, std::uint32_t Seed)
{
	std::mt19937 Random(Seed);
	FLayoutInput Input;
	Input.NodeCount = Nodes;
	Input.Roots = {0};
	for (std::uint32_t Edge = 0; Edge < Edges; ++Edge)
	{
		const auto From = static_cast<std::uint32_t>(Random() % Nodes);
		Input.Edges.emplace_back(From, static_cast<std::uint32_t>(Random() % Nodes));
	}
	return Input;
}

/** As references are: most lead from what was met early to what was met late. */
FLayoutInput WideGraph(std::uint32_t Nodes)
{
	FLayoutInput Input = RandomGraph(Nodes, 2 * Nodes, 7);
	for (auto& [From, To] : Input.Edges)
	{
		To = std::max(From, To);
		From = From / 12;
	}
	return Input;
}

bool ApartFrom(double A, double B, double Room)
{
	return std::abs(A - B) >= Room - 1e-6;
}

void ExpectNoOverlap(const FLayoutInput& Input, const FLayout& Layout)
{
	ASSERT_EQ(Layout.Nodes.size(), Input.NodeCount);
	for (std::size_t A = 0; A < Layout.Nodes.size(); ++A)
	{
		const FLayoutPoint At = Layout.Nodes[A];
		EXPECT_TRUE(At.X >= 0 && At.Y >= -1e-6 && At.X + Input.NodeWidth <= Layout.Width + 1e-6 &&
					At.Y + Input.NodeHeight <= Layout.Height + 1e-6)
			<< A;
		for (std::size_t B = 0; B < A; ++B)
		{
			EXPECT_TRUE(ApartFrom(At.X, Layout.Nodes[B].X, Input.NodeWidth + Input.ColumnGap) ||
						ApartFrom(At.Y, Layout.Nodes[B].Y, Input.NodeHeight + Input.NodeGap))
				<< A << " lies on " << B;
		}
	}
}

/** Where a line passes a column it keeps clear of the boxes that stand there. */
void ExpectNoLineAcrossBoxes(const FLayoutInput& Input, const FLayout& Layout)
{
	for (const std::vector<FLayoutPoint>& Points : Layout.Edges)
	{
		for (std::size_t Place = 1; Place + 1 < Points.size(); Place += 2)
		{
			EXPECT_EQ(Points[Place].Y, Points[Place + 1].Y);
			EXPECT_EQ(Points[Place].X + Input.NodeWidth, Points[Place + 1].X);
			for (const FLayoutPoint& Box : Layout.Nodes)
			{
				EXPECT_TRUE(Box.X != Points[Place].X ||
							ApartFrom(Points[Place].Y, Box.Y + Input.NodeHeight / 2, Input.NodeHeight / 2));
			}
		}
	}
}

void ExpectLinesFromBoxToBox(const FLayoutInput& Input, const FLayout& Layout)
{
	ASSERT_EQ(Layout.Edges.size(), Input.Edges.size());
	for (std::size_t Edge = 0; Edge < Input.Edges.size(); ++Edge)
	{
		auto [From, To] = Input.Edges[Edge];
		if (From == To)
		{
			EXPECT_TRUE(Layout.Edges[Edge].empty());
			continue;
		}
		if (Layout.Reversed[Edge])
		{
			std::swap(From, To);
		}
		EXPECT_LT(Layout.Columns[From], Layout.Columns[To]);
		const double Half = Input.NodeHeight / 2;
		ASSERT_GE(Layout.Edges[Edge].size(), 2U);
		EXPECT_EQ(Layout.Edges[Edge].front().X, Layout.Nodes[From].X + Input.NodeWidth);
		EXPECT_NEAR(Layout.Edges[Edge].front().Y, Layout.Nodes[From].Y + Half, 1e-6);
		EXPECT_EQ(Layout.Edges[Edge].back().X, Layout.Nodes[To].X);
		EXPECT_NEAR(Layout.Edges[Edge].back().Y, Layout.Nodes[To].Y + Half, 1e-6);
	}
}

std::size_t CountReversed(const FLayout& Layout)
{
	return static_cast<std::size_t>(std::count(Layout.Reversed.begin(), Layout.Reversed.end(), true));
}
} // namespace

TEST(FLayeredLayout, AnyGraphIsDrawnWithoutOverlap)
{
	for (const std::uint32_t Nodes : {1U, 2U, 9U, 40U, 150U})
	{
		for (std::uint32_t Seed = 0; Seed < 6; ++Seed)
		{
			SCOPED_TRACE(testing::Message() << Nodes << " nodes, seed " << Seed);
			const FLayoutInput Input = RandomGraph(Nodes, Nodes * (1 + Seed % 3), Seed);
			const FLayout Layout = LayOut(Input);
			ExpectNoOverlap(Input, Layout);
			ExpectLinesFromBoxToBox(Input, Layout);
			ExpectNoLineAcrossBoxes(Input, Layout);
			const FLayout Again = LayOut(Input);
			EXPECT_EQ(Layout.Nodes, Again.Nodes);
			EXPECT_EQ(Layout.Edges, Again.Edges);
		}
	}
	EXPECT_TRUE(LayOut({}).Nodes.empty());
}

TEST(FLayeredLayout, OnlyWhatClosesACycleIsTurned)
{
	FLayoutInput Input;
	Input.NodeCount = 5;
	Input.Roots = {4};
	Input.Edges = {{0, 1}, {1, 2}, {2, 0}, {4, 0}, {4, 2}, {3, 3}};
	const FLayout Layout = LayOut(Input);
	EXPECT_EQ(Layout.Reversed, std::vector<bool>({false, false, true, false, false, false}));
	EXPECT_EQ(Layout.Columns, std::vector<std::uint32_t>({1, 2, 3, 0, 0}));
	EXPECT_EQ(CountReversed(LayOut(WideGraph(300))), 0U);
}

TEST(FLayeredLayout, LinesThatNeedNotCrossDoNot)
{
	// two stars whose arrows are given crosswise
	FLayoutInput Input;
	Input.NodeCount = 8;
	Input.Roots = {0, 1};
	Input.Edges = {{0, 3}, {1, 2}, {0, 5}, {1, 4}, {0, 7}, {1, 6}};
	const FLayout Layout = LayOut(Input);
	const bool bFirstAbove = Layout.Nodes[0].Y < Layout.Nodes[1].Y;
	for (const std::uint32_t OfFirst : {3U, 5U, 7U})
	{
		for (const std::uint32_t OfSecond : {2U, 4U, 6U})
		{
			EXPECT_EQ(Layout.Nodes[OfFirst].Y < Layout.Nodes[OfSecond].Y, bFirstAbove);
		}
	}
}

TEST(FLayeredLayout, AWideRankTakesSeveralColumns)
{
	FLayoutInput Input;
	Input.NodeCount = 501;
	Input.Roots = {0};
	for (std::uint32_t Node = 1; Node < Input.NodeCount; ++Node)
	{
		Input.Edges.emplace_back(0, Node);
	}
	const FLayout Layout = LayOut(Input);
	ExpectNoOverlap(Input, Layout);
	EXPECT_LT(Layout.Width, 3 * Layout.Height);
	EXPECT_LT(Layout.Height, 3 * Layout.Width);
	Input.MostInColumn = 10;
	EXPECT_EQ(LayOut(Input).Columns.back(), 50U);
}

TEST(FLayeredLayout, ThousandsOfBoxesAndLongChains)
{
	const FLayoutInput Wide = WideGraph(2000);
	ExpectLinesFromBoxToBox(Wide, LayOut(Wide));
	const FLayoutInput Tangled = RandomGraph(2000, 6000, 3);
	ExpectLinesFromBoxToBox(Tangled, LayOut(Tangled));
	FLayoutInput Chain;
	Chain.NodeCount = 20'000;
	for (std::uint32_t Node = 1; Node < Chain.NodeCount; ++Node)
	{
		Chain.Edges.emplace_back(Node - 1, Node);
	}
	EXPECT_EQ(LayOut(Chain).Columns.back(), 19'999U);
}
