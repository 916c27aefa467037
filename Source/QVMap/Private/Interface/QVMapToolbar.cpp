// SPDX-License-Identifier: MIT
#include "Interface/QVMapToolbar.h"

#include "Core/QVLog.h"
#include "Engine/QVEngine.h"
#include "Engine/QVInterface.h"
#include "Engine/QVShell.h"
#include "HandOff/QVMapPlaytest.h"
#include "Interface/QVMapDiagnosticsTab.h"
#include "Interface/QVMapMods.h"
#include "Interface/QVMapStyle.h"
#include "Interface/QVMapWorkshopTab.h"
#include "Interface/SQVMapNewModDialog.h"
#include "Interface/SQVMapSetupWindow.h"
#include "Workspace/QVMapConfig.h"
#include "Workspace/QVMapPaths.h"

namespace
{
constexpr std::string_view MiddleBrush = "Toolbar.BackplateCenter";
/** Of an icon on a button, both ways. */
constexpr int IconSize = 20;

FQVText ToolbarText(std::string_view Key, std::string_view Source)
{
	return {FQVMapToolbar::TextNamespace, Key, Source};
}

FQVToolbarControl MakeBorder(std::string_view Brush, std::string_view Image, int Size)
{
	FQVToolbarControl Border;
	Border.Brush = Brush;
	Border.Image = Image;
	Border.Width = Border.Height = Size;
	return Border;
}

FQVToolbarControl MakeButton(std::string_view Image, FQVText Tooltip, std::function<void()> Execute)
{
	FQVToolbarControl Button;
	Button.Kind = EQVToolbarControl::Button;
	Button.Style = FQVMapStyle::RedButtonCenter;
	Button.Image = Image;
	Button.bEditorImage = true;
	Button.Width = Button.Height = IconSize;
	Button.Tooltip = std::move(Tooltip);
	Button.Execute = std::move(Execute);
	return Button;
}

FQVToolbarControl MakeSeparator()
{
	FQVToolbarControl Separator;
	Separator.Kind = EQVToolbarControl::Separator;
	Separator.Brush = MiddleBrush;
	Separator.Style = FQVMapStyle::RedButtonRightCombo;
	return Separator;
}

FQVToolbarControl MakeSettingsButton()
{
	FQVToolbarControl Combo;
	Combo.Kind = EQVToolbarControl::ComboButton;
	Combo.Style = FQVMapStyle::RedButtonRightCombo;
	Combo.Tooltip = ToolbarText("SettingsTooltip", "QVMap Settings");
	Combo.BuildMenu = FQVMapToolbar::BuildSettingsMenu;
	return Combo;
}

/** An entry of the settings menu, as the table below gives it. */
struct FEntry
{
	/** Its tooltip's is the same with "Tooltip" behind it. */
	std::string_view Key;
	std::string_view Label;
	std::string_view Tooltip;
	void (*Execute)() = nullptr;
	/** Of a check. */
	bool (*IsChecked)() = nullptr;
	/** Of a submenu. */
	std::vector<FQVMenuEntry> (*Build)() = nullptr;
};

/** A rule. */
constexpr FEntry Rule = {};

FQVMenuEntry MakeEntry(const FEntry& From)
{
	FQVMenuEntry Entry;
	if (From.Key.empty())
	{
		Entry.Kind = EQVMenuEntryKind::Separator;
		return Entry;
	}
	Entry.Label = ToolbarText(From.Key, From.Label);
	Entry.Tooltip = ToolbarText(std::string(From.Key) + "Tooltip", From.Tooltip);
	if (From.Build != nullptr)
	{
		Entry.Kind = EQVMenuEntryKind::SubMenu;
		Entry.BuildEntries = From.Build;
		return Entry;
	}
	Entry.Kind = From.IsChecked != nullptr ? EQVMenuEntryKind::Check : EQVMenuEntryKind::Action;
	Entry.IsChecked = From.IsChecked;
	Entry.Execute = From.Execute;
	return Entry;
}

void ShowNewMap()
{
	FQVCreateModResult Ignored;
	SQVMapNewModDialog::ShowDialog(Ignored);
}

void OpenFolder(const std::string& Folder)
{
	FQVMapPaths::EnsureDirectory(Folder);
	FQVEngine::Get().Shell->ExploreFolder(Folder);
}

/** Turns a setting over; how the log calls what it is now. */
template<bool (*Getter)(), void (*Setter)(bool)>
std::string_view Toggle()
{
	Setter(!Getter());
	return Getter() ? "enabled" : "disabled";
}

void ToggleShowSetup()
{
	Toggle<FQVMapConfig::GetShowSetupOnStartup, FQVMapConfig::SetShowSetupOnStartup>();
}

void ToggleVerbose()
{
	QVLog(EQVLogVerbosity::Log, "QVMap: Verbose logging %s",
		Toggle<FQVMapConfig::GetVerboseLogging, FQVMapConfig::SetVerboseLogging>());
}

void ToggleFilter()
{
	QVLog(EQVLogVerbosity::Log, "QVMap: Filter unused assets %s",
		Toggle<FQVMapConfig::GetFilterUnusedAssets, FQVMapConfig::SetFilterUnusedAssets>());
}

void ToggleUseDemoAppId()
{
	QVLog(EQVLogVerbosity::Log, "QVMap: Use demo app id %s",
		Toggle<FQVMapConfig::GetUseDemoAppId, FQVMapConfig::SetUseDemoAppId>());
}

void ToggleRuntimeConsole()
{
	QVLog(EQVLogVerbosity::Log, "QVMap: Runtime console %s",
		Toggle<FQVMapConfig::GetRuntimeConsole, FQVMapConfig::SetRuntimeConsole>());
}
} // namespace

