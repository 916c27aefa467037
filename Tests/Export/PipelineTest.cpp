// SPDX-License-Identifier: MIT
#include "Export/QVMapPipeline.h"

#include "Export/QVMapLastExport.h"
#include "Tests/Support/ToolkitTest.h"

#include <fstream>
#include <sstream>

using namespace QVTest;

namespace
{
const std::string CookedProject = "Saved/Cooked/Windows/MapWork/";
const std::string CookedDir = CookedProject + "Plugins/Cave/Content/";
const std::string OutputDir = "Saved/QVPak/Output/";

/** A mod of two maps, a base release, and children that cook it and pack it. */
class FPipelineTest : public FToolkitTest
{
protected:
	FQVNameSet Used;
	FProgressRecord Progress;
	int CookCode = 0;
	int PakCode = 0;

	FPipelineTest()
	{
		Project.AddMod("Cave", {"Maps/Hall", "Attic"});
		Project.AddBaseRelease();
		UseScriptedChildren();
		Children.Work = [this]
		{
			const bool bCook = Children.Commands.back().find("-run=cook") != std::string::npos;
			Children.Code = bCook ? CookCode : PakCode;
			WriteAsChild(bCook);
		};
	}

	/** What the children leave: the files of the mod, others that stay outside, and the pak. */
	void WriteAsChild(bool bCook)
	{
		if (!bCook)
		{
			Project.Write(OutputDir + "Cave_abcdef12.pak", std::string(2'621'440, 'p'));
			return;
		}
		for (const char* File : {"Maps/Hall.umap", "Maps/Hall.uexp", "Attic.umap", "Rock.uasset"})
		{
			Project.Write(CookedDir + File, "12345");
		}
	}

	FQVExportResult Export(const std::string& Mod = "Cave")
	{
		return FQVMapPipeline::ExportMod(Mod, 1, Used, Progress.Bind(), "/Game/Cave/Maps/Hall");
	}
	FQVLastExportRecord Record()
	{
		FQVLastExportRecord Record;
		EXPECT_TRUE(FQVMapLastExport::ReadLastExportRecord(Record));
		return Record;
	}
	std::string LoadText(const std::string& Relative)
	{
		std::string Text;
		EXPECT_TRUE(Files.LoadFileToString(Text, Project.At(Relative)));
		return Project.Mask(Text);
	}
};

} // namespace

