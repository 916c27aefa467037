// SPDX-License-Identifier: MIT
#include "Standalone/Cli/TextColumns.h"

#include "Core/QVUnicode.h"

#include <algorithm>
#include <vector>

namespace QVCli
{
namespace
{
struct FUnitRange
{
	char16_t First;
	char16_t Last;
};

/** East Asian letters; letters of two units are as wide, and have a column for each. */
constexpr FUnitRange WideUnits[] = {{0x1100, 0x115F}, {0x2E80, 0x303E}, {0x3041, 0xA4CF}, {0xA960, 0xA97F},
	{0xAC00, 0xD7A3}, {0xF900, 0xFAFF}, {0xFE30, 0xFE6F}, {0xFF01, 0xFF60}, {0xFFE0, 0xFFE6}};
/** Accents that stand on the letter before them. */
constexpr FUnitRange AccentUnits[] = {
	{0x0300, 0x036F}, {0x0483, 0x0489}, {0x200B, 0x200F}, {0x3099, 0x309A}, {0xFE00, 0xFE0F}};

template<std::size_t Count>
bool IsIn(const FUnitRange (&Ranges)[Count], char16_t Unit)
{
	return std::any_of(std::begin(Ranges), std::end(Ranges),
		[Unit](const FUnitRange& Range) { return Unit >= Range.First && Unit <= Range.Last; });
}

struct FLetter
{
	std::string_view Bytes;
	std::size_t Columns = 0;
};

std::vector<FLetter> SplitLetters(std::string_view Text)
{
	std::vector<FLetter> Letters;
	for (std::size_t Begin = 0, End = 0; Begin < Text.size(); Begin = End)
	{
		End = Begin + 1;
		while (End < Text.size() && (static_cast<unsigned char>(Text[End]) & 0xC0) == 0x80)
		{
			++End;
		}
		Letters.push_back({Text.substr(Begin, End - Begin), CountColumns(Text.substr(Begin, End - Begin))});
	}
	return Letters;
}

/** How many of the letters fit; counts what they take off the room. */
template<class IteratorType>
std::size_t TakeLetters(IteratorType Begin, IteratorType End, std::size_t Room)
{
	const auto Stop = std::find_if(Begin, End,
		[&Room](const FLetter& Letter)
		{
			const bool bFits = Letter.Columns <= Room;
			Room -= bFits ? Letter.Columns : 0;
			return !bFits;
		});
	return static_cast<std::size_t>(Stop - Begin);
}
} // namespace

std::size_t CountColumns(std::string_view Text)
{
	std::size_t Columns = 0;
	for (const char16_t Unit : FQVUnicode::ToUtf16(Text))
	{
		Columns += IsIn(AccentUnits, Unit) ? 0 : IsIn(WideUnits, Unit) ? 2 : 1;
	}
	return Columns;
}

std::string FitColumns(std::string_view Text, std::size_t Width)
{
	constexpr std::string_view Gap = "...";
	if (CountColumns(Text) <= Width)
	{
		return std::string(Text);
	}
	const std::size_t Room = Width > Gap.size() ? Width - Gap.size() : 0;
	const std::vector<FLetter> Letters = SplitLetters(Text);
	const std::size_t Front = TakeLetters(Letters.begin(), Letters.end(), Room / 2);
	const std::size_t Back = TakeLetters(Letters.rbegin(), Letters.rend(), Room - Room / 2);
	std::string Result;
	for (std::size_t Index = 0; Index < Front; ++Index)
	{
		Result.append(Letters[Index].Bytes);
	}
	Result.append(Gap.substr(0, Width));
	for (std::size_t Index = Letters.size() - Back; Index < Letters.size(); ++Index)
	{
		Result.append(Letters[Index].Bytes);
	}
	return Result;
}

std::string PadColumns(std::string_view Text, std::size_t Width)
{
	const std::size_t Columns = CountColumns(Text);
	return std::string(Text) + std::string(Columns < Width ? Width - Columns : 0, ' ');
}
} // namespace QVCli
