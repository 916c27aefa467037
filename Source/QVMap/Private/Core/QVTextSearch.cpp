// SPDX-License-Identifier: MIT
#include "Core/QVTextSearch.h"

#include "Core/QVCheck.h"
#include "Core/QVUnicode.h"

#include <algorithm>

namespace
{
std::string Utf16Bytes(std::string_view Text)
{
	std::string Bytes;
	for (const char16_t Unit : FQVUnicode::ToUtf16(Text))
	{
		Bytes += static_cast<char>(Unit & 0xFF);
		Bytes += static_cast<char>(Unit >> 8);
	}
	return Bytes;
}

std::size_t SharedLength(std::string_view A, std::string_view B)
{
	const auto [End, Unused] = std::mismatch(A.begin(), A.end(), B.begin(), B.end());
	return static_cast<std::size_t>(End - A.begin());
}

/** Where in a name the letter stands that names and packages hold least of; else its first. */
std::size_t RarestLetter(std::string_view Name)
{
	for (const char Letter : std::string_view("QXZJqzjKYVxWkwHUy"))
	{
		if (const std::size_t At = Name.find(Letter); At != std::string_view::npos)
		{
			return At;
		}
	}
	return 0;
}
} // namespace

FQVTextSearch::FQVTextSearch(std::span<const std::string> Texts)
	: Count(Texts.size())
{
	for (std::size_t Place = 0; Place < Texts.size(); ++Place)
	{
		QV_CHECK(!Texts[Place].empty());
		Narrow.Patterns.push_back({Texts[Place], Place});
		if (!FQVUnicode::IsAscii(Texts[Place]))
		{
			Wide.Patterns.push_back({Utf16Bytes(Texts[Place]), Place});
		}
	}
	Narrow.Prepare();
	Wide.Prepare();
}

void FQVTextSearch::FGroup::Prepare()
{
	std::sort(Patterns.begin(), Patterns.end(), [](const FPattern& A, const FPattern& B) { return A.Bytes < B.Bytes; });
	if (!Patterns.empty())
	{
		// what the first and the last of a sorted list share, all share
		Prefix = Patterns.front().Bytes.substr(0, SharedLength(Patterns.front().Bytes, Patterns.back().Bytes));
		RarestAt = RarestLetter(Prefix);
	}
}

void FQVTextSearch::Find(std::span<const std::byte> Bytes, std::vector<std::size_t>& Out) const
{
	const std::string_view Text(reinterpret_cast<const char*>(Bytes.data()), Bytes.size());
	std::vector<bool> Found(Count);
	Narrow.Find(Text, Found);
	Wide.Find(Text, Found);
	Out.clear();
	for (std::size_t Place = 0; Place < Count; ++Place)
	{
		if (Found[Place])
		{
			Out.push_back(Place);
		}
	}
}

void FQVTextSearch::FGroup::Find(std::string_view Bytes, std::vector<bool>& Found) const
{
	if (Patterns.empty())
	{
		return;
	}
	if (Prefix.empty())
	{
		for (; !Bytes.empty(); Bytes.remove_prefix(1))
		{
			MatchAt(Bytes, Found);
		}
		return;
	}
	// looking for one byte is what libraries and processors are best at
	const char Rarest = Prefix[RarestAt];
	for (std::size_t At = Bytes.find(Rarest, RarestAt); At != std::string_view::npos; At = Bytes.find(Rarest, At + 1))
	{
		const std::string_view From = Bytes.substr(At - RarestAt);
		if (From.starts_with(Prefix))
		{
			MatchAt(From, Found);
		}
	}
}

/** Narrows the sorted patterns down letter by letter; one that ends where the letters are is found. */
void FQVTextSearch::FGroup::MatchAt(std::string_view Bytes, std::vector<bool>& Found) const
{
	auto Begin = Patterns.begin();
	auto End = Patterns.end();
	for (std::size_t Length = Prefix.size(); Begin != End; ++Length)
	{
		for (; Begin != End && Begin->Bytes.size() == Length; ++Begin)
		{
			Found[Begin->Text] = true;
		}
		if (Length == Bytes.size())
		{
			return;
		}
		const auto Letter = static_cast<unsigned char>(Bytes[Length]);
		const auto At = [Length](const FPattern& Pattern) { return static_cast<unsigned char>(Pattern.Bytes[Length]); };
		Begin = std::partition_point(Begin, End, [&](const FPattern& Pattern) { return At(Pattern) < Letter; });
		End = std::partition_point(Begin, End, [&](const FPattern& Pattern) { return At(Pattern) == Letter; });
	}
}
