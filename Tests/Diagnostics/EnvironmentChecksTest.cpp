// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapEnvironmentChecks.h"

#include "Standalone/Engine/OsPath.h"
#include "Tests/Diagnostics/DiagnosticsTestSupport.h"
#include "Workspace/QVMapConfig.h"

namespace
{
struct FEnvironmentChecks : QVTest::FDiagnosticsTest
{
	int Builds = 0;

	FQVDiagnosticFindings Check()
	{
		FQVDiagnosticOptions Options;
		Options.Actions.BuildBaseRelease = [this] { ++Builds; };
		FQVDiagnosticFindings Findings;
		FQVMapEnvironmentChecks::CheckEnvironment(Options, Findings);
		for (const FQVDiagnosticFinding& Each : Findings)
		{
			EXPECT_EQ(Each.Category, EQVDiagCategory::Environment);
			EXPECT_EQ(Each.Title.GetNamespace(), "FQVMapDiagnostics");
		}
		return Findings;
	}
	std::string CheckOne(std::string_view Id) { return Describe(Check(), Id); }
	void RemoveTool(const char* Tool)
	{
		std::filesystem::remove(QVStandalone::ToOsPath(Project.EngineDir() + "/Binaries/Win64/" + Tool));
	}
};

constexpr const char* LaunchRemedy =
	"  EnvLaunchRemedy: Set an executable to launch a local build instead of the Steam one, or turn on Use Demo App ID "
	"to boot the demo.\n"
	"  [SetExe: Set Executable...] Custom\n";
constexpr const char* BridgeRemedy = "  EnvBridgeRemedy: Without it you cannot place any of the game's actors, and a "
									 "map built now will be missing them. "
									 "Install QUARVEL into Plugins/ and restart the editor.\n"
									 "  [OpenPluginsFolder: Open Plugins] OpenFolder <Project>/Plugins\n";
} // namespace

TEST_F(FEnvironmentChecks, AllIsWellInEightRows)
{
	Project.AddBaseRelease();
	Project.Write("Game.exe", "MZ");
	FQVMapConfig::SetGameExePath(Project.At("Game.exe"));
	PutMap("/QUARVEL/Templates/DefaultMapTemplate");
	PutMesh("/Game/QUARVEL/Sky");
	Scan();
	std::string All = Describe(Check());
	const std::size_t Built = All.find("Built ");
	const std::size_t Dash = All.find(" - 3 packages (");
	ASSERT_TRUE(Built != std::string::npos && Dash != std::string::npos) << All;
	All.replace(Built, Dash - Built, "Built <Time>");
	const std::size_t Size = Project.Read(Project.DevelopmentRegistry).size();
	EXPECT_EQ(All, QVPrintf("Pass Env.UnrealPak\n"
							"  EnvUnrealPakTitle: UnrealPak available\n"
							"  <Engine>/Binaries/Win64/UnrealPak.exe\n"
							"Pass Env.EditorCmd\n"
							"  EnvEditorCmdTitle: Cook commandlet available\n"
							"  <Engine>/Binaries/Win64/UnrealEditor-Cmd.exe\n"
							"Pass Env.BaseRelease\n"
							"  EnvBaseReleaseTitle: Base release usable\n"
							"  EnvBaseReleasePass: Built <Time> - 3 packages (%d B).\n"
							"Pass Env.GameLaunch\n"
							"  EnvLaunchTitle: Game launch configured\n"
							"  <Project>/Game.exe\n"
							"Pass Env.Template\n"
							"  EnvTemplateTitle: Base game content present\n"
							"  EnvTemplatePass: 2 asset(s) under /QUARVEL/, /Game/QUARVEL/\n"
							"Pass Env.OutputWritable\n"
							"  EnvOutputTitle: Output folder writable\n"
							"  <Project>/Saved/QVPak/Output\n"
							"Pass Env.Bridge\n"
							"  EnvBridgeTitle: Game content available\n"
							"  EnvBridgePass: QUARVEL plugin mounted - game actors are available to place.\n"
							"Pass Env.MapTemplate\n"
							"  EnvTemplateMapTitle: New map template\n"
							"  /QUARVEL/Templates/DefaultMapTemplate\n",
					   Size));
}

