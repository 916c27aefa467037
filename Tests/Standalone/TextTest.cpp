// SPDX-License-Identifier: MIT
#include "Standalone/Engine/ArgumentString.h"
#include "Standalone/Engine/TextEncoding.h"

#include <gtest/gtest.h>

using namespace QVStandalone;
using namespace std::string_literals;

TEST(TextEncoding, ReadsEveryEncodingAndRepairsBadBytes)
{
	const struct
	{
		const char* What;
		std::string Bytes;
		std::string Text;
	} Cases[] = {
		{"nothing", "", ""},
		{"ASCII", "a\r\nb", "a\r\nb"},
		{"UTF-8", "H\xC3\xB6hle", "Höhle"},
		{"UTF-8 with a mark", "\xEF\xBB\xBFH\xC3\xB6hle", "Höhle"},
		{"a mark alone", "\xEF\xBB\xBF", ""},
		{"UTF-16 LE", "\xFF\xFEH\0\xF6\0"s, "Hö"},
		{"UTF-16 BE", "\xFE\xFF\0H\0\xF6"s, "Hö"},
		{"UTF-16 LE, a letter of two units", "\xFF\xFE\x3D\xD8\x00\xDE"s, "\U0001F600"},
		{"UTF-16 BE, a letter of two units", "\xFE\xFF\xD8\x3D\xDE\x00"s, "\U0001F600"},
		{"UTF-16 LE mark alone", "\xFF\xFE", ""},
		{"UTF-16 LE, half a letter at the end", "\xFF\xFE\x41\0\x3D\xD8"s, "A\uFFFD"},
		{"UTF-16 LE, odd length", "\xFF\xFE\x41\0\x42"s, "A\uFFFD"},
		{"UTF-16 BE, odd length", "\xFE\xFF\0\x41\0"s, "A\uFFFD"},
		{"Latin-1", "H\xF6hle", "H\uFFFDhle"},
		{"each bad byte", "\x80\xFF", "\uFFFD\uFFFD"},
		{"UTF-8 cut short", "a\xE2\x82", "a\uFFFD\uFFFD"},
		{"overlong and surrogate", "\xC0\xAF\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
		{"a zero byte", "a\0b"s, "a\0b"s},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(DecodeText(Case.Bytes), Case.Text) << Case.What;
	}
}

TEST(TextEncoding, WritesAsciiPlainAndAnythingElseAsUtf16)
{
	EXPECT_EQ(EncodeText(""), "");
	EXPECT_EQ(EncodeText("\x7F tab\t\r\n"), "\x7F tab\t\r\n");
	EXPECT_EQ(EncodeText("aö"), "\xFF\xFE\x61\0\xF6\0"s);
	EXPECT_EQ(EncodeText("\U0001F600"), "\xFF\xFE\x3D\xD8\0\xDE"s);
	EXPECT_EQ(EncodeText("\xFF"), "\xFF\xFE\xFD\xFF"s);
	for (const char* Text : {"", "plain", "Пещера 洞窟 \U0001F600", "\uFEFF"})
	{
		EXPECT_EQ(DecodeText(EncodeText(Text)), Text);
	}
}

TEST(SplitArguments, FollowsTheRuleOfWindowsPrograms)
{
	const struct
	{
		std::string_view Line;
		std::vector<std::string> Words;
	} Cases[] = {
		{"", {}},
		{" \t ", {}},
		{"a b", {"a", "b"}},
		{"  a\t\tb  ", {"a", "b"}},
		{R"("a b" c)", {"a b", "c"}},
		{"\"a\tb\"", {"a\tb"}},
		{R"(-map="a b"+c -diff)", {"-map=a b+c", "-diff"}},
		{R"("a"b"c d"e)", {"abc de"}},
		{R"("")", {""}},
		{R"(a "" b)", {"a", "", "b"}},
		{R"(a""b)", {"ab"}},
		{R"("a""b")", {R"(a"b)"}},
		{R"("""")", {R"(")"}},
		{R"("a"" b")", {R"(a" b)"}},
		{R"(say \"hi\")", {"say", R"("hi")"}},
		{R"("a \" b")", {R"(a " b)"}},
		{R"(a\b \\c)", {R"(a\b)", R"(\\c)"}},
		{R"("C:\Maps\" next)", {R"(C:\Maps" next)"}},
		{R"("C:\Maps\\" next)", {R"(C:\Maps\)", "next"}},
		{R"(a\\\"b)", {R"(a\"b)"}},
		{R"(a\\\\"b c")", {R"(a\\b c)"}},
		{R"(tail\)", {R"(tail\)"}},
		{R"(tail\\ x)", {R"(tail\\)", "x"}},
		{R"("open to the end)", {"open to the end"}},
		{R"(x ")", {"x", ""}},
		{R"("/Höhle 洞/M.uproject" -run=cook)", {"/Höhle 洞/M.uproject", "-run=cook"}},
		{"a\nb 'c d' $HOME;*", {"a\nb", "'c", "d'", "$HOME;*"}},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(SplitArguments(Case.Line), Case.Words) << Case.Line;
	}
}
