// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace QVCli
{
struct FLayoutPoint
{
	double X = 0;
	double Y = 0;

	bool operator==(const FLayoutPoint&) const = default;
};

/** A graph to be drawn: boxes of one size, and arrows by their boxes' places. Any cycles, any number of parts. */
struct FLayoutInput
{
	std::uint32_t NodeCount = 0;
	/** Those that stand first; the rest follows from the arrows. */
	std::vector<std::uint32_t> Roots;
	std::vector<std::pair<std::uint32_t, std::uint32_t>> Edges;
	double NodeWidth = 196;
	double NodeHeight = 36;
	/** Between columns, where the arrows run, and between what stands in one. */
	double ColumnGap = 70;
	double NodeGap = 10;
	double LineGap = 5;
	/** Boxes in a column; a rank with more takes several. 0: as the picture's shape wants it. */
	std::size_t MostInColumn = 0;
};

/**
 * Where it all stands: columns from left to right, each rank one or more of them. An arrow leads to a column further
 * right, unless it closes a cycle.
 */
struct FLayout
{
	/** Left upper corners, by node. */
	std::vector<FLayoutPoint> Nodes;
	std::vector<std::uint32_t> Columns;
	/**
	 * By edge, from its left box to its right one: the points where it leaves a column and where it reaches the next,
	 * in turn. Edges of one box that run side by side share their points. Empty for a box's arrow to itself.
	 */
	std::vector<std::vector<FLayoutPoint>> Edges;
	/** By edge: it closes a cycle, so it points from the last of its points to the first. */
	std::vector<bool> Reversed;
	double Width = 0;
	double Height = 0;
};

/** The same input gives the same layout, everywhere. */
FLayout LayOut(const FLayoutInput& Input);
} // namespace QVCli
