// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Core/QVUnicode.h"

#include <gtest/gtest.h>

using namespace std::string_view_literals;

TEST(String, ComparesIgnoringTheCaseOfLatinLettersOnly)
{
	const struct
	{
		const char* A;
		const char* B;
		int Order;
	} Cases[] = {{"", "", 0}, {"Maps/HALL", "maps/hall", 0}, {"a", "b", -1}, {"B", "a", 1}, {"ab", "abc", -1},
		{"Zed", "_x", 1}, {"É", "é", -1}, {"z", "é", -1}, {"[", "a", -1}, {"@", "`", -1}};
	for (const auto& Case : Cases)
	{
		const int Order = FQVString::CompareIgnoreCase(Case.A, Case.B);
		EXPECT_EQ(Order < 0 ? -1 : Order > 0 ? 1 : 0, Case.Order) << Case.A << " " << Case.B;
		EXPECT_EQ(FQVString::EqualsIgnoreCase(Case.A, Case.B), Case.Order == 0) << Case.A << " " << Case.B;
	}
	EXPECT_TRUE(FQVString::StartsWithIgnoreCase("PLUGINS/Cave", "Plugins/"));
	EXPECT_FALSE(FQVString::StartsWithIgnoreCase("Plug", "Plugins/"));
	EXPECT_TRUE(FQVString::EndsWithIgnoreCase("HALL.UMAP", ".umap"));
	EXPECT_FALSE(FQVString::EndsWithIgnoreCase("umap", ".umap"));
	EXPECT_EQ(FQVString::ToLower("ÄBC"), "Äbc");
}

TEST(String, FindsAndReplaces)
{
	EXPECT_EQ(FQVString::FindIgnoreCase("a/MapWork/b/mapwork/c", "/MAPWORK/"), 1u);
	EXPECT_EQ(FQVString::FindLastIgnoreCase("a/MapWork/b/mapwork/c", "/MAPWORK/"), 11u);
	EXPECT_EQ(FQVString::FindIgnoreCase("abc", "x"), std::string_view::npos);
	EXPECT_EQ(FQVString::FindLastIgnoreCase("abc", "x"), std::string_view::npos);
	EXPECT_EQ(FQVString::FindIgnoreCase("abc", ""), 0u);
	EXPECT_EQ(FQVString::FindIgnoreCase("", ""), 0u);
	EXPECT_TRUE(FQVString::ContainsIgnoreCase("x/ENGINE/y", "/Engine/"));
	EXPECT_EQ(FQVString::ReplaceAll("a.b.c", ".", ".."), "a..b..c");
	EXPECT_EQ(FQVString::ReplaceAll("a.b", "", "x"), "a.b");
	EXPECT_EQ(FQVString::ReplaceAllIgnoreCase("x/CONTENT/y/content/z", "/Content/", "/"), "x/y/z");
	EXPECT_EQ(FQVString::Join(std::vector<std::string>{"a", "", "b"}, "+"), "a++b");
	EXPECT_EQ(FQVString::Join({}, "+"), "");
}

TEST(String, SplitsAndTrims)
{
	using FPieces = std::vector<std::string_view>;
	EXPECT_EQ(FQVString::Split("/Cave//Maps/Hall.Hall/", '/'), (FPieces{"Cave", "Maps", "Hall.Hall"}));
	EXPECT_EQ(FQVString::Split("a, ,b", ','), (FPieces{"a", " ", "b"}));
	EXPECT_EQ(FQVString::Split(",,", ','), FPieces());
	EXPECT_EQ(FQVString::TrimStartAndEnd(" \t\r\n\v\fa b\xC2\xA0\xE3\x80\x80\xC2\x85"), "a b");
	EXPECT_EQ(FQVString::TrimStartAndEnd("\xE2\x80\x80\xE2\x80\x8A"), "");
	EXPECT_EQ(FQVString::TrimStartAndEnd("\xE2\x80\x8B\xC2\xA1"), "\xE2\x80\x8B\xC2\xA1") << "no white space";
}

TEST(String, CutsTexts)
{
	EXPECT_EQ(FQVString::NonEmptyLines("a\r\n\r\n\nb\rc"), (std::vector{"a"sv, "b"sv, "c"sv}));
	EXPECT_TRUE(FQVString::NonEmptyLines("\n\r\n").empty());
	EXPECT_EQ(FQVString::NonEmptyLines(" \nx"), (std::vector{" "sv, "x"sv}));
	EXPECT_EQ(FQVString::LastCharacters("abc", 2), "bc");
	EXPECT_EQ(FQVString::LastCharacters("abc", 5), "abc");
	EXPECT_EQ(FQVString::LastCharacters("abc", 0), "");
	EXPECT_EQ(FQVString::LastCharacters("aö洞\U0001F600", 3), "ö洞\U0001F600");
}

TEST(String, Trims)
{
	EXPECT_EQ(FQVString::Trim(" \t\r\nCave 1\n "), "Cave 1");
	EXPECT_EQ(FQVString::Trim(" \t"), "");
	EXPECT_EQ(FQVString::Trim(""), "");
}

