// SPDX-License-Identifier: MIT
#include "Core/QVTextSearch.h"

#include "Core/QVUnicode.h"

#include <gtest/gtest.h>
#include <random>

namespace
{
using FPlaces = std::vector<std::size_t>;

FPlaces Find(const std::vector<std::string>& Texts, std::string_view Bytes)
{
	FPlaces Found;
	FQVTextSearch(Texts).Find(std::as_bytes(std::span(Bytes)), Found);
	return Found;
}

std::string Wide(std::string_view Text)
{
	std::string Bytes;
	for (const char16_t Unit : FQVUnicode::ToUtf16(Text))
	{
		Bytes += static_cast<char>(Unit & 0xFF);
		Bytes += static_cast<char>(Unit >> 8);
	}
	return Bytes;
}
} // namespace

TEST(TextSearch, FindsEveryTextThatIsThere)
{
	const std::vector<std::string> Texts = {"/Cave/_In/Rock", "/Cave/_In/Rock2", "/Cave/_In/Höhle", "/Cave/_In/Moss"};
	EXPECT_EQ(Find(Texts, ""), FPlaces());
	EXPECT_EQ(Find(Texts, "/Cave/_In/Roc"), FPlaces());
	EXPECT_EQ(Find(Texts, "x/Cave/_In/Rock2"), (FPlaces{0, 1})); // the shorter is in the longer
	EXPECT_EQ(Find(Texts, "/Cave/_In//Cave/_In/Moss\0/Cave/_In/Moss"), FPlaces{3});
	EXPECT_EQ(Find(Texts, "/cave/_in/moss"), FPlaces()); // case counts
	EXPECT_EQ(Find(Texts, "/Cave/_In/Höhle"), FPlaces{2});
	EXPECT_EQ(Find(Texts, "odd" + Wide("/Cave/_In/Höhle")), FPlaces{2});
	EXPECT_EQ(Find(Texts, Wide("/Cave/_In/Rock")), FPlaces()); // never written so
	EXPECT_EQ(Find({"same", "same"}, "the same"), (FPlaces{0, 1}));
	EXPECT_EQ(Find({"a", "b"}, "--b"), FPlaces{1}); // nothing in common at the beginning
	EXPECT_EQ(Find({}, "anything"), FPlaces());
}

TEST(TextSearch, AgreesWithLookingForEachText)
{
	std::mt19937 Random(7);
	const auto Letters = [&Random](std::size_t Most)
	{
		std::string Text(1 + Random() % Most, ' ');
		for (char& Letter : Text)
		{
			Letter = "ab/\xFF"[Random() % 4];
		}
		return Text;
	};
	for (int Round = 0; Round < 300; ++Round)
	{
		std::vector<std::string> Texts;
		const std::string Start = Round % 3 == 0 ? "" : Letters(3);
		for (std::size_t Count = 1 + Random() % 6; Count > 0; --Count)
		{
			Texts.push_back(Start + Letters(4));
		}
		const std::string Bytes = Letters(60);
		FPlaces Expected;
		for (std::size_t Place = 0; Place < Texts.size(); ++Place)
		{
			const bool bWide =
				!FQVUnicode::IsAscii(Texts[Place]) && Bytes.find(Wide(Texts[Place])) != std::string::npos;
			if (bWide || Bytes.find(Texts[Place]) != std::string::npos)
			{
				Expected.push_back(Place);
			}
		}
		EXPECT_EQ(Find(Texts, Bytes), Expected) << Bytes;
	}
}
