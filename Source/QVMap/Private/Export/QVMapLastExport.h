// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVDateTime.h"
#include "Export/QVMapCookedAnalysis.h"

#include <cstdint>
#include <string>
#include <vector>

/** The trace of the latest run of the export, whether it succeeded or at which stage it stopped. */
struct FQVLastExportRecord
{
	std::int32_t SchemaVersion = 1;
	std::string PluginName;
	std::int32_t Version = 0;
	/** When the run started, local time. */
	FQVDateTime Timestamp;
	bool bSuccess = false;
	/** "validating", "manifest", "cooking", "packing"; empty on success. */
	std::string FailedStage;
	std::string ErrorMessage;
	std::string PakPath;
	std::int64_t PakSizeBytes = 0;
	std::string LogPath;
	std::string CookedDir;
	std::vector<std::string> MapsCooked;
	std::vector<std::string> MapsManifest;
	bool bFilterUnusedActive = false;
	std::int32_t FilesPacked = 0;
	std::int32_t FilesSkipped = 0;
	FQVCookedAnalysis Analysis;
};

/** The record's one file, `last_export.json`; each write replaces it. Any thread, unlocked: a reader that comes in
 * between finds the old file. */
struct FQVMapLastExport
{
	static constexpr std::int32_t SchemaVersion = 1;

	static std::string GetLastExportRecordPath();
	static bool WriteLastExportRecord(const FQVLastExportRecord& Record);
	/** False, and OutRecord untouched, if there is no record of this schema. */
	static bool ReadLastExportRecord(FQVLastExportRecord& OutRecord);
};
