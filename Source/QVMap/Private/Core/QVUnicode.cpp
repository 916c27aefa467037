// SPDX-License-Identifier: MIT
#include "Core/QVUnicode.h"

#include <algorithm>

namespace
{
/** Bytes that follow a lead byte; -1 for a byte that cannot lead. */
int TrailLength(unsigned char Lead)
{
	if (Lead < 0x80)
	{
		return 0;
	}
	if (Lead >= 0xC2 && Lead < 0xE0)
	{
		return 1;
	}
	if (Lead >= 0xE0 && Lead < 0xF0)
	{
		return 2;
	}
	return Lead >= 0xF0 && Lead < 0xF5 ? 3 : -1;
}

bool IsContinuation(char Byte)
{
	return (static_cast<unsigned char>(Byte) & 0xC0) == 0x80;
}

/** The code point at Index, which moves behind it. A bad byte is passed over alone. */
char32_t Next(std::string_view Bytes, std::size_t& Index)
{
	const auto Lead = static_cast<unsigned char>(Bytes[Index++]);
	const int Trail = TrailLength(Lead);
	if (Trail <= 0)
	{
		return Trail == 0 ? Lead : FQVUnicode::Replacement;
	}
	char32_t Point = Lead & (0x3F >> Trail);
	for (int Step = 0; Step < Trail; ++Step)
	{
		const std::size_t At = Index + static_cast<std::size_t>(Step);
		if (At >= Bytes.size() || !IsContinuation(Bytes[At]))
		{
			return FQVUnicode::Replacement;
		}
		Point = (Point << 6) | (static_cast<unsigned char>(Bytes[At]) & 0x3F);
	}
	constexpr char32_t Smallest[] = {0, 0x80, 0x800, 0x10000};
	if (Point < Smallest[Trail] || Point > 0x10FFFF || (Point >= 0xD800 && Point < 0xE000))
	{
		return FQVUnicode::Replacement;
	}
	Index += static_cast<std::size_t>(Trail);
	return Point;
}
} // namespace

bool FQVUnicode::IsAscii(std::string_view Text)
{
	return std::all_of(Text.begin(), Text.end(), [](char Letter) { return static_cast<unsigned char>(Letter) < 0x80; });
}

std::u16string FQVUnicode::ToUtf16(std::string_view Utf8)
{
	std::u16string Result;
	Result.reserve(Utf8.size());
	for (std::size_t Index = 0; Index < Utf8.size();)
	{
		const char32_t Point = Next(Utf8, Index);
		if (Point >= 0x10000)
		{
			Result.push_back(static_cast<char16_t>(0xD800 + ((Point - 0x10000) >> 10)));
			Result.push_back(static_cast<char16_t>(0xDC00 + ((Point - 0x10000) & 0x3FF)));
		}
		else
		{
			Result.push_back(static_cast<char16_t>(Point));
		}
	}
	return Result;
}

std::string FQVUnicode::ToUtf8(std::u16string_view Utf16)
{
	std::string Result;
	Result.reserve(Utf16.size());
	for (std::size_t Index = 0; Index < Utf16.size(); ++Index)
	{
		const char32_t Unit = Utf16[Index];
		const bool bHigh = Unit >= 0xD800 && Unit < 0xDC00;
		const bool bLow = Unit >= 0xDC00 && Unit < 0xE000;
		const char32_t Following = Index + 1 < Utf16.size() ? Utf16[Index + 1] : 0;
		if (bHigh && Following >= 0xDC00 && Following < 0xE000)
		{
			Append(Result, 0x10000 + ((Unit - 0xD800) << 10) + (Following - 0xDC00));
			++Index;
		}
		else
		{
			Append(Result, bHigh || bLow ? Replacement : Unit);
		}
	}
	return Result;
}

std::string FQVUnicode::Repair(std::string_view Bytes)
{
	std::string Result;
	Result.reserve(Bytes.size());
	for (std::size_t Index = 0; Index < Bytes.size();)
	{
		Append(Result, Next(Bytes, Index));
	}
	return Result;
}

void FQVUnicode::Append(std::string& OutUtf8, char32_t Point)
{
	const auto Push = [&OutUtf8](char32_t Byte)
	{ OutUtf8.push_back(static_cast<char>(static_cast<unsigned char>(Byte))); };
	if (Point < 0x80)
	{
		Push(Point);
		return;
	}
	const int Trail = Point < 0x800 ? 1 : Point < 0x10000 ? 2 : 3;
	constexpr char32_t Marks[] = {0, 0xC0, 0xE0, 0xF0};
	Push(Marks[Trail] | (Point >> (6 * Trail)));
	for (int Step = Trail - 1; Step >= 0; --Step)
	{
		Push(0x80 | ((Point >> (6 * Step)) & 0x3F));
	}
}

std::size_t FQVUnicode::IncompleteTail(std::string_view Bytes)
{
	const std::size_t Most = std::min<std::size_t>(3, Bytes.size());
	for (std::size_t Back = 1; Back <= Most; ++Back)
	{
		const char Byte = Bytes[Bytes.size() - Back];
		if (!IsContinuation(Byte))
		{
			const int Trail = TrailLength(static_cast<unsigned char>(Byte));
			return Trail >= static_cast<int>(Back) ? Back : 0;
		}
	}
	return 0;
}
