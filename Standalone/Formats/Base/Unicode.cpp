// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/Unicode.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace QVFormats
{
namespace
{
constexpr char32_t Replacement = 0xFFFD;

void AppendUtf8(std::string& Out, char32_t Point)
{
	const auto Push = [&Out](char32_t Byte) { Out.push_back(static_cast<char>(static_cast<unsigned char>(Byte))); };
	if (Point < 0x80)
	{
		Push(Point);
	}
	else if (Point < 0x800)
	{
		Push(0xC0 | (Point >> 6));
		Push(0x80 | (Point & 0x3F));
	}
	else if (Point < 0x10000)
	{
		Push(0xE0 | (Point >> 12));
		Push(0x80 | ((Point >> 6) & 0x3F));
		Push(0x80 | (Point & 0x3F));
	}
	else
	{
		Push(0xF0 | (Point >> 18));
		Push(0x80 | ((Point >> 12) & 0x3F));
		Push(0x80 | ((Point >> 6) & 0x3F));
		Push(0x80 | (Point & 0x3F));
	}
}

bool IsHighSurrogate(char32_t Unit)
{
	return Unit >= 0xD800 && Unit < 0xDC00;
}

bool IsLowSurrogate(char32_t Unit)
{
	return Unit >= 0xDC00 && Unit < 0xE000;
}

/** The code point at Index, which moves behind it; a bad byte is passed over alone. */
char32_t NextCodePoint(std::string_view Utf8, std::size_t& Index)
{
	const auto At = [Utf8](std::size_t Position) { return static_cast<unsigned char>(Utf8[Position]); };
	const unsigned char Lead = At(Index++);
	if (Lead < 0x80)
	{
		return Lead;
	}
	const int Extra = Lead >= 0xF0 && Lead < 0xF5	? 3
					  : Lead >= 0xE0 && Lead < 0xF0 ? 2
					  : Lead >= 0xC2 && Lead < 0xE0 ? 1
													: 0;
	if (Extra == 0 || Utf8.size() - Index < static_cast<std::size_t>(Extra))
	{
		return Replacement;
	}
	char32_t Point = Lead & (0x3F >> Extra);
	for (int Step = 0; Step < Extra; ++Step)
	{
		const unsigned char Byte = At(Index + static_cast<std::size_t>(Step));
		if ((Byte & 0xC0) != 0x80)
		{
			return Replacement;
		}
		Point = (Point << 6) | (Byte & 0x3F);
	}
	constexpr char32_t Smallest[] = {0, 0x80, 0x800, 0x10000};
	if (Point < Smallest[Extra] || Point > 0x10FFFF || (Point >= 0xD800 && Point < 0xE000))
	{
		return Replacement;
	}
	Index += static_cast<std::size_t>(Extra);
	return Point;
}
} // namespace

bool IsAscii(std::string_view Text)
{
	constexpr std::uint64_t HighBits = 0x8080808080808080;
	std::uint64_t Seen = 0;
	for (; Text.size() >= sizeof(Seen); Text.remove_prefix(sizeof(Seen)))
	{
		std::uint64_t Letters = 0;
		std::memcpy(&Letters, Text.data(), sizeof(Letters));
		Seen |= Letters;
	}
	for (const char Letter : Text)
	{
		Seen |= static_cast<unsigned char>(Letter);
	}
	return (Seen & HighBits) == 0;
}

std::string Latin1ToUtf8(std::span<const std::byte> Bytes)
{
	std::string Result;
	Result.reserve(Bytes.size());
	for (const std::byte Byte : Bytes)
	{
		AppendUtf8(Result, std::to_integer<char32_t>(Byte));
	}
	return Result;
}

std::string Utf16BytesToUtf8(std::span<const std::byte> Bytes)
{
	std::string Result;
	Result.reserve(Bytes.size());
	const auto UnitAt = [Bytes](std::size_t Index)
	{
		return static_cast<char32_t>(
			std::to_integer<unsigned>(Bytes[Index]) | (std::to_integer<unsigned>(Bytes[Index + 1]) << 8));
	};
	std::size_t Index = 0;
	for (; Index + 2 <= Bytes.size(); Index += 2)
	{
		char32_t Point = UnitAt(Index);
		if (IsHighSurrogate(Point) && Index + 4 <= Bytes.size() && IsLowSurrogate(UnitAt(Index + 2)))
		{
			Point = 0x10000 + ((Point - 0xD800) << 10) + (UnitAt(Index + 2) - 0xDC00);
			Index += 2;
		}
		else if (IsHighSurrogate(Point) || IsLowSurrogate(Point))
		{
			Point = Replacement;
		}
		AppendUtf8(Result, Point);
	}
	if (Index < Bytes.size())
	{
		AppendUtf8(Result, Replacement);
	}
	return Result;
}

std::u16string Utf8ToUtf16(std::string_view Utf8)
{
	std::u16string Result;
	Result.reserve(Utf8.size());
	for (std::size_t Index = 0; Index < Utf8.size();)
	{
		const char32_t Point = NextCodePoint(Utf8, Index);
		if (Point < 0x10000)
		{
			Result.push_back(static_cast<char16_t>(Point));
		}
		else
		{
			Result.push_back(static_cast<char16_t>(0xD800 + ((Point - 0x10000) >> 10)));
			Result.push_back(static_cast<char16_t>(0xDC00 + ((Point - 0x10000) & 0x3FF)));
		}
	}
	return Result;
}

std::string ToLowerAscii(std::string_view Text)
{
	std::string Result(Text);
	for (char& Letter : Result)
	{
		if (Letter >= 'A' && Letter <= 'Z')
		{
			Letter = static_cast<char>(Letter - 'A' + 'a');
		}
	}
	return Result;
}
} // namespace QVFormats
