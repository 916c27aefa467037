// SPDX-License-Identifier: MIT
#include "Core/QVString.h"

#include <algorithm>

namespace
{
bool EqualFolded(char A, char B)
{
	return FQVString::ToLower(A) == FQVString::ToLower(B);
}

template<class FindType>
std::string ReplaceWith(std::string_view Text, std::string_view From, std::string_view To, FindType Find)
{
	std::string Result;
	Result.reserve(Text.size());
	while (!From.empty())
	{
		const std::size_t Found = Find(Text, From);
		if (Found == std::string_view::npos)
		{
			break;
		}
		Result.append(Text.substr(0, Found)).append(To);
		Text.remove_prefix(Found + From.size());
	}
	return Result.append(Text);
}
/** All that Unicode calls white space, as it stands in UTF-8. */
constexpr std::string_view WhiteSpace[] = {" ", "\t", "\n", "\v", "\f", "\r", "\xC2\x85", "\xC2\xA0", "\xE1\x9A\x80",
	"\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82", "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86",
	"\xE2\x80\x87", "\xE2\x80\x88", "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\xAF",
	"\xE2\x81\x9F", "\xE3\x80\x80"};

/** How many bytes of white space stand at the start, or at the end; 0 if none. */
std::size_t SpaceAt(std::string_view Text, bool bAtStart)
{
	const auto Found = std::find_if(std::begin(WhiteSpace), std::end(WhiteSpace),
		[&](std::string_view Space) { return bAtStart ? Text.starts_with(Space) : Text.ends_with(Space); });
	return Found == std::end(WhiteSpace) ? 0 : Found->size();
}
} // namespace

std::string FQVString::ToLower(std::string_view Text)
{
	std::string Result(Text);
	std::transform(Result.begin(), Result.end(), Result.begin(), [](char Letter) { return ToLower(Letter); });
	return Result;
}

bool FQVString::EqualsIgnoreCase(std::string_view A, std::string_view B)
{
	return std::equal(A.begin(), A.end(), B.begin(), B.end(), EqualFolded);
}

int FQVString::CompareIgnoreCase(std::string_view A, std::string_view B)
{
	const std::size_t Shared = std::min(A.size(), B.size());
	for (std::size_t Index = 0; Index < Shared; ++Index)
	{
		const auto Left = static_cast<unsigned char>(ToLower(A[Index]));
		const auto Right = static_cast<unsigned char>(ToLower(B[Index]));
		if (Left != Right)
		{
			return Left < Right ? -1 : 1;
		}
	}
	return A.size() == B.size() ? 0 : A.size() < B.size() ? -1 : 1;
}

bool FQVString::StartsWithIgnoreCase(std::string_view Text, std::string_view Prefix)
{
	return Text.size() >= Prefix.size() && EqualsIgnoreCase(Text.substr(0, Prefix.size()), Prefix);
}

bool FQVString::EndsWithIgnoreCase(std::string_view Text, std::string_view Suffix)
{
	return Text.size() >= Suffix.size() && EqualsIgnoreCase(Text.substr(Text.size() - Suffix.size()), Suffix);
}

std::size_t FQVString::FindIgnoreCase(std::string_view Text, std::string_view Needle)
{
	const auto Found = std::search(Text.begin(), Text.end(), Needle.begin(), Needle.end(), EqualFolded);
	return Found == Text.end() && !Needle.empty() ? std::string_view::npos
												  : static_cast<std::size_t>(Found - Text.begin());
}

std::size_t FQVString::FindLastIgnoreCase(std::string_view Text, std::string_view Needle)
{
	const auto Found = std::find_end(Text.begin(), Text.end(), Needle.begin(), Needle.end(), EqualFolded);
	return Found == Text.end() ? std::string_view::npos : static_cast<std::size_t>(Found - Text.begin());
}

bool FQVString::ContainsIgnoreCase(std::string_view Text, std::string_view Needle)
{
	return FindIgnoreCase(Text, Needle) != std::string_view::npos;
}

std::string FQVString::ReplaceAll(std::string_view Text, std::string_view From, std::string_view To)
{
	return ReplaceWith(Text, From, To, [](std::string_view In, std::string_view Needle) { return In.find(Needle); });
}

std::string FQVString::ReplaceAllIgnoreCase(std::string_view Text, std::string_view From, std::string_view To)
{
	return ReplaceWith(Text, From, To, FindIgnoreCase);
}

std::string_view FQVString::Trim(std::string_view Text)
{
	constexpr std::string_view Blanks = " \t\r\n";
	const std::size_t First = std::min(Text.find_first_not_of(Blanks), Text.size());
	Text.remove_prefix(First);
	return Text.substr(0, Text.find_last_not_of(Blanks) + 1);
}

std::string FQVString::Join(std::span<const std::string> Parts, std::string_view Separator)
{
	std::string Result;
	for (std::size_t Index = 0; Index < Parts.size(); ++Index)
	{
		Result.append(Index == 0 ? std::string_view() : Separator).append(Parts[Index]);
	}
	return Result;
}

std::vector<std::string_view> FQVString::Split(std::string_view Text, char Separator)
{
	std::vector<std::string_view> Pieces;
	while (!Text.empty())
	{
		const std::size_t End = std::min(Text.find(Separator), Text.size());
		if (End > 0)
		{
			Pieces.push_back(Text.substr(0, End));
		}
		Text.remove_prefix(std::min(End + 1, Text.size()));
	}
	return Pieces;
}

std::string_view FQVString::TrimStartAndEnd(std::string_view Text)
{
	while (const std::size_t Length = SpaceAt(Text, true))
	{
		Text.remove_prefix(Length);
	}
	while (const std::size_t Length = SpaceAt(Text, false))
	{
		Text.remove_suffix(Length);
	}
	return Text;
}

std::vector<std::string_view> FQVString::NonEmptyLines(std::string_view Text)
{
	std::vector<std::string_view> Lines;
	while (!Text.empty())
	{
		const std::size_t End = std::min(Text.find_first_of("\r\n"), Text.size());
		if (End > 0)
		{
			Lines.push_back(Text.substr(0, End));
		}
		Text.remove_prefix(std::min(End + 1, Text.size()));
	}
	return Lines;
}

std::string_view FQVString::LastCharacters(std::string_view Text, std::size_t Count)
{
	std::size_t Start = Text.size();
	while (Start > 0 && Count > 0)
	{
		--Start;
		const bool bContinuation = (static_cast<unsigned char>(Text[Start]) & 0xC0) == 0x80;
		Count -= bContinuation ? 0 : 1;
	}
	return Text.substr(Start);
}