TEST(Unicode, ConvertsAndRepairs)
{
	EXPECT_EQ(FQVUnicode::ToUtf16("aö洞\U0001F600"), u"aö洞\U0001F600");
	EXPECT_EQ(FQVUnicode::ToUtf8(u"aö洞\U0001F600"), "aö洞\U0001F600");
	const char16_t Lone[] = {0xDC00, u'a', 0xD83D};
	EXPECT_EQ(FQVUnicode::ToUtf8(std::u16string_view(Lone, 3)), "\uFFFDa\uFFFD");
	const struct
	{
		std::string_view Bytes;
		std::string_view Repaired;
		std::size_t Tail; // how many bytes at the end wait for more
	} Cases[] = {{"", "", 0}, {"abc", "abc", 0}, {"\xE2\x82\xAC", "€", 0}, {"a\xE2\x82", "a\uFFFD\uFFFD", 2},
		{"\xF0\x9F\x98", "\uFFFD\uFFFD\uFFFD", 3}, {"\xC3", "\uFFFD", 1}, {"\x80", "\uFFFD", 0},
		{"\xC0\xAF", "\uFFFD\uFFFD", 0}, {"\xFF", "\uFFFD", 0}, {"\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD", 0},
		{"\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD", 0}, {"\xE2(\xA1", "\uFFFD(\uFFFD", 0}};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(FQVUnicode::Repair(Case.Bytes), Case.Repaired);
		EXPECT_EQ(FQVUnicode::IncompleteTail(Case.Bytes), Case.Tail) << Case.Repaired;
	}
	EXPECT_TRUE(FQVUnicode::IsAscii("\x01~\x7F"));
	EXPECT_FALSE(FQVUnicode::IsAscii("ö"));
}

TEST(Path, TakesPathsApart)
{
	const struct
	{
		const char* Path;
		const char* Clean;
		const char* Base;
		const char* Folder;
		const char* Stem;
	} Cases[] = {{"Maps/Hall.umap", "Hall.umap", "Hall", "Maps", "Maps/Hall"},
		{"C:\\Maps\\Hall.old.umap", "Hall.old.umap", "Hall.old", "C:\\Maps", "C:\\Maps\\Hall.old"},
		{"Hall", "Hall", "Hall", "", "Hall"}, {"v1.2/Hall", "Hall", "Hall", "v1.2", "v1.2/Hall"},
		{"/a/", "", "", "/a", "/a/"}, {".hidden", ".hidden", "", "", ""}, {"", "", "", "", ""}};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(FQVPath::GetCleanFilename(Case.Path), Case.Clean) << Case.Path;
		EXPECT_EQ(FQVPath::GetBaseFilename(Case.Path), Case.Base) << Case.Path;
		EXPECT_EQ(FQVPath::GetPath(Case.Path), Case.Folder) << Case.Path;
		EXPECT_EQ(FQVPath::WithoutExtension(Case.Path), Case.Stem) << Case.Path;
	}
	EXPECT_EQ(FQVPath::Combine("a", "b/", "", "/c", std::string("d")), "a/b/c/d");
	EXPECT_EQ(FQVPath::Combine("/", "x"), "/x");
	EXPECT_EQ(FQVPath::Combine("", "/x"), "/x");
	EXPECT_EQ(FQVPath::NormalizeFilename("C:\\a/b\\c"), "C:/a/b/c");
}

TEST(Path, ResolvesAndRelates)
{
	const struct
	{
		const char* Base;
		const char* Path;
		const char* Full;
	} Full[] = {{"/w", "a/./b/../c/", "/w/a/c"}, {"/w", "/x//y", "/x/y"}, {"/w", "../../../x", "/x"}, {"/w", "", "/w"},
		{"C:/w", "a\\b", "C:/w/a/b"}, {"/w", "D:\\x\\..\\y", "D:/y"}, {"/w/", ".", "/w"}};
	for (const auto& Case : Full)
	{
		EXPECT_EQ(FQVPath::ConvertRelativePathToFull(Case.Base, Case.Path), Case.Full) << Case.Path;
	}
	const struct
	{
		const char* Path;
		const char* To;
		const char* Relative; // null: there is none
	} Relative[] = {{"/p/Content/Maps/Hall.umap", "/p/Content/", "Maps/Hall.umap"},
		{"/p/Content/Maps/Hall.umap", "/p/Content", "Content/Maps/Hall.umap"}, {"/P/CONTENT/x", "/p/content/", "x"},
		{"/p/Other/x", "/p/Content/", "../Other/x"}, {"/p/x", "/p/a/b/", "../../x"}, {"C:\\p\\x\\y", "c:/p/", "x/y"},
		{"D:/p/x", "C:/p/", nullptr}, {"/p/Höhle/x", "/p/Höhle/", "x"}, {"x/y", "", "x/y"}};
	for (const auto& Case : Relative)
	{
		std::string Path = Case.Path;
		EXPECT_EQ(FQVPath::MakePathRelativeTo(Path, Case.To), Case.Relative != nullptr) << Case.Path;
		EXPECT_EQ(Path, Case.Relative != nullptr ? Case.Relative : Case.Path);
	}
}
