// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Standalone/Formats/Package/SamplePackages.h"
#include "Tests/Cli/CliTest.h"

#include <csignal>
#include <nlohmann/json.hpp>

using namespace QVFormats;
using namespace QVTest;
using FJson = nlohmann::json;
namespace fs = std::filesystem;

namespace
{
/** Packs of mods that use content from outside, at work for as long as a test wants. */
class FPackAtWork : public FScriptedToolsTest
{
protected:
	FPackAtWork()
	{
		Project.AddMod("Harbor", {});
		for (const char* Map : {"/Cave/Maps/Hall", "/Harbor/Maps/Docks"})
		{
			const std::string Name = Map;
			const FLevelPackageSpec Level{.PackageName = Name, .Actors = PlayableActors(), .Meshes = {"/Game/Rock"}};
			const std::size_t Slash = Name.find('/', 1);
			WriteBytes(Folder / ("Plugins" + Name.substr(0, Slash) + "/Content" + Name.substr(Slash) + ".umap"),
				BuildLevelPackage(Level));
		}
		WriteBytes(Folder / "Content/Rock.uasset",
			BuildAssetPackage({"/Game/Rock", "/Script/Engine.StaticMesh", {}, {}, 700, 0}));
		const std::string Mod = "{arg:-dlcname}";
		const std::string Place =
			Project.At("Plugins/" + Mod + "/Saved/Cooked/Windows/MapWork/Plugins/" + Mod + "/Content/");
		Project.ScriptEditorCmd({"write " + Project.At("Saved/QVPak/Temp/working on " + Mod) + "|",
			"wait " + Project.At("Saved/QVPak/Temp/go on"), "write " + Place + "Maps/Hall.umap|cooked",
			"write " + Place + "Rock.uasset|cooked"});
		Before = Snapshot(Folder);
	}

	FTree Before;
	const fs::path Journal = Folder / "Saved/QVPak/Temp/ImportBackup/Cave/import.json";

	void AwaitWorkOn(const std::string& Mod) const
	{
		WaitUntil([&] { return Project.Exists("Saved/QVPak/Temp/working on " + Mod); });
	}
	void GoOn() const { Project.Write("Saved/QVPak/Temp/go on", ""); }
	/** The user's files and what is in the way of nobody: no pak and no release. */
	FTree UserFiles() const
	{
		FTree Files = Snapshot(Folder);
		std::erase_if(Files, [](const auto& File) { return File.first.starts_with("Saved/"); });
		return Files;
	}
};
} // namespace

TEST_F(FPackAtWork, AnInterruptDuringTheCookPutsTheProjectBack)
{
	if (!FProgram::CanSignal())
	{
		GTEST_SKIP() << "there is no console for Ctrl-Break";
	}
	for (const int Signal : {SIGINT, SIGTERM})
	{
		Project.Remove("Saved/QVPak/Temp/working on Cave");
		FProgram Program(Start({"-q", "pack", "Cave", "--format", "json"}));
		AwaitWorkOn("Cave");
		EXPECT_TRUE(fs::exists(Journal));
		EXPECT_NE(Snapshot(Folder), Before) << "the map refers to copies meanwhile";
		Program.Signal(Signal);
		const FProgramEnd End = Finish(Program);
		EXPECT_EQ(End.Code, 130);
		EXPECT_TRUE(End.Err.starts_with("error: interrupted\n")) << End.Err;
		const FJson Json = FJson::parse(End.Out);
		EXPECT_EQ(Json["success"], false);
		EXPECT_EQ(Json["project_put_back"], true);
		ExpectSameFiles(Before, Snapshot(Folder));
		EXPECT_FALSE(fs::exists(Journal.parent_path()));
	}
}

TEST_F(FPackAtWork, WhatAKilledPackLeftIsPutBackByAnyVerb)
{
	for (const FWords& Words : {FWords{"maps"}, FWords{"check", "Hall"}, FWords{"recover"}})
	{
		Project.Remove("Saved/QVPak/Temp");
		FProgram Program(Start({"-q", "pack", "Cave"}));
		AwaitWorkOn("Cave");
		Program.Kill();
		GoOn(); // its tool lives on until it sees that
		EXPECT_EQ(Program.Wait().Code, FProgram::Killed);
		EXPECT_TRUE(fs::exists(Journal));
		EXPECT_NE(UserFiles(), Before);
		const FProgramEnd End = Run(Words);
		EXPECT_EQ(End.Code, 0) << End.Err;
		EXPECT_NE(End.Err.find("A previous pack of 'Cave' did not finish. Its original files have been put back."),
			std::string::npos)
			<< End.Err;
		EXPECT_FALSE(fs::exists(Journal));
		ExpectSameFiles(Before, Snapshot(Folder));
	}
}

TEST_F(FPackAtWork, AModIsPackedByOneRunAtATime)
{
	for (const bool bImport : {true, false})
	{
		SCOPED_TRACE(bImport);
		Project.Remove("Saved/QVPak/Temp");
		Put("Saved/QVPak/config.json", bImport ? "{}" : R"({"import_external_assets": false})");
		FProgram First(Start({"-q", "pack", "Cave", "--yes"}));
		AwaitWorkOn("Cave");
		const FTree Meanwhile = Snapshot(Folder);
		for (const char* Verb : {"pack", "play"})
		{
			const FProgramEnd Second = Run({"-q", Verb, "Cave", "--yes", "--format", "json"});
			EXPECT_EQ(Second.Code, 1);
			const std::string Told = "'Cave' is being packed by another run of QVMap. Nothing was changed. Wait until "
									 "that one has ended, then pack again. (If there is none, "
									 "<Project>/Saved/QVPak/Temp/ImportBackup cannot be written to.)";
			EXPECT_EQ(Second.Err, "error: " + Told + "\n");
			EXPECT_EQ(FJson::parse(Second.Out)["error"], Told);
			ExpectSameFiles(Meanwhile, Snapshot(Folder));
		}
		GoOn();
		EXPECT_EQ(Finish(First).Code, 0);
		FTree Now = UserFiles();
		FTree Was = Before;
		ExpectSameFiles(Was, Now);
	}
}

TEST_F(FPackAtWork, TwoModsArePackedAtOnce)
{
	FProgram Cave(Start({"-q", "pack", "Cave"}));
	AwaitWorkOn("Cave");
	FProgram Harbor(Start({"-q", "pack", "Harbor"}));
	AwaitWorkOn("Harbor");
	GoOn();
	for (const auto& [Program, Mod] :
		{std::pair{&Cave, std::string("Cave")}, std::pair{&Harbor, std::string("Harbor")}})
	{
		const FProgramEnd End = Finish(*Program);
		EXPECT_EQ(End.Code, 0) << End.Err;
		EXPECT_EQ(End.Err, "");
		EXPECT_EQ(End.Out.find("pak  <Project>/Saved/QVPak/Output/" + Mod + "_<Id>.pak\n     3 file(s) packed, "), 0U)
			<< End.Out;
	}
	EXPECT_EQ(Paks().size(), 2U);
	ExpectSameFiles(Before, UserFiles());
	EXPECT_TRUE(fs::is_empty(Folder / "Saved/QVPak/Temp/ImportBackup") || !fs::exists(Journal));
}
