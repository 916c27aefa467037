// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Cli/LayeredLayout.h"

namespace QVCli
{
/** Which column each box belongs to, and which arrows have to be turned for that. */
struct FLayoutRanks
{
	std::vector<std::uint32_t> Columns;
	std::uint32_t ColumnCount = 0;
	std::vector<bool> Reversed;
};

FLayoutRanks FindRanks(const FLayoutInput& Input);
} // namespace QVCli
