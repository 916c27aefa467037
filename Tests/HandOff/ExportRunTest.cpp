// SPDX-License-Identifier: MIT
#include "Export/QVMapBaseReleaseBuild.h"
#include "Export/QVMapImportRestore.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/HandOff/FlowSupport.h"
#include "Tests/Support/ScriptedWorld.h"
#include "Tests/Support/TestPrograms.h"

using namespace QVTest;

namespace
{
/** An editor in which the level blueprint's code goes when the test says so. */
struct FStripEditor : QVStandalone::FEditor
{
	FScriptedWorld World;
	std::string Refusal;

	const IQVWorld* GetOpenWorld() const override { return &World; }
	IQVBlueprint* GetLevelScriptBlueprint(const IQVLevel&, FQVText& OutRefusal) override
	{
		OutRefusal = Refusal.empty() ? FQVText() : FQVText::FromString(Refusal);
		World.Level.ScriptActor = Refusal.empty() ? nullptr : World.Level.ScriptActor;
		return nullptr;
	}
};

struct FUnsupportedContent : FFlowTest
{
	FStripEditor Editor;
	FScriptedClass Script;

	FUnsupportedContent()
	{
		Engine.Interfaces.Editor = &Editor;
		Script.Package = "/Cave/Maps/Hall";
		Script.Name = "Hall_C";
		Script.Parents = {"/Script/Engine.LevelScriptActor"};
		Script.Functions = {{"ReceiveBeginPlay", 22}};
		Dialogs.Choices = {{"PreflightTitle", "PackAnyway"}};
		Scan();
	}

	void AddScript() { Editor.World.Level.ScriptActor = &Editor.World.Add("Script", &Script); }
	void AddForeign() { Editor.World.Add("Foreign", &Editor.World.AddClass("/Cave/BP_Door", "BP_Door_C")); }
	/** What is told behind the preflight. */
	std::string RunPast()
	{
		Told();
		FQVMapPlaytest::RunExport(Request("Cave", false));
		Engine.GetGameThread().RunUntilIdle();
		const std::string All = Told();
		const std::size_t Past = All.find("question UnsupportedContentTitle");
		return Past == std::string::npos ? All : All.substr(Past);
	}
};

const std::string Unsupported =
	"question UnsupportedContentTitle/UnsupportedContentBody: <Unsupported Content> This map contains content that is "
	"not supported.\nThe game refuses to load a map containing it, so packing\nis blocked until it is removed.\n\nNot "
	"supported:\n";
const std::string Remedy = "\nRemove these, or replace them with supported assets, then pack again. ";
const std::string OfScript = "  \u2022 [Level Blueprint] ";
const std::string OfActor = "  \u2022 [Untrusted Actor] ";
} // namespace

TEST_F(FUnsupportedContent, ALevelBlueprintIsStrippedOrNothingIsPacked)
{
	AddScript();
	std::string Story = RunPast();
	EXPECT_TRUE(Story.starts_with(Unsupported + OfScript)) << Story;
	EXPECT_TRUE(
		Story.ends_with(Remedy + "[Strip Level Blueprint & Export as Map|Cancel] > Cancel\nQVMap: Pack blocked - "
								 "unsupported content, user cancelled\n"))
		<< Story;

	Dialogs.Choices["UnsupportedContentTitle"] = "StripAndExport";
	Editor.Refusal = "not in this engine";
	Story = RunPast();
	EXPECT_TRUE(
		Story.ends_with("Pack blocked - the Level Blueprint could not be stripped\nmessage "
						"RemainingIssuesTitle/StripFailed: <Unsupported Content> The Level Blueprint could not be "
						"stripped, so nothing was packed. The log says why.\n\nDelete all nodes of the Level "
						"Blueprint by hand, compile it and save the map, then pack again.\n"))
		<< Story;
	EXPECT_TRUE(Completed.empty());

	Editor.Refusal.clear();
	Story = RunPast();
	EXPECT_NE(Story.find("> Strip Level Blueprint & Export as Map\nQVMap: Level Blueprint stripped, proceeding as map\n"
						 "pending note ExportStarting"),
		std::string::npos)
		<< Story;
	EXPECT_EQ(Completed, std::vector<std::string>{"Cave packed"});
}