TEST_F(FPipelineTest, ASuccessfulExportFromTheFirstLineToTheLast)
{
	QVStandalone::FProcesses Real;
	Engine.Interfaces.Processes = &Real;
	std::vector<std::string> Cook = {"print LogCook: Höhle"};
	for (const char* File : {"Maps/Hall.umap", "Maps/Hall.uexp", "Attic.umap", "ShaderArchive-Cave.ushaderbytecode"})
	{
		Cook.push_back("write " + Project.At(CookedDir + File) + "|12345");
	}
	for (const char* File : {"Content/ant.uasset", "Content/Ball.UMAP", "Content/Ball.uexp", "Engine/Grid.uasset",
			 "Plugins/Quarvel/Door.uasset", "Plugins/Other/Content/x.uasset"})
	{
		Cook.push_back("write " + Project.At(CookedProject + File) + "|1");
	}
	Project.ScriptEditorCmd(Cook);
	Project.ScriptUnrealPak({"write {1}|pak", "print LogPak: done"});

	FQVExportResult Result;
	Engine.GetGameThread().RunDedicatedUntilDone([&] { Result = Export(); });
	std::ostringstream Expected;
	Expected << std::ifstream(QVMAP_SOURCE_DIR "/Tests/Export/SuccessfulExport.log").rdbuf();
	EXPECT_EQ(FQVString::ReplaceAll(Logged(), QVPrintf("%d bytes", FTestProject::RegistryBytes(3).size()), "<Size>"),
		Expected.str());
	EXPECT_TRUE(Result.bSuccess);
	EXPECT_EQ(Result.ErrorMessage, "");
	EXPECT_EQ(Result.PakPath, Project.At(OutputDir + "Cave_abcdef12.pak"));
	EXPECT_EQ(Result.Content.Describe(), "5 file(s) packed, 0.00 MB.");
	EXPECT_EQ(Result.Content.UnpackableFiles,
		(std::vector<std::string>{"Content/ant.uasset", "Content/Ball.UMAP", "Plugins/Other/Content/x.uasset"}));
	EXPECT_EQ(LoadText("Saved/QVPak/Logs/Cave_20261121_180509.log"),
		"QVPak Export Log\n================\nPlugin: Cave\nVersion: 1\nDate: 2026.11.21-18.05.09\nPAK: "
		"<Project>/Saved/QVPak/Output/Cave_abcdef12.pak\nMaps: 2 found\n  - Attic: GamePath=/Game/Cave/Attic, "
		"CookPath=/Cave/Attic\n  - Hall: GamePath=/Game/Cave/Maps/Hall, CookPath=/Cave/Maps/Hall\n\nCook "
		"Log:\nLogCook: "
		"Höhle\n\nPAK Log:\nLogPak: done\n");
	EXPECT_EQ(LoadText("Saved/QVPak/Temp/Cave_manifest.json"),
		"{\r\n\t\"ModName\": \"Cave\",\r\n\t\"Version\": 1,\r\n\t\"Author\": \"Zoë\",\r\n\t\"Description\": \"A "
		"\\\"dark\\\" place\",\r\n\t\"Maps\": [\r\n\t\t{\r\n\t\t\t\"DisplayName\": \"Attic\",\r\n\t\t\t\"AssetPath\": "
		"\"/Game/Cave/Attic\"\r\n\t\t},\r\n\t\t{\r\n\t\t\t\"DisplayName\": \"Hall\",\r\n\t\t\t\"AssetPath\": "
		"\"/Game/Cave/Maps/Hall\"\r\n\t\t}\r\n\t],\r\n\t\"StartMap\": \"/Game/Cave/Maps/Hall\"\r\n}");
	EXPECT_EQ(LoadText("Saved/QVPak/Logs/last_export.json"),
		"{\r\n\t\"schema_version\": 1,\r\n\t\"plugin_name\": \"Cave\",\r\n\t\"version\": 1,\r\n\t\"timestamp\": "
		"\"2026-11-21T18:05:09.123Z\",\r\n\t\"success\": true,\r\n\t\"failed_stage\": \"\",\r\n\t\"error_message\": "
		"\"\",\r\n\t\"pak_path\": \"<Project>/Saved/QVPak/Output/Cave_abcdef12.pak\",\r\n\t\"pak_size_bytes\": "
		"3,\r\n\t\"log_path\": \"<Project>/Saved/QVPak/Logs/Cave_20261121_180509.log\",\r\n\t\"cooked_dir\": "
		"\"<Project>/Saved/Cooked/Windows/MapWork/Plugins/Cave/Content\",\r\n\t\"maps_cooked\": "
		"[\r\n\t\t\"/Cave/Attic\","
		"\r\n\t\t\"/Cave/Maps/Hall\"\r\n\t],\r\n\t\"maps_manifest\": [\r\n\t\t\"/Game/Cave/Attic\",\r\n\t\t"
		"\"/Game/Cave/Maps/Hall\"\r\n\t],\r\n\t\"filter_unused_active\": false,\r\n\t\"files_packed\": 5,\r\n\t"
		"\"files_skipped\": 0,\r\n\t\"plugin_files\": 0,\r\n\t\"base_game_files\": 0,\r\n\t\"engine_files\": 0,\r\n\t"
		"\"other_files\": 4,\r\n\t\"plugin_bytes\": 0,\r\n\t\"base_game_bytes\": 0,\r\n\t\"engine_bytes\": 0,\r\n\t"
		"\"other_bytes\": 20,\r\n\t\"base_game_sample\": []\r\n}");
}

