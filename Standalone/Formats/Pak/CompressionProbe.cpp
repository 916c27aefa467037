// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/CompressionProbe.h"

#include <array>

namespace QVFormats
{
namespace
{
/** Short enough that a compressible stretch stands out, long enough that chance does not. */
constexpr std::size_t StretchBytes = 2048;

/**
 * Sum of squares of the byte counts. Even chance gives n + n(n-1)/256, give or take sqrt(2 n^2 / 256); eight times that
 * above it is the limit, where a better code than 8 bits a byte would save 0.8 percent of the stretch.
 */
constexpr std::uint64_t MostEvenSquares(std::uint64_t Count)
{
	return Count + Count * (Count - 1) / 256 + Count * 23 * 8 / 256;
}

bool IsSpreadEvenly(FBytes Stretch)
{
	// Two tables: the next byte's count does not wait for this one's.
	std::array<std::uint16_t, 256> Even{};
	std::array<std::uint16_t, 256> Odd{};
	for (std::size_t Index = 0; Index + 1 < Stretch.size(); Index += 2)
	{
		++Even[std::to_integer<std::size_t>(Stretch[Index])];
		++Odd[std::to_integer<std::size_t>(Stretch[Index + 1])];
	}
	std::uint64_t Squares = 0;
	for (std::size_t Value = 0; Value < 256; ++Value)
	{
		const std::uint32_t Count = static_cast<std::uint32_t>(Even[Value]) + Odd[Value];
		Squares += std::uint64_t{Count} * Count;
	}
	return Squares <= MostEvenSquares(Stretch.size() & ~std::size_t{1});
}

/**
 * Looks for eight bytes that came before. Only one place in 32 is looked at, chosen by its own content, so that a
 * repetition is looked at in both its places or in neither.
 */
bool HasRepetition(FBytes Block)
{
	constexpr int TableBits = 12;
	constexpr std::uint64_t Spread = 0x9E3779B97F4A7C15;
	std::array<std::uint32_t, std::size_t{1} << TableBits> Seen{};
	for (std::size_t Index = 0; Index + 8 <= Block.size(); ++Index)
	{
		if (std::to_integer<unsigned>(Block[Index]) >= 8)
		{
			continue;
		}
		std::uint64_t Bytes = 0;
		std::memcpy(&Bytes, Block.data() + Index, sizeof(Bytes));
		const std::uint64_t Mixed = (Bytes + 1) * Spread;
		std::uint32_t& Slot = Seen[Mixed >> (64 - TableBits)];
		const auto Mark = static_cast<std::uint32_t>(Mixed >> 16);
		if (Slot == Mark)
		{
			return true;
		}
		Slot = Mark;
	}
	return false;
}
} // namespace

bool IsSurelyIncompressible(FBytes Block)
{
	if (Block.size() < StretchBytes)
	{
		return false;
	}
	for (FBytes Rest = Block; !Rest.empty();)
	{
		// The last stretch takes the remainder with it.
		const std::size_t Taken = Rest.size() < 2 * StretchBytes ? Rest.size() : StretchBytes;
		if (!IsSpreadEvenly(Rest.first(Taken)))
		{
			return false;
		}
		Rest = Rest.subspan(Taken);
	}
	return !HasRepetition(Block);
}
} // namespace QVFormats
