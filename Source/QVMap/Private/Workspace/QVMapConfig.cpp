// SPDX-License-Identifier: MIT
#include "Workspace/QVMapConfig.h"

#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVDialogs.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVJsonReader.h"
#include "Workspace/QVMapPaths.h"

namespace
{
constexpr FQVMapSetting BoolSetting(
	std::string_view Key, std::string_view Meaning, std::string_view LogName, bool bDefault)
{
	return {Key, Meaning, LogName, true, bDefault, {}};
}

constexpr FQVMapSetting TextSetting(
	std::string_view Key, std::string_view Meaning, std::string_view LogName, std::string_view Default)
{
	return {Key, Meaning, LogName, false, false, Default};
}

constexpr FQVMapSetting GameExePath =
	TextSetting("game_exe_path", "Path of the game's executable, for launching it directly.", "Game exe", "");
constexpr FQVMapSetting VerboseLogging =
	BoolSetting("verbose_logging", "Detailed packing logs.", "Verbose logging", false);
constexpr FQVMapSetting FilterUnusedAssets =
	BoolSetting("filter_unused_assets", "Keep files out of the pak that no map uses.", "Filter unused assets", false);
constexpr FQVMapSetting ImportExternalAssets = BoolSetting("import_external_assets",
	"Bring content from outside the map's folder in for packing.", "Import external assets", true);
constexpr FQVMapSetting AlwaysExportAsMod =
	BoolSetting("always_export_as_mod", "Skip the unsupported-content gate.", "Always export as mod", false);
constexpr FQVMapSetting UseDemoAppId =
	BoolSetting("use_demo_appid", "Launch the game's demo app instead of the full game.", "Use demo app id", false);
constexpr FQVMapSetting RuntimeConsole =
	BoolSetting("runtime_console", "Start the game with its console.", "Runtime console", false);
constexpr FQVMapSetting ShowSetupOnStartup =
	BoolSetting("show_setup_on_startup", "Open the setup window at editor start.", "Show setup on startup", true);
constexpr FQVMapSetting NewModAuthor =
	TextSetting("new_mod_author", "Author remembered for new maps.", "New mod author", "");
constexpr FQVMapSetting MapTemplatePath = TextSetting("map_template_path", "Asset that new maps are copied from.",
	"Map template path", "/QUARVEL/Templates/DefaultMapTemplate");

constexpr FQVMapSetting AllSettings[] = {GameExePath, VerboseLogging, FilterUnusedAssets, ImportExternalAssets,
	AlwaysExportAsMod, UseDemoAppId, RuntimeConsole, ShowSetupOnStartup, NewModAuthor, MapTemplatePath};

FQVJson Load()
{
	const std::string Path = FQVMapConfig::GetConfigPath();
	std::string Text;
	if (!FQVEngine::Get().Files->LoadFileToString(Text, Path))
	{
		return FQVJson::Object();
	}
	FQVJson Config;
	std::string Error;
	if (!FQVEngine::Get().JsonReader->Parse(Text, Config, Error) || !Config.IsObject())
	{
		QVLog(EQVLogVerbosity::Warning, "Failed to parse config file: %s", Path);
		return FQVJson::Object();
	}
	return Config;
}

bool Save(const FQVJson& Config)
{
	const std::string Path = FQVMapConfig::GetConfigPath();
	FQVMapPaths::EnsureDirectory(FQVMapPaths::GetWorkDir());
	if (!FQVEngine::Get().Files->SaveStringToFile(Config.ToPrettyString(), Path))
	{
		QVLog(EQVLogVerbosity::Error, "Failed to save config to: %s", Path);
		return false;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Config saved to %s", Path);
	return true;
}

bool GetBool(const FQVMapSetting& Setting)
{
	return *FQVMapConfig::Get(Setting).AsBool();
}

std::string GetText(const FQVMapSetting& Setting)
{
	return *FQVMapConfig::Get(Setting).AsString();
}

/** Removes the key; false when it was not there, in which case nothing is written. */
bool RemoveKey(const FQVMapSetting& Setting, bool& bOutSaved)
{
	FQVJson Config = Load();
	const bool bRemoved = Config.Remove(Setting.Key);
	bOutSaved = !bRemoved || Save(Config);
	return bRemoved;
}
} // namespace

std::string FQVMapConfig::GetConfigPath()
{
	return FQVPath::Combine(FQVMapPaths::GetWorkDir(), "config.json");
}

std::string FQVMapConfig::GetGameExePath()
{
	return GetText(GameExePath);
}

bool FQVMapConfig::GetVerboseLogging()
{
	return GetBool(VerboseLogging);
}

bool FQVMapConfig::GetFilterUnusedAssets()
{
	return GetBool(FilterUnusedAssets);
}

bool FQVMapConfig::GetImportExternalAssets()
{
	return GetBool(ImportExternalAssets);
}

bool FQVMapConfig::GetAlwaysExportAsMod()
{
	return GetBool(AlwaysExportAsMod);
}

bool FQVMapConfig::GetUseDemoAppId()
{
	return GetBool(UseDemoAppId);
}

bool FQVMapConfig::GetRuntimeConsole()
{
	return GetBool(RuntimeConsole);
}

bool FQVMapConfig::GetShowSetupOnStartup()
{
	return GetBool(ShowSetupOnStartup);
}

std::string FQVMapConfig::GetNewModAuthor()
{
	return GetText(NewModAuthor);
}

std::string FQVMapConfig::GetMapTemplatePath()
{
	return GetText(MapTemplatePath);
}

void FQVMapConfig::SetGameExePath(std::string_view Value)
{
	Set(GameExePath, Value);
}

void FQVMapConfig::SetVerboseLogging(bool bValue)
{
	Set(VerboseLogging, bValue);
}

void FQVMapConfig::SetFilterUnusedAssets(bool bValue)
{
	Set(FilterUnusedAssets, bValue);
}

void FQVMapConfig::SetImportExternalAssets(bool bValue)
{
	Set(ImportExternalAssets, bValue);
}

void FQVMapConfig::SetAlwaysExportAsMod(bool bValue)
{
	Set(AlwaysExportAsMod, bValue);
}

void FQVMapConfig::SetUseDemoAppId(bool bValue)
{
	Set(UseDemoAppId, bValue);
}

void FQVMapConfig::SetRuntimeConsole(bool bValue)
{
	Set(RuntimeConsole, bValue);
}

void FQVMapConfig::SetShowSetupOnStartup(bool bValue)
{
	Set(ShowSetupOnStartup, bValue);
}

void FQVMapConfig::SetNewModAuthor(std::string_view Value)
{
	Set(NewModAuthor, Value);
}

void FQVMapConfig::SetMapTemplatePath(std::string_view Value)
{
	Set(MapTemplatePath, Value);
}

void FQVMapConfig::ClearGameExePath()
{
	bool bSaved = false;
	if (RemoveKey(GameExePath, bSaved))
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Game exe path cleared");
	}
}

