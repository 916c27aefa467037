// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapPreflight.h"
#include "Tests/HandOff/FlowSupport.h"

using namespace QVTest;

namespace
{
const std::string Begun = "QVMap: Starting export for Cave (map: /Game/Cave/Maps/Hall)...\n";
const std::string Clean = "QVMap: Preflight clean for 'Cave'\n";
const std::string Packing = "pending note ExportStarting: QVMap: Packing Cave... (QVMap.QVIcon, stays)\n";
const std::string Packed = "QVMap: Export successful: <Project>/Saved/QVPak/Output/Cave_<Id>.pak\n"
						   "success note ExportSuccess: QVMap: Cave packed successfully! (fades in 1 s)\n";
const std::string Building = "QVMap: Starting base release build...\n"
							 "pending note BaseReleaseBuildStarting: QVMap: Building base release... (QVMap.QVIcon, "
							 "stays)\n";
const std::string Built = "QVMap: Base release built successfully: <Project>/Releases/1.0\n"
						  "QVMap: Base release built successfully\n"
						  "success note BaseReleaseSuccess: QVMap: Base release built successfully! (fades in 1 s)\n";
const std::string Restored = "QVMap: Restored Cave after packing (1 copy, 1 rewritten)\n";

/** Names of paks end in an id of their own. */
std::string WithoutId(std::string Text)
{
	for (std::size_t At = Text.find("/Cave_"); At != std::string::npos; At = Text.find("/Cave_", At + 1))
	{
		const std::size_t End = Text.find(".pak", At);
		if (End != std::string::npos && End - At == 14)
		{
			Text.replace(At + 6, 8, "<Id>");
		}
	}
	return Text;
}

struct FExportGates : FFlowTest
{
	std::string RunGates() { return WithoutId(Run(Request("Cave", false))); }
	void Configure(std::string_view Settings) { Project.Write("Saved/QVPak/config.json", Settings); }
	bool HasPak() const
	{
		return Project.Exists("Saved/QVPak/Output") && !Project.FilesIn("Saved/QVPak/Output").empty();
	}
	/** Nothing was exported and nothing is left of the import. */
	void ExpectStopped(const std::string& Before) const
	{
		EXPECT_TRUE(Completed.empty());
		EXPECT_FALSE(HasPak());
		EXPECT_FALSE(Project.Exists("Saved/QVPak/Logs/last_export.json"));
		EXPECT_EQ(Snapshot(), Before);
	}
};
} // namespace

TEST_F(FExportGates, WithNothingInTheWayNobodyIsAsked)
{
	EXPECT_EQ(RunGates(), Begun + Clean + Packing + Packed);
	EXPECT_EQ(Completed, std::vector<std::string>{"Cave packed"});
	std::string Manifest;
	EXPECT_TRUE(Files.LoadFileToString(Manifest, Project.At("Saved/QVPak/Temp/Cave_manifest.json")));
	EXPECT_NE(Manifest.find(R"("StartMap": "/Game/Cave/Maps/Hall")"), std::string::npos) << Manifest;
}