TEST_F(FPipelineTest, ReportsItsStagesAndFillsTheResult)
{
	Children.Chunks = {"working\n", ""};
	Project.Write("Saved/QVPak/config.json", "{\"filter_unused_assets\": true}");
	Used = {FQVName("/Cave/Maps/Hall"), FQVName("/Cave/Attic")};
	const FQVExportResult Result = Export();
	EXPECT_EQ(Progress.Reports,
		(std::vector<std::string>{"validating 0 Checking plugin...", "validating 0.4 Scanning for maps...",
			"validating 0.6 Generating manifest...", "cooking 0 Starting cook...", "cooking 0.0001 working",
			"cooking 1 Cook completed", "packing 0 Starting PAK creation...", "packing 0.0005 working",
			"packing 1 PAK created (2621440 bytes)", "done 1 Writing log..."}));
	EXPECT_EQ(Result.Content.Describe(), "4 file(s) packed, 2.50 MB.");
	EXPECT_EQ((std::vector{Result.Content.MapFiles, Result.Content.PayloadFiles, Result.Content.ShaderArchives}),
		(std::vector{2, 0, 0}));
	EXPECT_TRUE(Complaints().ends_with(
		"Warning: QVMap: Pak content check failed - 4 file(s) packed, 2.50 MB., 0 unpackable\n"));
	EXPECT_TRUE(Record().bFilterUnusedActive);
	EXPECT_EQ(Record().FilesSkipped, 1);

	// a pak without a shader archive and without another finding is no problem
	Used.Add(FQVName("/Cave/Rock"));
	EXPECT_TRUE(Export().bSuccess);
	EXPECT_EQ(Complaints(), "");
}

TEST_F(FPipelineTest, EachFailureStopsAtItsStage)
{
	const std::string CookFirst = "\n\nRun 'Build Base Release...' from the QVMap toolbar menu first.";
	const std::string OldPak = OutputDir + "Cave_0.pak";
	const auto RefuseSave = [](const char* Ending)
	{
		return [Ending](std::string_view Operation, std::string_view Path)
		{ return Operation == "save" && Path.ends_with(Ending); };
	};
	const struct
	{
		const char* Mod;
		std::function<void()> Arrange;
		const char* Stage;
		std::string Error;
		/** The line at Error; empty: the message itself. */
		std::string Line;
		std::size_t Children;
	} Cases[] = {
		{"a.b", [] {}, "validating",
			"Plugin name 'a.b' contains invalid character '.'. Allowed: letters, numbers, underscore, hyphen.", "", 0},
		{"Cave",
			[this] { Project.Write("Releases/1.0/QVMapToolchain.json", R"({"contentPlugins": {"QUARVEL": "1"}})"); },
			"validating",
			"The base release is out of date and must be rebuilt before packing.\n\nQUARVEL: base release 1, installed "
			"1.4\n\nDelete Releases/ and run Build Base Release, then pack again.",
			"", 0},
		{"Nobody", [] {}, "validating", "Plugin directory not found: <Project>/Plugins/Nobody", "", 0},
		{"Loose", [this] { Project.MakeFolder("Plugins/Loose/Content"); }, "validating",
			"No plugin found for 'Loose'. You can only export maps that live inside a Plugin folder.", "", 0},
		{"Empty", [this] { Project.AddMod("Empty", {}); }, "validating", "No maps found in plugin: Empty", "", 0},
		{"QVMap", [this] { Project.AddMod("QVMap", {"A"}); }, "validating", "No maps found in plugin: QVMap", "", 0},
		{"Cave", [&] { Files.Refuse = RefuseSave("_manifest.json"); }, "manifest", "Failed to generate manifest",
			"Failed to write manifest to: <Project>/Saved/QVPak/Temp/Cave_manifest.json", 0},
		{"Cave", [this] { Project.Remove("Releases"); }, "cooking",
			"No base release found at <Project>/Releases/1.0." + CookFirst, "", 0},
		{"Cave", [this] { CookCode = 3; }, "cooking", "Cook failed: Cook failed with return code 3",
			"Cook failed with return code 3", 1},
		{"Cave", [this] { PakCode = 3; }, "packing", "PAK creation failed: UnrealPak failed with return code 3",
			"UnrealPak failed with return code 3", 2},
		{"Cave", [&] { Files.Refuse = RefuseSave("_filelist.txt"); }, "packing",
			"PAK creation failed: Failed to generate response file",
			"Failed to write response file: <Project>/Saved/QVPak/Temp/Cave_filelist.txt", 1},
	};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.Error);
		Project.Remove("Saved");
		Project.AddBaseRelease();
		Project.Write(OldPak, "old");
		Children.Commands.clear();
		CookCode = PakCode = 0;
		Files.Refuse = nullptr;
		Case.Arrange();
		Logged();
		const FQVExportResult Result = Export(Case.Mod);
		EXPECT_FALSE(Result.bSuccess);
		EXPECT_EQ(Result.PakPath, "");
		EXPECT_EQ(Project.Mask(Result.ErrorMessage), Case.Error);
		EXPECT_EQ(Complaints(), "Error: QVMap: " + (Case.Line.empty() ? Case.Error : Case.Line) + "\n");
		EXPECT_EQ(Children.Commands.size(), Case.Children);
		const bool bPacking = Case.Stage == std::string_view("packing");
		EXPECT_EQ(Project.Exists(OldPak), !bPacking);
		const FQVLastExportRecord Left = Record();
		EXPECT_EQ(Left.FailedStage, Case.Stage);
		EXPECT_EQ(Left.ErrorMessage, Result.ErrorMessage);
		EXPECT_EQ(Left.PluginName, Case.Mod);
		EXPECT_EQ(Left.Timestamp, Clock.Now());
		EXPECT_EQ(Left.MapsManifest.size(), Case.Stage == std::string_view("validating") ? 0u : 2u);
		EXPECT_EQ(Left.MapsCooked.size(), Case.Children > 0 ? 2u : 0u);
		EXPECT_EQ(Left.CookedDir, bPacking ? Project.At(CookedProject + "Plugins/Cave/Content") : "");
		EXPECT_EQ(Left.FilesPacked, bPacking ? 5 : 0);
		EXPECT_EQ(Left.PakPath + Left.LogPath, "");
		const bool bManifest = Left.FailedStage == "cooking" || bPacking;
		EXPECT_EQ(Project.Exists("Saved/QVPak/Temp/Cave_manifest.json"), bManifest);
	}
}

