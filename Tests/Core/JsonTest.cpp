// SPDX-License-Identifier: MIT
#include "Core/QVJson.h"

#include <gtest/gtest.h>

namespace
{
FQVJson ObjectOf(std::string_view Key, FQVJson Value)
{
	FQVJson Object = FQVJson::Object();
	Object.Set(Key, std::move(Value));
	return Object;
}

FQVJson ArrayOf(const std::vector<FQVJson>& Elements)
{
	FQVJson Array = FQVJson::Array();
	for (const FQVJson& Element : Elements)
	{
		Array.Add(Element);
	}
	return Array;
}
} // namespace

TEST(Json, WritesEveryShapeAsTheEngineDoes)
{
	const FQVJson Empty = FQVJson::Object();
	const FQVJson Map = ObjectOf("Name", "Hall");
	const struct
	{
		FQVJson Json;
		const char* Text;
	} Cases[] = {
		{Empty, "{\r\n}"},
		{FQVJson::Array(), "[]"},
		{FQVJson(), "null"},
		{ObjectOf("a", 1).Set("b", true).Set("c", FQVJson()).Set("d", "x"),
			"{\r\n\t\"a\": 1,\r\n\t\"b\": true,\r\n\t\"c\": null,\r\n\t\"d\": \"x\"\r\n}"},
		{ObjectOf("o", Map).Set("z", 2), "{\r\n\t\"o\":\r\n\t{\r\n\t\t\"Name\": \"Hall\"\r\n\t},\r\n\t\"z\": 2\r\n}"},
		{ObjectOf("o", Empty), "{\r\n\t\"o\":\r\n\t{\r\n\t}\r\n}"},
		{ObjectOf("a", FQVJson::Array()), "{\r\n\t\"a\": []\r\n}"},
		{ObjectOf("Maps", ArrayOf({Map, Map})),
			"{\r\n\t\"Maps\": [\r\n\t\t{\r\n\t\t\t\"Name\": \"Hall\"\r\n\t\t},\r\n\t\t{\r\n\t\t\t\"Name\": "
			"\"Hall\"\r\n\t\t}\r\n\t]\r\n}"},
		{ObjectOf("s", FQVJson::Array({"a", "b"})), "{\r\n\t\"s\": [\r\n\t\t\"a\",\r\n\t\t\"b\"\r\n\t]\r\n}"},
		{ObjectOf("n", ArrayOf({1, 2.5, false})), "{\r\n\t\"n\": [ 1, 2.5, false ]\r\n}"},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(Case.Json.ToPrettyString(), Case.Text);
	}
}

TEST(Json, WritesNumbersAndEscapesAsTheEngineDoes)
{
	const struct
	{
		FQVJson Json;
		const char* Text;
	} Cases[] = {
		{0, "0"},
		{-7, "-7"},
		{9007199254740993, "9007199254740992"},
		{1e21, "1e+21"},
		{0.1, "0.10000000000000001"},
		{1.5f, "1.5"},
		{"\"\\/\b\f\n\r\t", R"("\"\\/\b\f\n\r\t")"},
		{"\x01\x1F\x7Fö洞", "\"\\u0001\\u001F\x7Fö洞\""},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(Case.Json.ToPrettyString(), Case.Text);
	}
	EXPECT_EQ(ObjectOf("k\"\n", 1).ToPrettyString(), "{\r\n\t\"k\\\"\\n\": 1\r\n}");
}

TEST(Json, KeepsItsMembersInTheOrderInWhichTheyWereSet)
{
	FQVJson Json = ObjectOf("b", 1);
	Json.Set("a", 2).Set("c", 3).Set("a", "again");
	EXPECT_TRUE(Json.Remove("b"));
	EXPECT_FALSE(Json.Remove("b"));
	EXPECT_EQ(Json, ObjectOf("a", "again").Set("c", 3));
	EXPECT_NE(Json, ObjectOf("c", 3).Set("a", "again"));
	EXPECT_FALSE(Json.Has("A")) << "keys heed case";
	FQVJson Number(5);
	EXPECT_FALSE(Number.Remove("x"));
	EXPECT_EQ(Number.Find("x"), nullptr);
	EXPECT_EQ(Number.Set("x", 1), ObjectOf("x", 1));
	EXPECT_EQ(Number.Add(1), ArrayOf({1}));
}

TEST(Json, TolerantReadsTakeOneTypeAndConvertingReadsMakeOne)
{
	const struct
	{
		FQVJson Value;
		std::optional<bool> TryBool;
		std::optional<double> TryNumber;
		std::optional<std::string> TryString;
		bool GetBool;
		const char* GetString;
	} Cases[] = {
		{true, true, {}, {}, true, "true"},
		{false, false, {}, {}, false, "false"},
		{0, {}, 0.0, {}, false, "0"},
		{-0.5, {}, -0.5, {}, true, "-0.5"},
		{"TRUE", {}, {}, "TRUE", true, "TRUE"},
		{"Yes", {}, {}, "Yes", true, "Yes"},
		{"oN", {}, {}, "oN", true, "oN"},
		{"2", {}, {}, "2", true, "2"},
		{"0", {}, {}, "0", false, "0"},
		{"no", {}, {}, "no", false, "no"},
		{"", {}, {}, "", false, ""},
		{FQVJson(), {}, {}, {}, false, ""},
		{FQVJson::Array({"true"}), {}, {}, {}, false, ""},
		{FQVJson::Object(), {}, {}, {}, false, ""},
	};
	for (const auto& Case : Cases)
	{
		const FQVJson Json = ObjectOf("k", Case.Value);
		const std::string Text = Json.ToPrettyString();
		EXPECT_EQ(Json.TryBool("k"), Case.TryBool) << Text;
		EXPECT_EQ(Json.TryNumber("k"), Case.TryNumber) << Text;
		EXPECT_EQ(Json.TryString("k"), Case.TryString) << Text;
		EXPECT_EQ(Json.GetBool("k"), Case.GetBool) << Text;
		EXPECT_EQ(Json.GetString("k"), Case.GetString) << Text;
	}
	const FQVJson Json = ObjectOf("list", ArrayOf({"a", 1, "b", FQVJson()})).Set("text", "a");
	EXPECT_EQ(Json.TryStrings("list"), (std::vector<std::string>{"a", "b"}));
	EXPECT_EQ(Json.GetStrings("list"), (std::vector<std::string>{"a", "1", "b"}));
	EXPECT_TRUE(Json.GetStrings("text").empty());
	EXPECT_TRUE(Json.TryStrings("text").empty());
	EXPECT_TRUE(Json.TryStrings("missing").empty());
	EXPECT_FALSE(Json.TryBool("missing").has_value());
	EXPECT_FALSE(FQVJson("no object").GetBool("missing"));
}
