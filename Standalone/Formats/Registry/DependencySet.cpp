// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Registry/DependencySet.h"

#include <algorithm>
#include <iterator>

namespace QVFormats
{
namespace
{
constexpr int Combinations = 8;

template<class... TCombination>
constexpr std::uint8_t Set(TCombination... Each)
{
	return static_cast<std::uint8_t>(((1 << Each) | ...));
}

/** By the code that registry files use. */
constexpr std::uint8_t SetsByCode[] = {Set(0), Set(1), Set(2), Set(3), Set(4), Set(5), Set(6), Set(7), Set(1, 2),
	Set(1, 4), Set(1, 6), Set(2, 4), Set(2, 5), Set(3, 4), Set(3, 5), Set(3, 6), Set(5, 6), Set(1, 2, 4), Set(3, 5, 6)};

bool IsCovered(int Combination, std::uint8_t Members)
{
	for (int Other = 0; Other < Combinations; ++Other)
	{
		if (Other != Combination && (Members >> Other & 1) != 0 && (Other & Combination) == Combination)
		{
			return true;
		}
	}
	return false;
}
} // namespace

FDependencySet FDependencySet::Of(bool bHard, bool bGame)
{
	return {Set(static_cast<int>(EDependency::Build) | (bHard ? static_cast<int>(EDependency::Hard) : 0) |
				(bGame ? static_cast<int>(EDependency::Game) : 0))};
}

std::optional<FDependencySet> FDependencySet::FromCode(std::uint32_t Code)
{
	return Code < std::size(SetsByCode) ? std::optional(FDependencySet{SetsByCode[Code]}) : std::nullopt;
}

std::uint32_t FDependencySet::ToCode() const
{
	const auto* Found = std::find(std::begin(SetsByCode), std::end(SetsByCode), Members);
	return Found == std::end(SetsByCode) ? 0 : static_cast<std::uint32_t>(Found - std::begin(SetsByCode));
}

void FDependencySet::Add(FDependencySet Other)
{
	const auto All = static_cast<std::uint8_t>(Members | Other.Members);
	Members = 0;
	for (int Combination = 0; Combination < Combinations; ++Combination)
	{
		if ((All >> Combination & 1) != 0 && !IsCovered(Combination, All))
		{
			Members = static_cast<std::uint8_t>(Members | 1 << Combination);
		}
	}
}

bool FDependencySet::HasAny(EDependency Kind) const
{
	for (int Combination = 0; Combination < Combinations; ++Combination)
	{
		if ((Members >> Combination & 1) != 0 && (Combination & static_cast<int>(Kind)) != 0)
		{
			return true;
		}
	}
	return false;
}
} // namespace QVFormats
