// SPDX-License-Identifier: MIT
#include "Content/QVMapDependencyAnalyzer.h"
#include "Standalone/Engine/PackageGraphBuilder.h"
#include "Tests/Support/ContentProject.h"

using FDependencyAnalyzer = QVTest::FContentTest;
using FAnalyzer = FQVMapDependencyAnalyzer;

namespace
{
std::string Sorted(const FQVNameSet& Names)
{
	std::vector<FQVName> List(Names.begin(), Names.end());
	std::sort(List.begin(), List.end(), FQVName::LexicalLess);
	return QVTest::FContentTest::Join(List, " ");
}
} // namespace

TEST_F(FDependencyAnalyzer, WalksWhateverTheMapsReferToBeyondTheModToo)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Maps/Hall", {"/Cave/Rock", "soft /Cave/Lamp", "editor /Cave/Icon", "/Cave/Gone"});
	PutMap("/Cave/Attic", {"/Game/Props/Chair"});
	PutMesh("/Cave/Rock", {"/cave/MAPS/hall"});
	PutMesh("/Cave/Lamp", {"/Cave/Lamp", "/Cave/Rock"});
	PutMesh("/Cave/Icon");
	PutMesh("/Cave/Unused", {"/Cave/Rock"});
	PutMesh("/Game/Props/Chair", {"/Game/Props/Wood"});
	PutMesh("/Game/Props/Wood", {"/Game/Props/Chair"});
	PutMesh("/Cavern/Other");
	Scan();
	Logged();
	const FQVDependencyResult Result = FAnalyzer::AnalyzeDependencies("Cave");
	EXPECT_TRUE(Result.bSuccess);
	EXPECT_EQ(Result.MapCount, 2);
	EXPECT_EQ(Result.RedirectorsResolved, 0);
	EXPECT_EQ(Sorted(Result.UsedPackages),
		"/Cave/Attic /Cave/Icon /Cave/Lamp /Cave/Maps/Hall /Cave/Rock /Game/Props/Chair /Game/Props/Wood");
	EXPECT_EQ(Logged(), "QVMap: Scanned AssetRegistry for <Project>/Plugins/Cave/Content\n"
						"QVMap: Discovered 2 map(s) from AssetRegistry in /Cave\n"
						"QVMap:   - /Cave/Attic\n"
						"QVMap:   - /Cave/Maps/Hall\n"
						"QVMap: Analyzing dependencies for 2 map(s) in Cave\n"
						"QVMap: Dependency analysis complete - 7 packages used, 0 redirectors resolved\n"
						"QVMap DEBUG: Used package stems:\n"
						"QVMap DEBUG:   - /Cave/Attic\n"
						"QVMap DEBUG:   - /Game/Props/Chair\n"
						"QVMap DEBUG:   - /Game/Props/Wood\n"
						"QVMap DEBUG:   - /Cave/Maps/Hall\n"
						"QVMap DEBUG:   - /Cave/Icon\n"
						"QVMap DEBUG:   - /Cave/Lamp\n"
						"QVMap DEBUG:   - /Cave/Rock\n");
}

TEST_F(FDependencyAnalyzer, ARedirectorCountsWithItsTargetAndNothingElseOfIt)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/Cave/Old", "/Cave/Loop", "/Cave/Lost", "soft /Game/First"});
	PutRedirector("/Cave/Old", "/Cave/New");
	PutMesh("/Cave/New", {"/Cave/Wood"});
	PutMesh("/Cave/Wood");
	PutRedirector("/Cave/Loop", "/Cave/Loop");
	PutRedirector("/Cave/Lost", "/Cave/Gone");
	PutRedirector("/Game/First", "/Game/Second");
	PutRedirector("/Game/Second", "/Game/Third");
	PutMesh("/Game/Third");
	Scan();
	Logged();
	const FQVDependencyResult Result = FAnalyzer::AnalyzeDependencies("Cave");
	EXPECT_EQ(Result.RedirectorsResolved, 3);
	EXPECT_EQ(Sorted(Result.UsedPackages), "/Cave/Hall /Cave/Loop /Cave/Lost /Cave/New /Cave/Old /Cave/Wood "
										   "/Game/First /Game/Second /Game/Third");
	const std::string Log = Logged();
	for (const char* Line :
		{"QVMap: Resolved redirector /Cave/Old -> /Cave/New\n", "QVMap: Resolved redirector /Cave/Loop -> /Cave/Loop\n",
			"QVMap: Resolved redirector /Game/Second -> /Game/Third\n"})
	{
		EXPECT_NE(Log.find(Line), std::string::npos) << Line;
	}
	EXPECT_EQ(Log.find("/Cave/Lost ->"), std::string::npos) << "what is not there is no target";
}

