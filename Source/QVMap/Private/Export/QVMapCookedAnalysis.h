// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/** Whose a cooked file is, by its path below the cooked directory alone. */
enum class ECookedCategory
{
	Plugin = 0,
	BaseGame = 1,
	Engine = 2,
	Other = 3
};

/** One cooked file during the analysis. */
struct FQVCookedFile
{
	/** As the walk gave it. */
	std::string FullPath;
	/** Below the cooked directory, forward slashes. */
	std::string RelativePath;
	std::string FileName;
	std::int64_t SizeBytes = 0;
	ECookedCategory Category = ECookedCategory::Other;
};

/** What the analysis leaves behind. */
struct FQVCookedAnalysis
{
	std::int32_t PluginFiles = 0;
	std::int32_t BaseGameFiles = 0;
	std::int32_t EngineFiles = 0;
	std::int32_t OtherFiles = 0;
	std::int64_t PluginBytes = 0;
	std::int64_t BaseGameBytes = 0;
	std::int64_t EngineBytes = 0;
	std::int64_t OtherBytes = 0;
	/** The first 50 files of the base game, in the order of the walk. */
	std::vector<std::string> BaseGameSample;
};

/** Tells, in the log, what a cook produced. It informs and decides nothing. Any thread. */
struct FQVMapCookedContents
{
	static ECookedCategory Classify(std::string_view RelativePath, std::string_view PluginName);
	static void AnalyzeCookedContents(
		const std::string& CookedDir, const std::string& PluginName, bool bVerbose, FQVCookedAnalysis& OutAnalysis);
};
