// SPDX-License-Identifier: MIT
#pragma once

#include "Content/QVMapDependencyAnalyzer.h"
#include "Export/QVMapCookedAnalysis.h"
#include "Export/QVMapProgress.h"

#include <cstdint>
#include <string>

/** What one pack gives back. */
struct FQVPakResult
{
	/** True only when the pak exists and the tool returned 0. */
	bool bSuccess = false;
	/** Empty on failure. */
	std::string PakPath;
	/** All that the tool wrote. */
	std::string Output;
	std::string ErrorMessage;
	std::int64_t PakSizeBytes = 0;
	FQVCookedAnalysis Analysis;
	/** Lines of the response file, the manifest's included. */
	std::int32_t FilesPacked = 0;
	/** Files that the filter dropped. */
	std::int32_t FilesSkipped = 0;
	bool bFilterUnusedActive = false;
	/** Distinct base names among the map files. */
	std::int32_t MapFiles = 0;
	/** Files whose base name is not that of a map. */
	std::int32_t PayloadFiles = 0;
	/** Of these, the shader archives. */
	std::int32_t ShaderArchives = 0;
};

/** From a cooked directory to a pak, through the engine's pak tool. Blocks the calling thread; any thread. */
struct FQVMapPacker
{
	/** UsedPackages may be empty: then nothing is filtered, whatever the settings say. */
	static FQVPakResult CreatePak(const std::string& PluginName, const std::string& CookedDir,
		const std::string& ManifestPath, const std::string& PakPath, const FQVNameSet& UsedPackages,
		const FQVCookProgress& Progress);

	/** Writes the list of what goes into the pak; its path, or empty if it could not be written. Fills the counters. */
	static std::string GenerateResponseFile(const std::string& PluginName, const std::string& CookedDir,
		const std::string& ManifestPath, const FQVNameSet& UsedPackages, FQVPakResult& Result);
};