TEST_F(FPipelineTest, ResolvesCookPathsByTheFilesThatTheyReach)
{
	const FQVMapInfo Map{"Hall", "Hall.umap", "Maps/Hall.umap", "/Game/Cave/Maps/Hall", "/Cave/Maps/Hall"};
	const std::string Start = "QVMap DEBUG: Resolving cook path for Hall:\n"
							  "QVMap DEBUG:   Candidate 1 (plugin-first): /Cave/Maps/Hall\n"
							  "QVMap DEBUG:   Candidate 2 (/Game/ fallback): /Game/Maps/Hall\n"
							  "QVMap DEBUG: Package validation for '/Cave/Maps/Hall' -> "
							  "FilePath='<Project>/Plugins/Cave/Content/Maps/Hall.umap', Converted=true, Exists=";
	const std::string Second = "QVMap DEBUG: Package validation for '/Game/Maps/Hall' -> "
							   "FilePath='<Project>/Content/Maps/Hall.umap', Converted=true, Exists=";
	std::string Path;
	std::vector<std::string> Tried = {"of another map"};
	EXPECT_TRUE(FQVMapPipeline::ResolveCookPath(Map, Path, nullptr));
	EXPECT_EQ(Path, "/Cave/Maps/Hall");
	EXPECT_EQ(Logged(), Start + "true\nQVMap DEBUG:   Selected: /Cave/Maps/Hall (plugin-first resolved)\n");

	Project.Remove("Plugins/Cave/Content/Maps");
	Project.Write("Content/Maps/Hall.umap", "");
	EXPECT_TRUE(FQVMapPipeline::ResolveCookPath(Map, Path, &Tried));
	EXPECT_EQ(Path, "/Game/Maps/Hall");
	EXPECT_EQ(
		Logged(), Start + "false\n" + Second + "true\nQVMap DEBUG:   Selected: /Game/Maps/Hall (fallback resolved)\n");
	EXPECT_EQ(Tried, (std::vector<std::string>{"/Cave/Maps/Hall", "/Game/Maps/Hall"}));

	Project.Remove("Content");
	EXPECT_FALSE(FQVMapPipeline::ResolveCookPath(Map, Path, &Tried));
	EXPECT_EQ(Path, "/Cave/Maps/Hall");
	EXPECT_EQ(Logged(), Start + "false\n" + Second +
							"false\nWarning: QVMap DEBUG:   WARNING: Neither cook path resolved for Hall.\n"
							"Warning: QVMap DEBUG:   Attempted: /Cave/Maps/Hall, /Game/Maps/Hall\n");
}

