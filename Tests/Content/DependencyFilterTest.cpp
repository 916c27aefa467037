// SPDX-License-Identifier: MIT
#include "Content/QVMapDependencyAnalyzer.h"
#include "Tests/Support/ToolkitTest.h"

using FDependencyFilterTest = QVTest::FToolkitTest;
using FAnalyzer = FQVMapDependencyAnalyzer;

TEST(DependencyFilter, MakesTheStemOfEveryLayout)
{
	const struct
	{
		const char* Path;
		const char* Stem;
	} Cases[] = {
		{"Maps/Hall.umap", "/Cave/Maps/Hall"},
		{"Maps\\Hall.uexp", "/Cave/Maps/Hall"},
		{"Cave/Content/Maps/Hall.uexp", "/Cave/Maps/Hall"},
		{"CAVE/content/Maps/Hall.uexp", "/Cave/Maps/Hall"},
		{"Cave/Maps/Hall.umap", "/Cave/Maps/Hall"},
		{"Plugins/Cave/Content/Maps/Hall.umap", "/Cave/Maps/Hall"},
		{"PLUGINS/cave/CONTENT/Maps/Hall.umap", "/Cave/Maps/Hall"},
		{"Content/Maps/Hall.umap", "/Cave/Maps/Hall"},
		{"Content/Cave/Maps/Hall.umap", "/Cave/Maps/Hall"},
		{"Plugins/Cavern/Content/Maps/Hall.umap", "/Cave/Plugins/Cavern/Maps/Hall"},
		{"A/Content/B/CONTENT/C.uasset", "/Cave/A/B/C"},
		{"Cave.uasset", "/Cave/Cave"},
		{"CAVE.uasset", "/Cave/Cave"},
		{"Cave/Cave.uasset", "/Cave/Cave"},
		{"Cave/.uasset", "/Cave/Cave"},
		{"Cavern.uasset", "/Cave/Cavern"},
		{"Maps/Hall.old.umap", "/Cave/Maps/Hall.old"},
		{"v1.2/Hall", "/Cave/v1"},
		{"NoDot", "/Cave/NoDot"},
		{"", "/Cave/Cave"},
	};
	for (const auto& Case : Cases)
	{
		const FQVName Stem = FAnalyzer::MakePackageStem(Case.Path, "Cave");
		EXPECT_EQ(Stem, FQVName(Case.Stem)) << Case.Path << " gives " << Stem.ToView();
	}
	EXPECT_EQ(FAnalyzer::MakePackageStem("Maps/Höhle.umap", "Пещера"), FQVName("/Пещера/Maps/Höhle"));
}

TEST_F(FDependencyFilterTest, KeepsUsedPackagesWithTheirSidecarsAndAllThatIsNoPackage)
{
	const FQVNameSet Used{FQVName("/Cave/Maps/Hall"), FQVName("/Engine/EngineMaterials/Grid")};
	const struct
	{
		const char* Path;
		bool bKept;
	} Cases[] = {{"Maps/Hall.umap", true}, {"MAPS/HALL.UEXP", true}, {"Maps/Hall.ubulk", true},
		{"Maps/Hall.uptnl", true}, {"Maps/Hall.uasset", true}, {"Maps/Attic.umap", false}, {"Maps/Attic.UASSET", false},
		{"Maps/Attic.uexp", false}, {"Maps/Attic.ubulk", false}, {"Maps/Attic.uptnl", false},
		{"ShaderArchive-Cave-PCD3D_SM6.ushaderbytecode", true}, {"AssetRegistry.bin", true}, {"Maps/Attic.txt", true},
		{"uasset", true}, {"Maps/Hall", true}};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(FAnalyzer::ShouldIncludeFile(Case.Path, "Cave", Used), Case.bKept) << Case.Path;
	}
	EXPECT_EQ(Logged(), "");
}

TEST_F(FDependencyFilterTest, TellsItsDecisionsWhenLoggingIsVerbose)
{
	Project.Write("Saved/QVPak/config.json", "{\"verbose_logging\": true}");
	FQVNameSet Used;
	FAnalyzer::ShouldIncludeFile("FilterLog.umap", "Cave", Used);
	EXPECT_EQ(Logged(), "QVMap: Filter MISS - Path=FilterLog.umap, Stem=/Cave/FilterLog, UsedSetSize=0\n");
	Used.Add(FQVName("/Cave/FilterLog"));
	FAnalyzer::ShouldIncludeFile("FilterLog.umap", "Cave", Used);
	FAnalyzer::ShouldIncludeFile("AssetRegistry.bin", "Cave", Used);
	FAnalyzer::ShouldIncludeFile("Other.uexp", "Cave", Used);
	EXPECT_EQ(Logged(), "QVMap: Filter HIT - Path=FilterLog.umap, Stem=/Cave/FilterLog\n"
						"QVMap: Filter MISS - Path=Other.uexp, Stem=/Cave/Other, UsedSetSize=1\n"
						"QVMap:   UsedSet sample: /Cave/FilterLog\n");
	for (int Index = 0; Index < 6; ++Index)
	{
		Used.Add(FQVName(QVPrintf("/Cave/More%d", Index)));
	}
	FAnalyzer::ShouldIncludeFile("Other.uexp", "Cave", Used);
	EXPECT_EQ(FQVString::NonEmptyLines(Logged()).size(), 1u + 5u) << "five samples at most";
}