TEST_F(FEnvironmentChecks, ToolsAndReleaseThatAreMissing)
{
	RemoveTool("UnrealPak.exe");
	RemoveTool("UnrealEditor-Cmd.exe");
	EXPECT_EQ(CheckOne("Env.UnrealPak"),
		"Error Env.UnrealPak\n"
		"  EnvUnrealPakTitle: UnrealPak available\n"
		"  EnvUnrealPakMissing: Not found at <Engine>/Binaries/Win64/UnrealPak.exe\n"
		"  EnvUnrealPakRemedy: Your engine install looks incomplete - packing cannot run without it.\n"
		"  [OpenFolder: Open Folder] OpenFolder <Engine>/Binaries/Win64\n");
	EXPECT_EQ(CheckOne("Env.EditorCmd"),
		"Error Env.EditorCmd\n"
		"  EnvEditorCmdTitle: Cook commandlet available\n"
		"  EnvEditorCmdMissing: Not found at <Engine>/Binaries/Win64/UnrealEditor-Cmd.exe\n"
		"  EnvEditorCmdRemedy: Your engine install looks incomplete - cooking cannot run without it.\n");
	const std::string Release = "Error Env.BaseRelease\n  EnvBaseReleaseTitle: Base release usable\n";
	const std::string Remedy = "  EnvBaseReleaseRemedy: Run Build Base Release from the QVMap toolbar menu.\n";
	EXPECT_EQ(CheckOne("Env.BaseRelease"),
		Release + "  No base release found at <Project>/Releases/1.0.\n" + Remedy + "  [BuildNow: Build Now] Custom\n");
	Project.MakeFolder("Releases/1.0");
	const std::string Incomplete = CheckOne("Env.BaseRelease");
	EXPECT_TRUE(Incomplete.starts_with(Release + "  The base release at <Project>/Releases/1.0 is incomplete"));
	EXPECT_TRUE(Incomplete.ends_with(Remedy + "  [Rebuild: Rebuild] Custom\n")) << Incomplete;
	EXPECT_FALSE(Find(Check(), "Env.BaseRelease").ActionCallback());
	EXPECT_EQ(Builds, 1);
}

TEST_F(FEnvironmentChecks, HowTheGameIsLaunched)
{
	const std::string Title = " Env.GameLaunch\n  EnvLaunchTitle: Game launch configured\n";
	EXPECT_EQ(CheckOne("Env.GameLaunch"),
		"Info" + Title + "  EnvLaunchSteam: Launching the game via steam://run/7188263.\n" + LaunchRemedy);
	FQVMapConfig::SetGameExePath(Project.At("Gone.exe"));
	EXPECT_EQ(CheckOne("Env.GameLaunch"),
		"Warning" + Title + "  EnvLaunchMissing: Configured executable no longer exists: <Project>/Gone.exe\n" +
			LaunchRemedy);

	const std::function<bool()> Pick = Find(Check(), "Env.GameLaunch").ActionCallback;
	EXPECT_FALSE(Pick()) << "nothing was chosen";
	Project.Write("Chosen.exe", "MZ");
	Dialogs.Answer = Project.At("Chosen.exe");
	EXPECT_TRUE(Pick());
	EXPECT_EQ(CheckOne("Env.GameLaunch"), "Pass" + Title + "  <Project>/Chosen.exe\n");

	FQVMapConfig::SetUseDemoAppId(true);
	EXPECT_EQ(
		CheckOne("Env.GameLaunch"), "Info" + Title + "  EnvLaunchDemo: Launching the demo via steam://run/7301146.\n");
}

