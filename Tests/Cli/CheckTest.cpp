// SPDX-License-Identifier: MIT
#include "Tests/Cli/CheckSupport.h"

using namespace QVTest;
using FJson = nlohmann::json;
namespace fs = std::filesystem;
using FCheck = FCheckTest;

TEST_F(FCheck, WholeReportAsText)
{
	BuildRelease();
	std::string Out = Check({"cave"}, 0).Out;
	const std::size_t Built = Out.find("Built ");
	ASSERT_NE(Built, std::string::npos) << Out;
	Out.replace(Built, Out.find('\n', Built) - Built, "Built <...>");
	const std::size_t Longest = Out.find("The longest has ");
	ASSERT_NE(Longest, std::string::npos) << Out;
	Out.replace(Longest, Out.find('\n', Longest) - Longest, "The longest has <...>");
	EXPECT_EQ(Out, R"(Cave  /Cave/Maps/Hall

Environment
  note     Game launch configured
           Launching the game via steam://run/7188263.
           hint: Set an executable to launch a local build instead of the Steam one, or turn on Use Demo App ID to boot the demo.
  ok       UnrealPak available
           <Bin>/Engine/Binaries/Win64/UnrealPak.exe
  ok       Cook commandlet available
           <Bin>/Engine/Binaries/Win64/UnrealEditor-Cmd.exe
  ok       Base release usable
           Built <...>
  ok       Base game content present
           3 asset(s) under /QUARVEL/
  ok       Output folder writable
           <T>/Пример 1/Saved/QVPak/Output
  ok       Game content available
           QUARVEL plugin mounted - game actors are available to place.
  ok       New map template
           /QUARVEL/Templates/DefaultMapTemplate

Map Content
  note     Map paths
           Cook path, manifest path and pak mount point for each map.
           note     Hall
                    cook: /Cave/Maps/Hall
                    manifest: /Game/Cave/Maps/Hall
                    mounts at: /Cave/Hall
  ok       Map name valid
           Cave
  ok       Map folder set up correctly
           /Cave/
  ok       Open map saved
           /Cave/Maps/Hall
  ok       No World Partition maps
           1 map(s) checked.
  ok       Maps resolvable for cooking
           1 map(s) resolve.
  ok       One checkpoint set to Start
           1 of 1 checkpoint(s) is the Start.
  ok       A PlayerStart in the level
           1 PlayerStart(s) placed.
  ok       A way to finish the run
           1 Map End Trigger(s) placed.
  ok       Content allowed in a packed map
           No disallowed assets, actors or level script found.

Asset References
  note     Content that every game has
           The map uses none.
  ok       References traced
           1 map(s) reach 3 package(s) of the map and 0 outside it.
  ok       Nothing used from outside the map
           Everything the map uses is its own or part of every game.
  ok       Referenced packages exist
           No reference leads to a package that is not there.
  ok       No leftover redirectors
           No reference goes through a redirector outside.
  ok       Nothing saved by a newer engine
           5.4 can load all that the map uses.
  ok       References spelled like their files
           No reference differs from its file in upper and lower case.
  ok       Cooked paths short enough for Windows
           The longest has <...>
  ok       Packages readable
           Every package could be read.

Last Export
  note     Last export known
           Nothing has been exported from this project yet.

0 errors, 0 warnings, 4 notes, 24 passed
)");
	EXPECT_EQ(Check({"Hall", "--fail-on", "warning"}, 0).Err, "");
	EXPECT_EQ(Check({"/Cave/Maps/Hall", "-o", "report.txt"}, 0).Out, "");
	EXPECT_TRUE(Get("report.txt").ends_with("0 errors, 0 warnings, 4 notes, 24 passed\n"));
	EXPECT_EQ(Check({"Hall", "-o", "SampleMaps.uproject/r"}, 1).Err.substr(0, 7), "error: ");
}

TEST_F(FCheck, WhichMapIsMeant)
{
	ExpectFailure({"check"}, "error: the project has 3 maps: name one\n"
							 "  qvmap check /Cave/Maps/Hall\n"
							 "  qvmap check /Harbor/Maps/Docks\n"
							 "  qvmap check /Harbor/Maps/Pier\n");
	ExpectFailure({"check", "harbor"}, "error: 'harbor' has 2 maps: name one by its package\n"
									   "  qvmap check /Harbor/Maps/Docks\n"
									   "  qvmap check /Harbor/Maps/Pier\n");
	ExpectFailure({"check", "Hal"}, "error: there is no mod or map 'Hal': see qvmap maps\n  did you mean 'Hall'?\n");
	ExpectFailure({"check", "../Cave"}, "error: there is no mod or map '../Cave': see qvmap maps\n");
	EXPECT_EQ(CheckJson({"/Game/Harbor/Maps/Pier"}, 1)["map"], "/Harbor/Maps/Pier");
	fs::remove_all(Folder / "Plugins/Harbor");
	EXPECT_EQ(CheckJson({}, 1)["map"], "/Cave/Maps/Hall");
	fs::remove_all(Folder / "Plugins/Cave");
	const FJson None = CheckJson({}, 1);
	EXPECT_EQ(None["mod"], "");
	ASSERT_NE(FindById(None, "Content.MapInPlugin"), nullptr);
	EXPECT_TRUE(Check({}, 1).Out.starts_with("no map\n\nEnvironment\n"));
}

