// SPDX-License-Identifier: MIT
#pragma once

#include "Content/QVMapDependencyAnalyzer.h"
#include "Export/QVMapExportResult.h"
#include "Export/QVMapProgress.h"
#include "Workspace/QVMapScanner.h"

#include <cstdint>
#include <string>
#include <vector>

/** Carries a mod from its source to a finished pak: check, scan, manifest, cook, pack, log. */
struct FQVMapPipeline
{
	/**
	 * Blocks the calling thread, which is not the game thread, for the whole cook and pack, and touches no object of
	 * the editor. Always leaves a record of the run behind. UsedPackages may be empty; StartMap too.
	 */
	static FQVExportResult ExportMod(const std::string& ModName, std::int32_t Version, const FQVNameSet& UsedPackages,
		const FQVExportProgress& Progress, const std::string& StartMap);

	/**
	 * The long package name that reaches the map's file. On false OutPath holds the first candidate all the same;
	 * OutTried, if given, holds all candidates.
	 */
	static bool ResolveCookPath(const FQVMapInfo& Map, std::string& OutPath, std::vector<std::string>* OutTried);

	/** The text log of a finished export; its path, or empty if it could not be written. */
	static std::string WriteExportLog(const std::string& ModName, std::int32_t Version, const std::string& PakPath,
		const std::vector<FQVMapInfo>& Maps, const std::string& CookLog, const std::string& PakLog);
};