TEST_F(FEnvironmentChecks, ContentOfTheGame)
{
	Project.Remove("Plugins/QUARVEL/Content");
	Scan();
	const std::string Title = " Env.Template\n  EnvTemplateTitle: Base game content present\n";
	EXPECT_EQ(CheckOne("Env.Template"),
		"Warning" + Title +
			"  EnvTemplateFail: No content found under /QUARVEL/ or /Game/QUARVEL/.\n"
			"  EnvTemplateRemedy: Base game content ships with the QUARVEL plugin in Plugins/. Without it, anything "
			"your map references from the base game will be treated as untrusted.\n");
	Engine.GetAssetRegistry().StartScan();
	EXPECT_EQ(CheckOne("Env.Template"),
		"Info" + Title + "  EnvTemplateScanning: Still scanning - refresh once the asset registry finishes.\n");
	EXPECT_EQ(CheckOne("Env.AssetRegistryReady"),
		"Info Env.AssetRegistryReady\n"
		"  EnvRegistryTitle: Asset registry ready\n"
		"  EnvRegistryScanning: The asset registry is still scanning, so reference results below may be incomplete.\n"
		"  EnvRegistryRemedy: Wait for the scan to finish and refresh.\n");
	ASSERT_TRUE(Engine.GetAssetRegistry().FinishScan());
	PutMesh("/Game/QUARVEL/Sky");
	PutMesh("/Game/QUARVELLER/NotOfTheGame");
	Scan();
	EXPECT_EQ(CheckOne("Env.Template"), "Pass" + Title + "  EnvTemplatePass: 1 asset(s) under /Game/QUARVEL/\n");
	EXPECT_EQ(CheckOne("Env.AssetRegistryReady"), "");
}

TEST_F(FEnvironmentChecks, OutputFolderAndTemplate)
{
	Files.Refuse = [](std::string_view Operation, std::string_view) { return Operation == "create"; };
	EXPECT_EQ(CheckOne("Env.OutputWritable"),
		"Error Env.OutputWritable\n"
		"  EnvOutputTitle: Output folder writable\n"
		"  EnvOutputFail: Could not create <Project>/Saved/QVPak/Output\n"
		"  EnvOutputRemedy: Check the folder is not read-only and is not locked by cloud sync.\n"
		"  [OpenFolder: Open Folder] OpenFolder <Project>/Saved/QVPak\n");
	Files.Refuse = {};
	const std::string Title = " Env.MapTemplate\n  EnvTemplateMapTitle: New map template\n";
	EXPECT_EQ(CheckOne("Env.MapTemplate"),
		"Warning" + Title +
			"  EnvTemplateMapMissing: Not found: /QUARVEL/Templates/DefaultMapTemplate\n"
			"  EnvTemplateMapRemedy: New maps will start empty instead of pre-set-up. Update the bridge plugin, or set "
			"map_template_path in Saved/QVPak/config.json.\n");
	FQVMapConfig::SetMapTemplatePath("");
	EXPECT_EQ(
		CheckOne("Env.MapTemplate"), "Info" + Title + "  EnvTemplateMapDisabled: Disabled - new maps start empty.\n");
}

TEST_F(FEnvironmentChecks, BridgeThatIsNotLoadedOrNotThere)
{
	const std::string Title = "Error Env.Bridge\n  EnvBridgeTitle: Game content available\n";
	Project.Remove("Plugins/QUARVEL/QUARVEL.uplugin");
	EXPECT_EQ(CheckOne("Env.Bridge"),
		Title + "  EnvBridgeNotLoaded: The QUARVEL plugin is present but the editor has not loaded it.\n" +
			BridgeRemedy);
	Project.Remove("Plugins/QUARVEL");
	Scan();
	const FQVDiagnosticFindings Findings = Check();
	EXPECT_EQ(Describe(Findings, "Env.Bridge"),
		Title + "  EnvBridgeMissing: The QUARVEL plugin is not installed in Plugins/.\n" + BridgeRemedy);
	EXPECT_EQ(Find(Findings, "Env.Template").Severity, EQVDiagSeverity::Warning);
	EXPECT_EQ(Findings.size(), 8U);
}
