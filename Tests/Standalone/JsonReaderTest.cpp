// SPDX-License-Identifier: MIT
#include "Standalone/Engine/JsonReader.h"

#include <gtest/gtest.h>

using QVStandalone::FJsonReader;

namespace
{
FQVJson Read(std::string_view Text)
{
	FQVJson Json("not read");
	std::string Error;
	EXPECT_TRUE(FJsonReader().Parse(Text, Json, Error)) << Text << "\n" << Error;
	return Json;
}

std::string ErrorOf(std::string_view Text)
{
	FQVJson Json("untouched");
	std::string Error;
	EXPECT_FALSE(FJsonReader().Parse(Text, Json, Error)) << Text;
	EXPECT_EQ(Json, FQVJson("untouched")) << Text;
	return Error;
}

std::string Nested(std::size_t Depth)
{
	return std::string(Depth, '[') + std::string(Depth, ']');
}
} // namespace

TEST(JsonReader, ReadsEveryKindOfValueInItsOrder)
{
	FQVJson Inner = FQVJson::Array();
	Inner.Add(FQVJson()).Add(true).Add(-1.5).Add("x");
	FQVJson Expected = FQVJson::Object();
	Expected.Set("b", std::move(Inner)).Set("a", FQVJson::Object()).Set("", FQVJson::Array());
	EXPECT_EQ(Read("{\"b\": [null, true, -1.5, \"x\"],\r\n\t\"a\": {}, \"\": []}"), Expected);

	EXPECT_EQ(Read(" 7 "), FQVJson(7));
	EXPECT_EQ(Read("\xEF\xBB\xBF{}"), FQVJson::Object());
	EXPECT_EQ(Read(R"("\u00e9\ud83d\ude00\"\\\/\b\f\n\r\t")"), FQVJson("é\U0001F600\"\\/\b\f\n\r\t"));
	EXPECT_EQ(Read("\"Höhle\""), FQVJson("Höhle"));

	FQVJson Last = FQVJson::Object();
	Last.Set("Name", "second").Set("Other", 1);
	EXPECT_EQ(Read(R"({"Name": "first", "Other": 1, "Name": "second"})"), Last);
}

TEST(JsonReader, BigNumbersBecomeTheNearestDouble)
{
	EXPECT_EQ(Read("9007199254740993"), FQVJson(9007199254740992.0));
	EXPECT_EQ(Read("18446744073709551615"), FQVJson(18446744073709551616.0));
	EXPECT_EQ(Read("-9223372036854775808"), FQVJson(-9223372036854775808.0));
	EXPECT_EQ(Read("123456789012345678901234567890"), FQVJson(123456789012345678901234567890.0));
	EXPECT_EQ(Read("1e308"), FQVJson(1e308));
	EXPECT_EQ(Read("1e-400"), FQVJson(0.0));
}

TEST(JsonReader, ErrorsTellLineAndColumn)
{
	const struct
	{
		std::string_view Text;
		const char* Error;
	} Cases[] = {
		{"", "line 1, column 1: no JSON could be read here"},
		{"{\r\n\t\"a\": 1,\r\n\t\"b\": oops\r\n}", "line 3, column 7: no JSON could be read here"},
		{"[1,]", "line 1, column 4: no JSON could be read here"},
		{"{\"a\" 1}", "line 1, column 6: no JSON could be read here"},
		{"{'a': 1}", "line 1, column 2: no JSON could be read here"},
		{"{} {}", "line 1, column 4: no JSON could be read here"},
		{"{\n\"a\": 1", "line 2, column 7: no JSON could be read here"},
		{"\"a\nb\"", "line 1, column 3: no JSON could be read here"},
		{"\"\x80\"", "line 1, column 2: no JSON could be read here"},
		{"// no comments\n1", "line 1, column 1: no JSON could be read here"},
		{"1e999", "line 1, column 5: no JSON could be read here"},
		{"NaN", "line 1, column 1: no JSON could be read here"},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(ErrorOf(Case.Text), Case.Error) << Case.Text;
	}
}

TEST(JsonReader, DeepNestingIsRefusedBeforeTheStackEnds)
{
	EXPECT_NE(Read(Nested(256)).AsArray(), nullptr);
	EXPECT_EQ(ErrorOf(Nested(257)), "values are nested more than 256 deep");
	EXPECT_EQ(ErrorOf(std::string(1'000'000, '[')), "values are nested more than 256 deep");
	std::string Objects;
	for (int Depth = 0; Depth < 100'000; ++Depth)
	{
		Objects += "{\"a\":";
	}
	EXPECT_EQ(ErrorOf(Objects), "values are nested more than 256 deep");
}
