// SPDX-License-Identifier: MIT
#include "Core/QVTextSearch.h"

#include "Core/QVCheck.h"
#include "Core/QVUnicode.h"

#include <algorithm>
#include <functional>

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
	const std::boyer_moore_horspool_searcher Searcher(Prefix.data(), Prefix.data() + Prefix.size());
	const char* const End = Bytes.data() + Bytes.size();
	for (const char* At = Bytes.data();; ++At)
	{
		At = std::search(At, End, Searcher);
		if (At == End)
		{
			return;
		}
		MatchAt({At, static_cast<std::size_t>(End - At)}, Found);
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