TEST_F(FUnsupportedContent, WhatAStripLeavesStillBlocks)
{
	AddScript();
	AddForeign();
	Dialogs.Choices["UnsupportedContentTitle"] = "StripLevelBP";
	std::string Story = RunPast();
	EXPECT_TRUE(Story.starts_with(Unsupported + OfScript)) << Story;
	EXPECT_NE(
		Story.find("[Strip Level Blueprint|Cancel] > Strip Level Blueprint\nmessage "
				   "RemainingIssuesTitle/RemainingIssues: <Unsupported Content> Level Blueprint was stripped, but "
				   "unsupported content remains:\n\n" +
				   OfActor),
		std::string::npos)
		<< Story;
	EXPECT_TRUE(Story.ends_with("\nRemove these, or replace them with supported assets, then pack again.\nQVMap: Pack "
								"blocked - unsupported content remains after strip\n"))
		<< Story;

	Dialogs.Choices["UnsupportedContentTitle"] = "";
	Story = RunPast();
	EXPECT_TRUE(Story.starts_with(Unsupported + OfActor)) << Story;
	EXPECT_TRUE(Story.ends_with("[Cancel] > Cancel\nQVMap: Pack blocked - unsupported content, user cancelled\n"))
		<< Story;
	EXPECT_TRUE(Completed.empty());

	Project.Write("Saved/QVPak/config.json", R"({"always_export_as_mod": true})");
	EXPECT_EQ(RunPast().find("Unsupported"), std::string::npos);
	EXPECT_EQ(Completed, std::vector<std::string>{"Cave packed"});
}

