// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVJson.h"

#include <span>
#include <string>
#include <string_view>

/** One key of the settings file. */
struct FQVMapSetting
{
	std::string_view Key;
	/** Meaning of the key for a person. */
	std::string_view Meaning;
	/** How the log calls it. */
	std::string_view LogName;
	bool bIsBool = false;
	bool bDefault = false;
	std::string_view DefaultText;

	FQVJson Default() const { return bIsBool ? FQVJson(bDefault) : FQVJson(DefaultText); }
};

/**
 * The user's settings: one flat JSON object in `config.json` of the work folder, read anew at each access so that a
 * hand edit takes effect at once. Unknown keys survive a save. Reads fall back to defaults and never fail. Getters on
 * any thread, setters on the game thread.
 */
struct FQVMapConfig
{
	static std::string GetConfigPath();

	static std::string GetGameExePath();
	static bool GetVerboseLogging();
	static bool GetFilterUnusedAssets();
	static bool GetImportExternalAssets();
	static bool GetAlwaysExportAsMod();
	static bool GetUseDemoAppId();
	static bool GetRuntimeConsole();
	static bool GetShowSetupOnStartup();
	static std::string GetNewModAuthor();
	static std::string GetMapTemplatePath();

	static void SetGameExePath(std::string_view Value);
	static void SetVerboseLogging(bool bValue);
	static void SetFilterUnusedAssets(bool bValue);
	static void SetImportExternalAssets(bool bValue);
	static void SetAlwaysExportAsMod(bool bValue);
	static void SetUseDemoAppId(bool bValue);
	static void SetRuntimeConsole(bool bValue);
	static void SetShowSetupOnStartup(bool bValue);
	static void SetNewModAuthor(std::string_view Value);
	static void SetMapTemplatePath(std::string_view Value);

	/** Removes the key, if it is there. */
	static void ClearGameExePath();
	/** Asks for the game's executable and stores the choice; empty when nothing was chosen. */
	static std::string PickGameExe();

	/** All settings, for whoever lists or sets them by key. */
	static std::span<const FQVMapSetting> GetSettings();
	static const FQVMapSetting* FindSetting(std::string_view Key);
	/** The value in force, as the getters give it. */
	static FQVJson Get(const FQVMapSetting& Setting);
	/** Whether the file has the key, so that the default is not in force. */
	static bool IsSet(const FQVMapSetting& Setting);
	/** Stores a value of the setting's type; false if the file could not be written. */
	static bool Set(const FQVMapSetting& Setting, const FQVJson& Value);
	/** Back to the default; false if the file could not be written. */
	static bool Reset(const FQVMapSetting& Setting);
};