TEST_F(FPipelineTest, APluginThatServesNoContentCannotBeCooked)
{
	Project.Write("Plugins/Cave/Cave.uplugin", "{\"CanContainContent\": false}");
	Project.Write("Content/Attic.umap", ""); // reaches the first map by the second candidate
	const FQVExportResult Result = Export();
	EXPECT_EQ(Result.ErrorMessage,
		"Could not resolve a cook path for map 'Hall'. Tried:\n  /Cave/Maps/Hall\n  /Game/Maps/Hall\n\nThe map file "
		"may "
		"have been moved, renamed or deleted since the plugin was scanned. Make sure it is saved inside "
		"Plugins/Cave/Content/.");
	EXPECT_TRUE(Complaints().ends_with("Error: QVMap: " + Result.ErrorMessage + "\n"));
	EXPECT_EQ(Record().FailedStage, "cooking");
	Project.Write("Content/Maps/Hall.umap", "");
	EXPECT_TRUE(Export().bSuccess);
	EXPECT_EQ(Record().MapsCooked, (std::vector<std::string>{"/Game/Attic", "/Game/Maps/Hall"}));
}

TEST_F(FPipelineTest, RemovesTheModsEarlierPaksByPrefix)
{
	for (const char* File : {"Cave_0.pak", "CAVE.PAK", "cave_Two_1.Pak", "Cavern_1.pak", "Cave_notes.txt", "Cave.pak2",
			 "Deep/Cave_1.pak", "Cave_folder.pak/x", "Cave_locked.pak"})
	{
		Project.Write(OutputDir + File, "old");
	}
	Files.Refuse = [](std::string_view Operation, std::string_view Path)
	{ return Operation == "delete" && Path.ends_with("Cave_locked.pak"); };
	EXPECT_TRUE(Export().bSuccess);
	EXPECT_EQ(
		Project.FilesIn(OutputDir), (std::vector<std::string>{"Cave.pak2", "Cave_abcdef12.pak", "Cave_folder.pak/x",
										"Cave_locked.pak", "Cave_notes.txt", "Cavern_1.pak", "Deep/Cave_1.pak"}));
	EXPECT_NE(Logged().find("QVMap: Could not delete old PAK (likely locked): <Project>/Saved/QVPak/Output/"
							"Cave_locked.pak\n"),
		std::string::npos);
}

TEST_F(FPipelineTest, AFailedLogOrRecordFailsNoExport)
{
	Files.Refuse = [](std::string_view Operation, std::string_view Path)
	{ return Operation == "save" && Path.ends_with(".log"); };
	EXPECT_TRUE(Export().bSuccess);
	EXPECT_EQ(Complaints(),
		"Warning: QVMap: Failed to write export log: <Project>/Saved/QVPak/Logs/Cave_20261121_180509.log\n");
	EXPECT_EQ(Record().LogPath, "");
	EXPECT_TRUE(Record().bSuccess);
	Files.Refuse = [](std::string_view Operation, std::string_view Path)
	{ return Operation == "save" && Path.ends_with("last_export.json"); };
	EXPECT_TRUE(Export().bSuccess);
	EXPECT_EQ(Complaints(), "");
}