TEST_F(FDependencyAnalyzer, AFailedAnalysisNeverStopsAPack)
{
	Project.AddMod("Cave", {});
	PutMesh("/Cave/Rock");
	Scan();
	Logged();
	Project.Write("Saved/QVPak/config.json", R"({"filter_unused_assets": true})");
	EXPECT_TRUE(FAnalyzer::GatherUsedPackages("Nope").IsEmpty());
	EXPECT_EQ(Logged(), "QVMap: Analyzing dependencies on Game Thread...\n"
						"Error: QVMap: Plugin Content directory not found: <Project>/Plugins/Nope/Content\n"
						"Warning: QVMap: Dependency analysis failed: Plugin Content directory not found: "
						"<Project>/Plugins/Nope/Content\n"
						"Warning: QVMap: Will pack all files\n");
	EXPECT_TRUE(FAnalyzer::GatherUsedPackages("Cave").IsEmpty());
	EXPECT_EQ(Complaints(), "Warning: QVMap: No maps found in plugin: Cave\n"
							"Warning: QVMap: Dependency analysis failed: No maps found in plugin: Cave\n"
							"Warning: QVMap: Will pack all files\n");

	PutMap("/Cave/Hall", {"/Cave/Rock"}); // new since the scan
	EXPECT_EQ(Sorted(FAnalyzer::GatherUsedPackages("Cave")), "/Cave/Hall /Cave/Rock");
	EXPECT_NE(Logged().find("QVMap: Pre-computed dependency graph: 2 packages used\n"), std::string::npos);
	Project.Write("Saved/QVPak/config.json", "{}");
	EXPECT_TRUE(FAnalyzer::GatherUsedPackages("Cave").IsEmpty());
	EXPECT_EQ(Logged(), "") << "not asked for";
}

namespace
{
/** Holds what it was given, whatever the disk says. */
class FMadeUpRegistry : public QVStandalone::FAssetRegistry
{
public:
	using FAssetRegistry::FAssetRegistry;
	void ScanPathsSynchronous(std::string_view) override {}
};
} // namespace

TEST_F(FDependencyAnalyzer, AChainOfAHundredThousandPackagesDoesNotExhaustTheStack)
{
	constexpr std::uint32_t Length = 100'000;
	QVStandalone::FPackageGraphBuilder Builder;
	for (std::uint32_t Index = 0; Index < Length; ++Index)
	{
		Builder.AddPackage(FQVName(QVPrintf("/Cave/P%u", Index)));
		Builder.AddAsset({FQVName("P"), FQVName(Index == 0 ? FQVAssetData::WorldClass : "/Script/Engine.Texture"), {}});
		Builder.AddReference({FQVName(QVPrintf("/Cave/P%u", Index + 1)), true, true});
	}
	FMadeUpRegistry Registry(Project.ProjectDir(), Engine.GetPackages(), Engine.GetGameThread());
	Registry.UseGraph(Builder.Build());
	Engine.Interfaces.AssetRegistry = &Registry;
	Project.MakeFolder("Plugins/Cave/Content");
	EXPECT_EQ(FAnalyzer::AnalyzeDependencies("Cave").UsedPackages.Num(), Length);
}
