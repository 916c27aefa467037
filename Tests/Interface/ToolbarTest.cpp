// SPDX-License-Identifier: MIT
#include "Interface/QVMapToolbar.h"

#include "HandOff/QVMapUpdateCheck.h"
#include "Tests/Interface/InterfaceTest.h"
#include "Tests/Support/ScriptedHttp.h"
#include "Tests/Support/ScriptedInterface.h"
#include "Tests/Support/ScriptedShell.h"
#include "Workspace/QVMapConfig.h"

using namespace QVTest;

namespace
{
struct FToolbar : FInterfaceTest
{
	FScriptedInterface Interface;
	FScriptedHttp Http;
	std::vector<std::string> Desktop;
	FScriptedShell Shell{Desktop};

	FToolbar()
	{
		Engine.Interfaces.Interface = &Interface;
		Engine.Interfaces.Http = &Http;
		Engine.Interfaces.Shell = &Shell;
		FQVMapUpdateCheck::SetBaseAddress("https://maps.example");
	}
	~FToolbar() override { FQVMapUpdateCheck::SetBaseAddress(""); }

	static FQVMenuEntry Entry(std::string_view Key)
	{
		for (FQVMenuEntry& Each : FQVMapToolbar::BuildSettingsMenu())
		{
			if (Each.Label.GetKey() == Key)
			{
				return Each;
			}
		}
		ADD_FAILURE() << Key;
		return {};
	}
	static void Choose(std::string_view Key) { Entry(Key).Execute(); }

	/** What the user is told of what was published. */
	std::string Update(int Code, const std::string& Published, const std::string& Installed = "1.2")
	{
		Project.Write("Config/DefaultGame.ini",
			"[/Script/EngineSettings.GeneralProjectSettings]\nProjectVersion=" + Installed + "\n");
		Dialogs.Shown.clear();
		Choose("CheckForUpdate");
		Http.Answer(Code, Published);
		return FQVString::Join(Dialogs.Shown, "\n");
	}
};
} // namespace

TEST_F(FToolbar, StandsInTheLevelEditorsToolbar)
{
	FQVMapToolbar::Register();
	EXPECT_EQ(Interface.TakeStory(), "menu LevelEditor.LevelEditorToolBar.User/QVMap/QVMapToolbar\n");
	const FQVToolMenuExtension& Extension = Interface.Extensions.at(0);
	EXPECT_EQ(Say(Extension.SectionLabel) + ", " + Say(Extension.EntryLabel),
		"QVMapSection: QVMap, QVMapToolbarLabel: QVMap");
	std::string Text;
	for (const FQVToolbarControl& Each : Extension.Controls)
	{
		constexpr const char* Kinds[] = {"border", "button", "separator", "combo"};
		Text += QVPrintf("%s %s|%s|%s%s %dx%d %s\n", Kinds[static_cast<std::size_t>(Each.Kind)], Each.Brush, Each.Style,
			Each.bEditorImage ? "editor's " : "", Each.Image, Each.Width, Each.Height, Say(Each.Tooltip));
	}
	EXPECT_EQ(Text, "border Toolbar.BackplateLeft||QVMap.QVIcon 0x0 \n"
					"border Toolbar.BackplateCenter|| 20x20 \n"
					"button |QVMap.RedButtonCenter|editor's PlayWorld.PlayInNewProcess 20x20 PlayTooltip: Pack current "
					"map's plugin and launch game\n"
					"button |QVMap.RedButtonCenter|editor's MainFrame.PackageProject 20x20 WorkshopTooltip: Describe "
					"this map and publish it to the Steam Workshop\n"
					"separator Toolbar.BackplateCenter|QVMap.RedButtonRightCombo| 0x0 \n"
					"combo |QVMap.RedButtonRightCombo| 0x0 SettingsTooltip: QVMap Settings\n");
	Extension.Controls[2].Execute();
	EXPECT_EQ(Dialogs.Shown.size(), 1U) << "no map is open that could be packed";
	Extension.Controls[3].Execute();
	EXPECT_EQ(Interface.TakeStory(), "show QVMapWorkshop\n");
	EXPECT_EQ(Extension.Controls[5].BuildMenu().size(), FQVMapToolbar::BuildSettingsMenu().size());
}

