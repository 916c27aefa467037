// SPDX-License-Identifier: MIT
#pragma once

#include "Workspace/QVMapScanner.h"

#include <cstdint>
#include <string>
#include <vector>

/** What tells the game which maps a pak holds, under which names, and where to start. */
struct FQVMapManifest
{
	/** Writes `<Mod>_manifest.json` into the temp folder, replacing an earlier one; false, logged, if that failed. */
	static bool GenerateManifest(const std::string& ModName, const std::vector<FQVMapInfo>& Maps, std::int32_t Version,
		const std::string& UpluginPath, std::string& OutManifestPath, const std::string& StartMap);
};
