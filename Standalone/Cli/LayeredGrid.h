// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Cli/LayeredRanks.h"

namespace QVCli
{
/**
 * The columns of a layout, with what stands in each: the boxes, and a waypoint wherever an arrow passes a column. So
 * every line leads from one column to the next.
 */
struct FLayoutGrid
{
	/** The boxes by their places, then the waypoints. */
	struct FVertex
	{
		std::uint32_t Column = 0;
		/** In the column next to it, each once. */
		std::vector<std::uint32_t> Left;
		std::vector<std::uint32_t> Right;
	};

	std::uint32_t NodeCount = 0;
	std::vector<FVertex> Vertices;
	/** Vertices from top to bottom. */
	std::vector<std::vector<std::uint32_t>> Columns;
	/** By edge of the input, from left to right. */
	std::vector<std::vector<std::uint32_t>> Paths;

	bool IsBox(std::uint32_t Vertex) const { return Vertex < NodeCount; }
};

FLayoutGrid MakeGrid(const FLayoutInput& Input, const FLayoutRanks& Ranks);
/** Orders each column so that few lines cross. */
void ReduceCrossings(FLayoutGrid& Grid);
/** Middles of all vertices from top down, in the order that the columns have, as near to their neighbours as can be. */
std::vector<double> PlaceVertices(const FLayoutInput& Input, const FLayoutGrid& Grid);
} // namespace QVCli