/** Everything is wrong at once: what is asked, and what is done in between. */
TEST_F(FExportGates, TheGatesComeInTheirOrder)
{
	QVFormats::FLevelPackageSpec Hall{.PackageName = "/Cave/Maps/Hall", .bScript = true, .Functions = {{"Begin", 22}}};
	Hall.Meshes = {"/Cave/Own"};
	const std::vector<std::byte> Bytes = BuildLevelPackage(Hall);
	UseOutsideContent();
	Project.Write(FileOf(Hall.PackageName, ".umap"), {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	Project.Remove("Releases");
	Configure(R"({"filter_unused_assets": true})");
	User.bCancels = true;
	Dialogs.Choices = {{"BaseReleaseMissingTitle", "Yes"}, {"PlayabilityTitle", "PackAnyway"}};
	const std::string Before = Snapshot();
	std::string Steps;
	const std::string Story = RunGates();
	for (const std::string_view Line : FQVString::NonEmptyLines(Story))
	{
		const bool bStep =
			Line.starts_with("Q") || Line.starts_with("W") || Line.find(" note ") != std::string_view::npos;
		Steps += bStep							? std::string(Line) + "\n"
				 : Line.starts_with("question") ? std::string(Line.substr(0, Line.find('/'))) + "\n"
												: "";
	}
	EXPECT_EQ(Steps, Begun + "question BaseReleaseMissingTitle\n" + Building + Built + Begun +
						 "QVMap: Imported 1 package(s) into Cave for this pack\n"
						 "QVMap: Packing Cave with 1 asset(s) brought in from outside its folder\n"
						 "QVMap: Preflight cancelled - packing 'Cave' without a completed check\n"
						 "question PlayabilityTitle\n"
						 "Warning: QVMap: Packing 'Cave' despite the playability check\n"
						 "QVMap: Analyzing dependencies on Game Thread...\n"
						 "QVMap: Pre-computed dependency graph: 4 packages used\n"
						 "question UnsupportedContentTitle\n"
						 "QVMap: Pack blocked - unsupported content, user cancelled\n" +
						 Restored);
	ExpectStopped(Before);
}

TEST_F(FExportGates, WithoutAUsableReleaseOneIsBuiltOrNothingIsPacked)
{
	const std::string Missing =
		"question BaseReleaseMissingTitle/BaseReleaseMissingPrompt: <Base Release Required> The base release "
		"(Releases/1.0) hasn't been built yet.\n\nIt has to be built once before any map can be packed. This cooks the "
		"base game and can take a while, but it only needs to happen once.\n\nBuild it now? [Yes|No] > ";
	const std::string Before = Snapshot();
	Project.Remove("Releases");
	EXPECT_EQ(RunGates(), Begun + Missing + "No\nQVMap: Export cancelled - base release not built\n");
	ExpectStopped(Before);
	EXPECT_TRUE(Children.Commands.empty());

	Project.Write(FTestProject::DevelopmentRegistry, "no registry");
	const std::string Broken = RunGates();
	EXPECT_TRUE(
		Broken.starts_with(Begun + "question BaseReleaseMissingTitle/BaseReleaseBrokenPrompt: <Base Release Required> "
								   "The base release can't be used:\n\n"))
		<< Broken;
	EXPECT_TRUE(Broken.ends_with("\n\nRebuilding cooks the base game and can take a while.\n\nRebuild it now? [Yes|No] "
								 "> No\nQVMap: Export cancelled - base release not built\n"))
		<< Broken;

	Dialogs.Choices = {{"BaseReleaseMissingTitle", "Yes"}};
	Project.Remove("Releases");
	EXPECT_EQ(RunGates(), Begun + Missing + "Yes\n" + Building + Built + Begun + Clean + Packing + Packed);
	EXPECT_EQ(Completed, std::vector<std::string>{"Cave packed"});
}

TEST_F(FExportGates, ABuildThatFailsEndsTheRun)
{
	Dialogs.Choices = {{"BaseReleaseMissingTitle", "Yes"}};
	Project.Remove("Releases");
	CookCode = 3;
	const std::string Before = Snapshot();
	const std::string Story = RunGates();
	EXPECT_TRUE(Story.ends_with(
		"Error: QVMap: Base release build failed: Base release cook failed with return code 3\n"
		"fail note BaseReleaseFailed: QVMap: Base release build failed (fades in 1 s)\n"
		"message BaseReleaseFailedDetail: Base release build failed:\n\nBase release cook failed with return code 3\n"))
		<< Story;
	EXPECT_EQ(Children.Commands.size(), 1U) << "the run does not begin again";
	ExpectStopped(Before);
}

TEST_F(FExportGates, AStaleReleaseIsBuiltAnewOrNothingIsPacked)
{
	const std::string Stamp = "Releases/1.0/QVMapToolchain.json";
	Project.Write(Stamp, R"({"contentPlugins": {"QUARVEL": "1.3"}})");
	const std::string Before = Snapshot();
	const std::string Story = RunGates();
	EXPECT_TRUE(Story.starts_with(
		Begun + "question BaseReleaseStaleTitle/BaseReleaseStalePrompt: <Base Release Out Of Date> The "
				"base release was built against different plugin versions:\n\n"))
		<< Story;
	EXPECT_TRUE(Story.ends_with(
		"\n\nPacking against it can produce a map that loads and then crashes on the first frame. Rebuilding cooks the "
		"base game and can take a while.\n\nRebuild it now? [Yes|No] > No\nQVMap: Export cancelled - base release out "
		"of date\n"))
		<< Story;
	EXPECT_TRUE(Project.Exists(Stamp));

	Dialogs.Choices = {{"BaseReleaseStaleTitle", "Yes"}};
	Files.Refuse = [](std::string_view Operation, std::string_view Path)
	{ return Operation == "delete" && Path.ends_with("/Releases"); };
	EXPECT_TRUE(RunGates().ends_with("> Yes\nmessage BaseReleaseDeleteFailed: Could not delete the old base "
									 "release:\n\n<Project>/Releases\n\nClose anything using it, delete it by hand, "
									 "then pack again.\n"));
	EXPECT_TRUE(Children.Commands.empty());
	ExpectStopped(Before);

	Files.Refuse = {};
	Project.Write("Releases/1.0/Old.bin", "of the old one");
	EXPECT_TRUE(RunGates().ends_with("> Yes\n" + Building + Built + Begun + Clean + Packing + Packed));
	EXPECT_FALSE(Project.Exists("Releases/1.0/Old.bin"));
}

/** Whatever stops the run then: the project is as it was. */
TEST_F(FExportGates, OutsideContentIsThereAsLongAsTheRunNeedsIt)
{
	UseOutsideContent();
	const std::string Before = Snapshot();
	const std::string Imported = "QVMap: Imported 1 package(s) into Cave for this pack\n"
								 "QVMap: Packing Cave with 1 asset(s) brought in from outside its folder\n";
	EXPECT_EQ(RunGates(), Begun + Imported + Clean + Packing + Packed + Restored);
	EXPECT_EQ(Snapshot(), Before);

	CookCode = 1;
	bool bStillThere = false;
	const auto Tell = Dialogs.OnShown;
	Dialogs.OnShown = [&](const std::string& Entry)
	{
		Tell(Entry);
		bStillThere = Entry.starts_with("message ExportFailedDetail") && Snapshot() != Before;
	};
	const std::string Failed = RunGates();
	EXPECT_TRUE(Failed.ends_with(
		"Error: QVMap: Export failed: Cook failed: Cook failed with return code 1\n"
		"fail note ExportFailed: QVMap: Cave export failed (fades in 1 s)\n"
		"message ExportFailedDetail: Failed to pack Cave:\n\nCook failed: Cook failed with return code 1\n" +
		Restored))
		<< Failed;
	EXPECT_TRUE(bStillThere) << "the user has seen the failure before all is put back";
	EXPECT_EQ(Snapshot(), Before);
}

TEST_F(FExportGates, OutsideContentThatCannotBeHadStopsTheRun)
{
	PutMesh("/Cave/Own", {"/Game/Gone"});
	PutHall(true, {"/Cave/Own"});
	const std::string Before = Snapshot();
	const std::string Story = RunGates();
	EXPECT_NE(Story.find("Error: QVMap: Could not bring outside content in: "), std::string::npos) << Story;
	EXPECT_NE(Story.find("message ImportFailed: Cave uses content from outside its own folder, and it could not be "
						 "brought in for packing:\n\n"),
		std::string::npos)
		<< Story;
	ExpectStopped(Before);

	Configure(R"({"import_external_assets": false})");
	Dialogs.Choices = {{"PreflightTitle", "PackAnyway"}};
	EXPECT_TRUE(RunGates().ends_with(Packing + Packed)) << "who wants none is not kept from packing";
}

TEST_F(FExportGates, WhatTheCheckFindsIsForTheUserToSay)
{
	PutHall(false);
	const std::string Before = Snapshot();
	const std::string Question =
		"question PreflightTitle/PreflightBody: <Map Check> Hall: 1 error(s), 0 "
		"warning(s).\n\n  \u2022 One checkpoint set to Start\n      1 checkpoint(s) placed, none "
		"with Type set to Start.\n      Select a checkpoint and set Type to Start, or the player "
		"will not spawn at a checkpoint and the checkpoint system will stay inactive.\n\nPacked as "
		"it stands, the map may not load in the game, or load and not be playable there. "
		"[Cancel and Fix|Pack Anyway] > ";
	const std::string Cancelled =
		"QVMap: Pack cancelled at preflight\nQVMap: Export cancelled at the preflight check\n";
	EXPECT_EQ(RunGates(), Begun + Question + "Cancel and Fix\n" + Cancelled);
	ExpectStopped(Before);

	std::vector<std::string> Opened;
	FQVMapPreflight::SetOpenDiagnostics([&](const FQVDiagnosticReport& Report) { Opened.push_back(Report.ModName); });
	Dialogs.Choices = {{"PreflightTitle", "OpenDiagnostics"}};
	const std::string Story = RunGates();
	FQVMapPreflight::SetOpenDiagnostics({});
	EXPECT_TRUE(Story.ends_with("[Cancel and Fix|Pack Anyway|Open Diagnostics] > Open Diagnostics\n" + Cancelled));
	EXPECT_EQ(Opened, std::vector<std::string>{"Cave"});
	ExpectStopped(Before);

	Dialogs.Choices = {{"PreflightTitle", "PackAnyway"}};
	EXPECT_EQ(
		RunGates(), Begun + Question +
						"Pack Anyway\nWarning: QVMap: Packing 'Cave' past the preflight - 1 error(s), 0 warning(s)\n" +
						Packing + Packed)
		<< "what the check has covered is not asked again";
}

TEST_F(FExportGates, RedirectorsAreFixedAndTheCheckIsRunAgain)
{
	Configure(R"({"import_external_assets": false})");
	PutMesh("/QUARVEL/Stone");
	PutRedirector("/Game/Old", "/QUARVEL/Stone");
	PutMesh("/Cave/Own", {"/Game/Old"});
	PutHall(true, {"/Cave/Own"});
	Dialogs.Choices = {{"PreflightTitle", "FixRedirectors"}};
	const std::string Story = RunGates();
	EXPECT_NE(Story.find("[Pack Anyway|Cancel and Fix|Fix Redirectors] > Fix Redirectors\nQVMap: Redirectors fixed at "
						 "preflight - re-running the check\n" +
						 Clean),
		std::string::npos)
		<< Story;
	EXPECT_FALSE(Project.Exists(FileOf("/Game/Old")));
}

TEST_F(FExportGates, ACheckThatWasCutShortLeavesTheRulesToTheNextGate)
{
	const std::string CutShort = "QVMap: Preflight cancelled - packing 'Cave' without a completed check\n";
	const std::string Question = "question PlayabilityTitle/PlayabilityBody: <Map Playability Check> Hall is missing "
								 "something it needs to play:\n\n";
	User.bCancels = true;
	EXPECT_EQ(RunGates(), Begun + CutShort + Packing + Packed) << "a map that has all it needs";

	PutHall(false);
	const std::string Before = Snapshot();
	std::string Story = RunGates();
	EXPECT_TRUE(Story.starts_with(Begun + CutShort + Question)) << Story;
	EXPECT_TRUE(Story.ends_with(
		"\nPacked as it stands, the map loads and mounts correctly and still cannot be played. [Cancel and Fix|Pack "
		"Anyway] > Cancel and Fix\nQVMap: Export cancelled - map failed the playability check\n"))
		<< Story;

	PutMap("/Cave/Maps/Hall"); // no checkpoint, no end, no start
	Dialogs.Choices = {{"PlayabilityTitle", "PackAnyway"}};
	Story = RunGates();
	EXPECT_TRUE(Story.ends_with(
		"> Pack Anyway\nWarning: QVMap: Packing 'Cave' despite the playability check\n" + Packing + Packed))
		<< Story;

	FQVPlayRequest Other = Request("Cave", false);
	Other.MapName = "Attic";
	Other.GamePath = "/Game/Cave/Maps/Attic";
	EXPECT_EQ(WithoutId(Run(Other)),
		"QVMap: Starting export for Cave (map: /Game/Cave/Maps/Attic)...\n" + CutShort +
			"QVMap: Playability check skipped - '/Game/Cave/Maps/Attic' is not the map open in the editor\n" + Packing +
			Packed);
}