TEST_F(FToolbar, MenuHasItsEntriesInOrder)
{
	std::string Text;
	for (const FQVMenuEntry& Each : FQVMapToolbar::BuildSettingsMenu())
	{
		constexpr const char* Kinds[] = {"", "[%s] ", "menu ", "text ", "--"};
		const std::string Kind = Kinds[static_cast<std::size_t>(Each.Kind)];
		const bool bCheck = Each.Kind == EQVMenuEntryKind::Check;
		Text += bCheck ? (Each.IsChecked() ? "[x] " : "[ ] ") : Kind;
		if (Each.Kind != EQVMenuEntryKind::Separator)
		{
			EXPECT_EQ(Each.Label.GetNamespace(), "FQVMapToolbar");
			EXPECT_EQ(Each.Tooltip.GetKey(), Each.Label.GetKey() + "Tooltip");
			Text += Say(Each.Label) + " | " + Each.Tooltip.ToString();
		}
		Text += "\n";
	}
	EXPECT_EQ(Text,
		"NewMod: New Map... | Create a new map, set up so it can be packed and played\n"
		"menu SwitchMod: Open Map | Open one of the maps in this project\n"
		"--\n"
		"CheckForUpdate: Check for Update... | See whether a newer mapping project has been published\n"
		"--\n"
		"Diagnostics: Diagnostics... | Check your map's content, references and last export for problems\n"
		"ShareMap: Share Map... | Describe this map and publish it to the Steam Workshop\n"
		"SetupChecklist: Setup Checklist... | Check what still needs doing before a map can be packed\n"
		"[x] ShowSetupOnStartup: Show Setup on Startup | Show the setup checklist at editor startup when something is "
		"missing\n"
		"--\n"
		"BuildBaseRelease: Build Base Release... | Cook the base game to generate Releases/1.0 (required once before "
		"any map can be packed)\n"
		"--\n"
		"ConfigureGameExe: Configure Game Executable... | Set the path to your game executable\n"
		"ResetGameExe: Reset Game Executable | Remove the configured game executable path\n"
		"--\n"
		"OpenOutputFolder: Open Output Folder | Open the folder containing exported PAK files\n"
		"OpenTempFolder: Open Temp Folder | Open temporary files folder (manifests, response files)\n"
		"--\n"
		"[ ] ToggleVerbose: Verbose Logging | Toggle detailed logging of all files being packed (useful for "
		"debugging)\n"
		"[ ] ToggleFilter: Filter Unused Assets | Only pack assets actually referenced by your maps (excludes unused "
		"content)\n"
		"[ ] ToggleUseDemoAppId: Use Demo App ID | Launch via steam://run/<demo appid> so Steam boots the QUARVEL Demo "
		"build instead of the full game\n"
		"[ ] ToggleRuntimeConsole: Runtime Console | Launch the game with -console so its runtime console is "
		"available; -log alone shows nothing in a shipping build\n");
}

TEST_F(FToolbar, ChecksTurnTheirSettingOver)
{
	struct FCase
	{
		const char* Key;
		const char* Line;
	};
	for (const FCase& Each : {FCase{"ToggleVerbose", "QVMap: Verbose logging %s\n"},
			 FCase{"ToggleFilter", "QVMap: Filter unused assets %s\n"},
			 FCase{"ToggleUseDemoAppId", "QVMap: Use demo app id %s\n"},
			 FCase{"ToggleRuntimeConsole", "QVMap: Runtime console %s\n"}, FCase{"ShowSetupOnStartup", ""}})
	{
		for (int Time = 0; Time < 2; ++Time)
		{
			const bool bBefore = Entry(Each.Key).IsChecked();
			Recording.Take();
			Choose(Each.Key);
			EXPECT_EQ(Entry(Each.Key).IsChecked(), !bBefore) << Each.Key;
			std::string Line = Each.Line;
			if (!Line.empty())
			{
				Line.replace(Line.find("%s"), 2, bBefore ? "disabled" : "enabled");
			}
			const std::string Log = Logged();
			EXPECT_TRUE(Log.ends_with(Line)) << Each.Key << ": " << Log;
			EXPECT_EQ(Log.find("abled") == std::string::npos, Line.empty()) << Log;
		}
	}
}