void FQVMapToolbar::Register()
{
	FQVToolMenuExtension Extension;
	Extension.Menu = "LevelEditor.LevelEditorToolBar.User";
	Extension.Section = "QVMap";
	Extension.SectionLabel = ToolbarText("QVMapSection", "QVMap");
	Extension.Entry = "QVMapToolbar";
	Extension.EntryLabel = ToolbarText("QVMapToolbarLabel", "QVMap");
	Extension.Controls = BuildToolbar();
	FQVEngine::Get().Interface->ExtendMenu(std::move(Extension));
}

std::vector<FQVToolbarControl> FQVMapToolbar::BuildToolbar()
{
	return {
		MakeBorder("Toolbar.BackplateLeft", FQVMapStyle::Icon, 0),
		MakeBorder(MiddleBrush, {}, IconSize),
		MakeButton("PlayWorld.PlayInNewProcess",
			ToolbarText("PlayTooltip", "Pack current map's plugin and launch game"), FQVMapPlaytest::PlayOpenMap),
		MakeButton("MainFrame.PackageProject",
			ToolbarText("WorkshopTooltip", "Describe this map and publish it to the Steam Workshop"),
			FQVMapWorkshopTab::Open),
		MakeSeparator(),
		MakeSettingsButton(),
	};
}

std::vector<FQVMenuEntry> FQVMapToolbar::BuildSettingsMenu()
{
	using FConfig = FQVMapConfig;
	static constexpr FEntry Table[] = {
		{"NewMod", "New Map...", "Create a new map, set up so it can be packed and played", ShowNewMap},
		{"SwitchMod", "Open Map", "Open one of the maps in this project", nullptr, nullptr, FQVMapMods::BuildMenu},
		Rule,
		{"CheckForUpdate", "Check for Update...", "See whether a newer mapping project has been published",
			CheckForUpdate},
		Rule,
		{"Diagnostics", "Diagnostics...", "Check your map's content, references and last export for problems",
			FQVMapDiagnosticsTab::Open},
		{"ShareMap", "Share Map...", "Describe this map and publish it to the Steam Workshop", FQVMapWorkshopTab::Open},
		{"SetupChecklist", "Setup Checklist...", "Check what still needs doing before a map can be packed",
			FQVMapSetupWindow::Open},
		{"ShowSetupOnStartup", "Show Setup on Startup",
			"Show the setup checklist at editor startup when something is missing", ToggleShowSetup,
			FConfig::GetShowSetupOnStartup},
		Rule,
		{"BuildBaseRelease", "Build Base Release...",
			"Cook the base game to generate Releases/1.0 (required once before any map can be packed)",
			BuildBaseRelease},
		Rule,
		{"ConfigureGameExe", "Configure Game Executable...", "Set the path to your game executable",
			[] { FConfig::PickGameExe(); }},
		{"ResetGameExe", "Reset Game Executable", "Remove the configured game executable path",
			FConfig::ClearGameExePath},
		Rule,
		{"OpenOutputFolder", "Open Output Folder", "Open the folder containing exported PAK files",
			[] { OpenFolder(FQVMapPaths::GetOutputDir()); }},
		{"OpenTempFolder", "Open Temp Folder", "Open temporary files folder (manifests, response files)",
			[] { OpenFolder(FQVMapPaths::GetTempDir()); }},
		Rule,
		{"ToggleVerbose", "Verbose Logging", "Toggle detailed logging of all files being packed (useful for debugging)",
			ToggleVerbose, FConfig::GetVerboseLogging},
		{"ToggleFilter", "Filter Unused Assets",
			"Only pack assets actually referenced by your maps (excludes unused content)", ToggleFilter,
			FConfig::GetFilterUnusedAssets},
		{"ToggleUseDemoAppId", "Use Demo App ID",
			"Launch via steam://run/<demo appid> so Steam boots the QUARVEL Demo build instead of the full game",
			ToggleUseDemoAppId, FConfig::GetUseDemoAppId},
		{"ToggleRuntimeConsole", "Runtime Console",
			"Launch the game with -console so its runtime console is available; -log alone shows nothing in a shipping "
			"build",
			ToggleRuntimeConsole, FConfig::GetRuntimeConsole},
	};
	std::vector<FQVMenuEntry> Entries;
	for (const FEntry& Each : Table)
	{
		Entries.push_back(MakeEntry(Each));
	}
	return Entries;
}