std::string FQVMapConfig::PickGameExe()
{
	IQVDialogs& Dialogs = *FQVEngine::Get().Dialogs;
	if (!Dialogs.HasDesktop())
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: Desktop platform not available");
		return {};
	}
	const std::optional<std::string> Choice =
		Dialogs.OpenFileDialog("Select Game Executable", "Executable Files (*.exe)|*.exe");
	if (!Choice.has_value() || Choice->empty())
	{
		return {};
	}
	SetGameExePath(*Choice);
	return *Choice;
}

std::span<const FQVMapSetting> FQVMapConfig::GetSettings()
{
	return AllSettings;
}

const FQVMapSetting* FQVMapConfig::FindSetting(std::string_view Key)
{
	for (const FQVMapSetting& Setting : AllSettings)
	{
		if (Setting.Key == Key)
		{
			return &Setting;
		}
	}
	return nullptr;
}

FQVJson FQVMapConfig::Get(const FQVMapSetting& Setting)
{
	const FQVJson Config = Load();
	if (!Config.Has(Setting.Key))
	{
		return Setting.Default();
	}
	return Setting.bIsBool ? FQVJson(Config.GetBool(Setting.Key)) : FQVJson(Config.GetString(Setting.Key));
}

bool FQVMapConfig::IsSet(const FQVMapSetting& Setting)
{
	return Load().Has(Setting.Key);
}

bool FQVMapConfig::Set(const FQVMapSetting& Setting, const FQVJson& Value)
{
	FQVJson Config = Load();
	Config.Set(Setting.Key, Value);
	const bool bSaved = Save(Config);
	const std::string Text = Setting.bIsBool ? std::string(FQVString::BoolWord(*Value.AsBool())) : *Value.AsString();
	QVLog(EQVLogVerbosity::Log, "QVMap: %s set to: %s", Setting.LogName, Text);
	return bSaved;
}

bool FQVMapConfig::Reset(const FQVMapSetting& Setting)
{
	bool bSaved = false;
	if (RemoveKey(Setting, bSaved))
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: %s reset to its default", Setting.LogName);
	}
	return bSaved;
}