TEST_F(FUnsupportedContent, OnceTheRestIsGoneToo)
{
	AddScript();
	// what is unsupported besides goes while the question is open
	PutMesh("/Cave/Own");
	QVFormats::FClassPackageSpec Blueprint{"/Cave/BP_Gate", "/Script/Engine.Actor"};
	const std::vector<std::byte> Bytes = BuildClassPackage(Blueprint);
	Project.Write(FileOf(Blueprint.PackageName), {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	Scan();
	Dialogs.Choices["UnsupportedContentTitle"] = "StripLevelBP";
	const auto Tell = Dialogs.OnShown;
	Dialogs.OnShown = [&, Tell](const std::string& Entry)
	{
		Tell(Entry);
		if (Entry.starts_with("question Unsupported"))
		{
			Project.Remove(FileOf(Blueprint.PackageName));
			const std::string Gone = Project.At(FileOf(Blueprint.PackageName));
			Engine.Interfaces.AssetRegistry->ScanModifiedAssetFiles({&Gone, 1});
		}
	};
	const std::string Story = RunPast();
	EXPECT_NE(Story.find("QVMap: All issues resolved after strip, packing as map\n"), std::string::npos) << Story;
	EXPECT_EQ(Completed, std::vector<std::string>{"Cave packed"});
}

TEST_F(FFlowTest, AFileThatChangesWhileAQuestionIsOpenIsNotCooked)
{
	UseOutsideContent(false);
	const std::string Original = Project.Read(FileOf("/Cave/Own"));
	Dialogs.Choices = {{"PreflightTitle", "PackAnyway"}};
	const auto Tell = Dialogs.OnShown;
	Dialogs.OnShown = [&, Tell](const std::string& Entry)
	{
		Tell(Entry);
		if (Entry.starts_with("question PreflightTitle"))
		{
			Project.Write(FileOf("/Cave/Own"), Original); // as a version control system would
		}
	};
	const std::string Story = Run();
	EXPECT_NE(Story.find("Error: QVMap: Refusing to cook - "), std::string::npos) << Story;
	EXPECT_NE(Story.find("message ImportVerifyFailed: Cave was not packed.\n\n"), std::string::npos) << Story;
	EXPECT_TRUE(Children.Commands.empty());
	EXPECT_EQ(Project.Read(FileOf("/Cave/Own")), Original);
	EXPECT_FALSE(Project.Exists(FileOf("/Cave/_QVImported/Game/Rock")));
}

TEST_F(FFlowTest, APakThatLooksEmptyIsUsedOnlyIfTheUserWantsIt)
{
	Cooked = {"Rock.uasset"};
	std::string Story = Run();
	const std::size_t Question =
		Story.find("Warning: QVMap: 'Cave' packed but looks empty - 2 file(s) packed, 0.00 MB.\n"
				   "question EmptyPakTitle/EmptyPakBody: <Check This Map Before Using It> Cave "
				   "packed, but the result is unlikely to work in game:\n\n");
	ASSERT_NE(Question, std::string::npos) << Story;
	EXPECT_TRUE(Story.ends_with("\n2 file(s) packed, 0.00 MB.\n\nPacking again often fixes it. [Stop|Use It Anyway] > "
								"Stop\nQVMap: Stopped after packing - the pak looked empty and was not used\n"))
		<< Story;
	EXPECT_TRUE(Completed.empty());
	EXPECT_EQ(Project.FilesIn("Saved/QVPak/Output").size(), 1U) << "it stays on disk";

	Dialogs.Choices = {{"EmptyPakTitle", "EmptyPakContinue"}};
	Children.Commands.clear();
	Story = Run();
	EXPECT_NE(
		Story.find("> Use It Anyway\nWarning: QVMap: Using 'Cave' despite the empty-pak check\n"), std::string::npos)
		<< Story;
	ASSERT_EQ(Children.Commands.size(), 4U);
	EXPECT_TRUE(Children.Commands[2].starts_with(R"(write \\.\pipe\QUARVEL_PakLoader quarvel://loadmap?pak=)"));
	EXPECT_TRUE(Children.Commands[3].starts_with("open steam://run/7188263//-loadpak"));
	EXPECT_EQ(Completed, std::vector<std::string>{"Cave packed"});
}

TEST_F(FFlowTest, TheOpenMapIsPlayedAndWithoutOneTheUserIsTold)
{
	Scan();
	FQVMapPlaytest::PlayOpenMap();
	EXPECT_EQ(Told(), "message NoMapOpen: Please open a map first.\n");
	ASSERT_TRUE(Engine.OpenMap("/Cave/Maps/Hall"));
	FQVMapPlaytest::PlayOpenMap();
	Engine.GetGameThread().RunUntilIdle();
	EXPECT_TRUE(Told().starts_with("QVMap: Detected plugin: Cave, map: Hall, GamePath: /Game/Cave/Maps/Hall\nQVMap: "
								   "Starting export for Cave (map: /Game/Cave/Maps/Hall)...\n"));
	EXPECT_TRUE(Children.Commands.back().starts_with("open steam:"));
}

/** Real threads: what the sanitizers look at. */
TEST_F(FFlowTest, RunsOfTwoModsAtOnceDoNotDisturbOneAnother)
{
	QVStandalone::FProcesses Real;
	Engine.Interfaces.Processes = &Real;
	Project.ScriptEditorCmd({"write " + Project.At("Saved/Cooked/Windows/MapWork/Plugins/Cave/Content/Maps/Hall.umap") +
								 "|1",
		"write " + Project.At("Saved/Cooked/Windows/MapWork/Plugins/Cave/Content/Rock.uasset") + "|1",
		"write " + Project.At("Saved/Cooked/Windows/MapWork/Plugins/Shaft/Content/Maps/Top.umap") + "|1",
		"write " + Project.At("Saved/Cooked/Windows/MapWork/Plugins/Shaft/Content/Rock.uasset") + "|1", "sleep 50"});
	Project.ScriptUnrealPak({"write {1}|pak", "sleep 50"});
	Scan();
	ASSERT_TRUE(Engine.OpenMap("/Cave/Maps/Hall"));
	Dialogs.Choices = {{"EmptyPakTitle", "EmptyPakContinue"}}; // each cook leaves the other mod's files, too
	const std::string Before = Snapshot();
	FQVMapPlaytest::RunExport(Request("Cave", false));
	FQVMapPlaytest::RunExport(Request("Shaft", false));
	Engine.GetGameThread().RunUntilIdle();
	std::sort(Completed.begin(), Completed.end());
	EXPECT_EQ(Completed, (std::vector<std::string>{"Cave packed", "Shaft packed"})) << Told();
	EXPECT_EQ(Project.FilesIn("Saved/QVPak/Output").size(), 2U);
	EXPECT_EQ(Snapshot(), Before);
}

TEST_F(FFlowTest, OnlyOneBaseReleaseIsBuiltAtATime)
{
	int Ended = 0;
	FQVSubscription Subscription = FQVMapBaseReleaseBuild::OnBuildEnded().Subscribe(
		[&]
		{
			++Ended;
			EXPECT_FALSE(FQVMapBaseReleaseBuild::IsBaseReleaseBuilding());
		});
	std::vector<bool> Outcomes;
	const auto Note = [&Outcomes](bool bSuccess) { Outcomes.push_back(bSuccess); };
	FQVMapBaseReleaseBuild::StartBaseReleaseBuild(Note);
	EXPECT_TRUE(FQVMapBaseReleaseBuild::IsBaseReleaseBuilding());
	Told();
	FQVMapBaseReleaseBuild::StartBaseReleaseBuild(Note);
	EXPECT_EQ(Told(),
		"Warning: QVMap: Base release build already in progress - ignoring request\n"
		"message BaseReleaseAlreadyRunning: A base release build is already in progress.\n\nWait for it to "
		"finish before starting another one.\n");
	EXPECT_EQ(Outcomes, std::vector<bool>{false}) << "whoever waits for it does not hang";
	Engine.GetGameThread().RunUntilIdle();
	Subscription.reset();
	EXPECT_EQ(Outcomes, (std::vector<bool>{false, true}));
	EXPECT_EQ(Ended, 1);
	EXPECT_EQ(Children.Commands.size(), 1U);
}

/** The originals wait in the journal until they can go back to where they belong. */
TEST_F(FFlowTest, WhatIsRenamedWhileItIsPackedLosesNothing)
{
	QV_SKIP_ON_WINDOWS("a folder in which the lock's file is open cannot be renamed");
	UseOutsideContent();
	const std::string Before = Snapshot();
	const auto Work = Children.Work;
	const std::filesystem::path ProjectDir = QVStandalone::ToOsPath(Project.ProjectFile()).parent_path();
	const auto Renamed = [](std::filesystem::path Path) { return Path.replace_filename("Renamed"); };
	for (const std::filesystem::path& Folder : {ProjectDir / "Plugins/Cave", ProjectDir / "Plugins", ProjectDir})
	{
		SCOPED_TRACE(Folder);
		Children.Work = [&, bRenamed = false]() mutable
		{
			Work();
			if (!std::exchange(bRenamed, true))
			{
				std::filesystem::rename(Folder, Renamed(Folder));
			}
		};
		const std::string Story = Run();
		ASSERT_TRUE(std::filesystem::exists(Renamed(Folder))) << Story;
		EXPECT_FALSE(std::filesystem::exists(ProjectDir / "Plugins/Cave")) << "it would stand there twice";
		std::filesystem::remove_all(Folder); // logs and the like, written to where it was
		std::filesystem::rename(Renamed(Folder), Folder);
		EXPECT_NE(Snapshot(), Before);
		std::vector<std::string> Recovered;
		EXPECT_TRUE(FQVMapImportRestore::RecoverInterruptedImports(Recovered));
		EXPECT_EQ(Recovered, std::vector<std::string>{"Cave"});
		EXPECT_EQ(Snapshot(), Before);
	}
}
