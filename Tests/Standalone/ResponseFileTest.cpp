// SPDX-License-Identifier: MIT
#include "Standalone/EngineTools/ResponseFile.h"
#include "Standalone/EngineTools/CookCommandlet.h"
#include "Tests/Standalone/TestFiles.h"

#include <gtest/gtest.h>

using namespace QVEngineTools;
using FEntries = std::vector<FResponseEntry>;

namespace QVEngineTools
{
void PrintTo(const FResponseEntry& Entry, std::ostream* Out)
{
	*Out << '"' << Entry.Source << "\" \"" << Entry.Destination << '"' << (Entry.bCompress ? " -compress" : "");
}
} // namespace QVEngineTools

namespace
{
std::string ErrorOf(std::string_view Text)
{
	const auto Result = ParseResponseFile(Text);
	return Result ? "no error" : Result.Error().Message;
}
} // namespace

TEST(ResponseFile, ReadsQuotesBlanksOptionsAndEmptyLines)
{
	const struct
	{
		std::string_view Text;
		FEntries Entries;
	} Cases[] = {
		{"", {}},
		{"\n \t\r\n\n", {}},
		{R"("/a/Hall.umap" "../../../Cave/Content/Hall.umap")",
			{{"/a/Hall.umap", "../../../Cave/Content/Hall.umap", false}}},
		{"\"/a\" \"x/a\"\n\"/b\" \"x/b\"", {{"/a", "x/a", false}, {"/b", "x/b", false}}},
		{"\"/a\" \"x/a\"\r\n\r\n\"/b\" \"x/b\" -compress\r\n", {{"/a", "x/a", false}, {"/b", "x/b", true}}},
		{"/a\tx/a   -COMPRESS", {{"/a", "x/a", true}}},
		{R"("/with blank/Höhle 洞.uexp"   "x/Höhle 洞.uexp")",
			{{"/with blank/Höhle 洞.uexp", "x/Höhle 洞.uexp", false}}},
		{R"("C:\Cooked\Hall.umap" "..\..\..\Cave\Content\Hall.umap")",
			{{"C:/Cooked/Hall.umap", "../../../Cave/Content/Hall.umap", false}}},
		{R"("/a/Hall.umap" "../../../Cave/Content/")", {{"/a/Hall.umap", "../../../Cave/Content/Hall.umap", false}}},
		{"\"/a\" \"same\"\n\"/b\" \"same\"", {{"/a", "same", false}, {"/b", "same", false}}},
	};
	for (const auto& Case : Cases)
	{
		const auto Result = ParseResponseFile(Case.Text);
		ASSERT_TRUE(Result.IsOk()) << Case.Text << "\n" << Result.Error().Message;
		EXPECT_EQ(*Result, Case.Entries) << Case.Text;
	}
}

TEST(ResponseFile, ErrorsNameTheLine)
{
	EXPECT_EQ(ErrorOf("\n\"/a\" \"x/a\"\n\"/b\""), "line 3: expected \"source\" \"destination\"");
	EXPECT_EQ(ErrorOf("/a -compress"), "line 1: expected \"source\" \"destination\"");
	EXPECT_EQ(ErrorOf("\"/a\" \"x/a"), "line 1: a quote is not closed");
	EXPECT_EQ(ErrorOf("\"/a\" \"x/a\"\n\"/b \"x/b\""), "line 2: a quote is not closed");
	EXPECT_EQ(ErrorOf("/a x/a -compress -encrypt"), "line 1: option -encrypt is not supported");
	EXPECT_EQ(ErrorOf("/my maps/a x/a"), "line 1: option x/a is not supported");
}

TEST(ResponseFile, AStarStandsForAllFilesBelow)
{
	const FTestFiles Files;
	Files.Put("Pack/Maps/Hall.umap", "");
	Files.Put("Pack/b.txt", "");
	Files.Put("Other/c.txt", "");
	const std::string Root = Files("Pack");
	const auto Result = ParseResponseFile("\"" + Root + "/*\" \"../../../Cave/\" -compress");
	ASSERT_TRUE(Result.IsOk());
	EXPECT_EQ(*Result, (FEntries{{Root + "/Maps/Hall.umap", "../../../Cave/Maps/Hall.umap", true},
						   {Root + "/b.txt", "../../../Cave/b.txt", true}}));
}

TEST(CookCommand, TakesTheToolkitsTwoCommandLines)
{
	const FTestFiles Files;
	const std::string Project = Files.Put("My Maps.uproject", "{}");

	const FCookCommand Dlc =
		ParseCookCommand({Project, "-run=cook", "-targetplatform=Windows", "-basedonreleaseversion=1.0",
			"-dlcname=Cave", "-map=/Cave/Maps/Hall+/Cave/Maps/Lift", "-diff", "-stdout", "-UTF8Output", "-NoLogTimes"});
	EXPECT_EQ(Dlc.Error, "");
	EXPECT_EQ(Dlc.ProjectFile, Project);
	EXPECT_EQ(Dlc.BasedOnRelease, "1.0");
	EXPECT_EQ(Dlc.CreateRelease, "");
	EXPECT_EQ(Dlc.DlcName, "Cave");
	EXPECT_EQ(Dlc.Maps, (FLines{"/Cave/Maps/Hall", "/Cave/Maps/Lift"}));
	EXPECT_FALSE(Dlc.bIterate);

	const FCookCommand Release = ParseCookCommand(
		{Project, "-Run=Cook", "-targetplatform=Windows", "-createreleaseversion=1.0", "-iterate", "-stdout"});
	EXPECT_EQ(Release.Error, "");
	EXPECT_EQ(Release.CreateRelease, "1.0");
	EXPECT_EQ(Release.DlcName, "");
	EXPECT_TRUE(Release.Maps.empty());
	EXPECT_TRUE(Release.bIterate);

	const struct
	{
		FLines Arguments;
		std::string Error;
	} Cases[] = {
		{{}, "commandlet '' is not one of the stand-in's: it knows -run=cook only"},
		{{Project, "-run=fixupredirects"},
			"commandlet 'fixupredirects' is not one of the stand-in's: it knows -run=cook only"},
		{{"/gone.uproject", "-run=cook", "-dlcname=Cave"}, "project file '/gone.uproject' was not found"},
		{{Project, "-run=cook"}, "expected either -createreleaseversion=<version> or -dlcname=<plugin>"},
		{{Project, "-run=cook", "-createreleaseversion=1.0", "-dlcname=Cave"},
			"expected either -createreleaseversion=<version> or -dlcname=<plugin>"},
		{{Project, "-run=cook", "-dlcname=Cave"}, "-dlcname needs -basedonreleaseversion=<version>"},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(ParseCookCommand(Case.Arguments).Error, Case.Error);
	}
}