TEST_F(FToolbar, EntriesDoWhatTheySay)
{
	Project.AddMod("Cave", {"Maps/Hall"});
	const std::vector<FQVMenuEntry> Maps = Entry("SwitchMod").BuildEntries();
	ASSERT_EQ(Maps.size(), 1U);
	EXPECT_EQ(Maps[0].Label.ToString(), "Hall");
	for (const char* Key : {"Diagnostics", "ShareMap", "SetupChecklist"})
	{
		Choose(Key);
	}
	EXPECT_EQ(Interface.TakeStory(), "show QVMapDiagnostics\nshow QVMapWorkshop\nshow QVMapSetup\n");

	Dialogs.Answer = Project.At("Game/QUARVEL.exe");
	Choose("ConfigureGameExe");
	EXPECT_EQ(FQVMapConfig::GetGameExePath(), *Dialogs.Answer);
	Choose("ResetGameExe");
	EXPECT_EQ(FQVMapConfig::GetGameExePath(), "");

	Choose("OpenOutputFolder");
	Choose("OpenTempFolder");
	EXPECT_EQ(Desktop, (std::vector<std::string>{"explore " + Project.At("Saved/QVPak/Output"),
						   "explore " + Project.At("Saved/QVPak/Temp")}));
	EXPECT_TRUE(Project.Exists("Saved/QVPak/Output") && Project.Exists("Saved/QVPak/Temp"));

	FScriptedNewModView NewMap;
	NewMap.User = [](SQVMapNewModDialog& Dialog) { Dialog.Cancel(); };
	Choose("NewMod");
	EXPECT_EQ(NewMap.Shown, 1);
}

TEST_F(FToolbar, UpdateIsToldInAllItsForms)
{
	EXPECT_EQ(Update(503, ""),
		"message UpdateCheckTitle/UpdateCheckFailed: <Check for Update> Could not check for updates.\n\nUpdate server "
		"returned "
		"503\n\nYou can see the current version at\nhttps://maps.example/quarvelMapping/download");
	EXPECT_EQ(Update(200, R"({"version": "1.2.0"})"),
		"message UpdateCheckTitle/UpdateUpToDate: <Check for Update> You are on the latest mapping project (1.2).");
	EXPECT_EQ(Update(200, R"({"version": "1.3"})", ""),
		"message UpdateCheckTitle/UpdateUpToDate: <Check for Update> You are on the latest mapping project (1.3).");
	const std::string Head = "question UpdateAvailableTitle/UpdateAvailableBody: <Update Available> A newer mapping "
							 "project is available.\n\n  Installed:  1.2\n  Available:  1.3\n";
	const std::string Tail =
		"\nUpdating is easiest before you start a new map. Open the download page now? [Yes|No] > ";
	EXPECT_EQ(Update(200, R"({"version": "1.3"})"), Head + Tail + "No");
	EXPECT_TRUE(Desktop.empty());
	Dialogs.Choices["UpdateAvailableTitle"] = "Yes";
	EXPECT_EQ(Update(200, R"({"version": "1.3", "qvmap": "1.1.0", "bridge": "1.5"})"),
		Head +
			"\n                QVMap        Bridge\n  Installed:    1.0.26          1.4\n"
			"  Available:    1.1.0          1.5\n"
			"\nThis update changes the QUARVEL bridge, so your base release will need rebuilding. QVMap will offer "
			"that the next time you pack.\n" +
			Tail + "Yes");
	EXPECT_EQ(Desktop, std::vector<std::string>{"open https://maps.example/quarvelMapping/download"});
}

TEST_F(FToolbar, AGoodBaseReleaseIsBuiltAnewOnlyWhenAsked)
{
	UseScriptedChildren();
	Children.bStarts = false;
	Project.AddBaseRelease();
	Choose("BuildBaseRelease");
	ASSERT_EQ(Dialogs.Shown.size(), 1U);
	EXPECT_TRUE(Dialogs.Shown[0].starts_with("question BaseReleaseExists: Base release (Releases/1.0) already "
											 "exists.\n\nBuilt "))
		<< Dialogs.Shown[0];
	EXPECT_TRUE(Dialogs.Shown[0].ends_with(" packages.\n\nRebuild it? [Yes|No] > No"));
	EXPECT_FALSE(FQVMapToolbar::IsBaseReleaseBuilding());

	Project.Remove("Releases");
	GameThread.bHoldsDedicated = true;
	Choose("BuildBaseRelease");
	EXPECT_EQ(Dialogs.Shown.size(), 2U) << "the note, and no question";
	EXPECT_TRUE(FQVMapToolbar::IsBaseReleaseBuilding());
	EndBuild();
}
