// SPDX-License-Identifier: MIT
#pragma once

#include "Workspace/QVMapBaseReleaseStatus.h"

#include <string>
#include <string_view>

/**
 * The one place that knows where everything lies. Paths are full, with forward slashes and no slash at the end. Nothing
 * is cached: each call asks the engine for the project and engine folders again. Any thread.
 */
struct FQVMapPaths
{
	/** The word for the one base release that the toolkit uses. */
	static constexpr std::string_view BaseReleaseVersion = "1.0";

	static std::string GetProjectDir();
	/** Base name of the project's `.uproject` file. */
	static std::string GetProjectName();
	static std::string GetProjectFilePath();
	static std::string GetProjectContentDir();
	static std::string GetPluginsDir();
	static std::string GetReleasesDir();
	static std::string GetBaseReleaseDir();
	/** The base release's development asset registry. */
	static std::string GetDevelopmentRegistryPath();
	/** The base release's shipping asset registry. */
	static std::string GetRuntimeRegistryPath();
	static std::string_view GetCookPlatformName();
	static std::string GetCookRoot();
	static std::string GetWorkDir();
	static std::string GetLogsDir();
	static std::string GetOutputDir();
	static std::string GetTempDir();
	static std::string GetEditorCmdPath();
	static std::string GetUnrealPakPath();

	/** Where a cook left a plugin's content; when nowhere, the first place that it would be looked for. */
	static std::string FindCookedPluginDir(std::string_view PluginName);

	/** True if the folder exists or could be made. The one way in which a folder gets made. */
	static bool EnsureDirectory(std::string_view Path);

	/**
	 * Whether a cook can be based on the base release. Loads its registry, unless path, size and time stamp are those
	 * of the last load: the load happens under a process-wide lock, so that callers at the same time load it once.
	 */
	static bool CheckBaseRelease(FQVBaseReleaseStatus& OutStatus);
	static bool IsBaseReleaseValid();
};