TEST_F(FCheck, WhatIsBrokenIsAFindingAndTheRestStillRuns)
{
	Put("Plugins/Empty/Empty.uplugin", R"({"FileVersion": 3, "CanContainContent": true})");
	FJson Document = CheckJson({"Empty"}, 1);
	EXPECT_EQ(FindById(Document, "Content.CookPathResolves")->at("severity"), "error");
	EXPECT_EQ(FindById(Document, "Ref.Audit")->at("severity"), "error");
	fs::rename(Folder / "Plugins/Cave/Cave.uplugin", Folder / "Plugins/Cave/Cave.uplugin.disabled");
	Document = CheckJson({"Cave"}, 1);
	EXPECT_EQ(FindById(Document, "Content.CanContainContent")->at("severity"), "error");
	fs::rename(Folder / "Plugins/Cave/Cave.uplugin.disabled", Folder / "Plugins/Cave/Cave.uplugin");
	fs::remove_all(Folder / "Plugins/QUARVEL");
	Document = CheckJson({"Cave"}, 1);
	EXPECT_EQ(FindById(Document, "Env.Bridge")->at("severity"), "error");
	EXPECT_EQ(FindById(Document, "Env.Template")->at("severity"), "warning");
	EXPECT_EQ(FindById(Document, "Content.PlayerStart"), nullptr);
	EXPECT_NE(FindById(Document, "Export.Record"), nullptr);

	const fs::path Map = Folder / "Plugins/Cave/Content/Maps/Hall.umap";
	const std::uintmax_t Size = fs::file_size(Map);
	for (const std::uintmax_t Bytes : {Size / 2, std::uintmax_t{3}, std::uintmax_t{0}})
	{
		fs::resize_file(Map, Bytes);
		Document = CheckJson({"Cave"}, 1);
		const FJson* Finding = FindById(Document, "Content.MapReadable");
		ASSERT_NE(Finding, nullptr) << Bytes;
		EXPECT_EQ(Finding->at("severity"), "error");
		EXPECT_NE(Finding->at("detail").get<std::string>().find("Maps/Hall.umap"), std::string::npos) << *Finding;
		EXPECT_NE(FindById(Document, "Content.Security"), nullptr);
		EXPECT_NE(FindById(Document, "Ref.Unreadable"), nullptr);
		EXPECT_NE(FindById(Document, "Export.Record"), nullptr);
	}
}

TEST_F(FCheck, SetupTellsWhatIsMissing)
{
	const std::string Out = Run({"setup"}).Out;
	EXPECT_EQ(Out, R"(done      Engine tools        <Bin>/Engine/Binaries/Win64/UnrealPak.exe
done      Bridge plugin       QUARVEL plugin mounted - game actors are available to place.
done      Base game content   3 asset(s) under /QUARVEL/
missing   Base release        No base release found at <T>/Пример 1/Releases/1.0.
          fix: Run Build Base Release from the QVMap toolbar menu.
          run: qvmap base-release build
done      Output folder       <T>/Пример 1/Saved/QVPak/Output
default   Game launch         Launching the game via steam://run/7188263.
done      New map template    /QUARVEL/Templates/DefaultMapTemplate
done      First map           3 map(s) in 2 plugin(s).
)");
	FProgramEnd End = Run({"setup", "--format", "json"});
	EXPECT_EQ(End.Code, 1);
	FJson Document = FJson::parse(End.Out);
	EXPECT_EQ(Document["complete"], false);
	EXPECT_EQ(Document["show_setup_on_startup"], true);
	ASSERT_EQ(Document["steps"].size(), 8U);
	EXPECT_EQ(Document["steps"][3]["id"], "Setup.BaseRelease");
	EXPECT_EQ(Document["steps"][3]["state"], "missing");
	BuildRelease();
	End = Run({"setup", "--format", "json"});
	EXPECT_EQ(End.Code, 0);
	EXPECT_EQ(FJson::parse(End.Out)["complete"], true);
}
