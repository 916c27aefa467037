// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVAssetRegistry.h"

#include <string>
#include <string_view>
#include <vector>

/** Where both walks over a mod's references begin. Game thread. */
struct FQVModMaps
{
	/** The mod's content, brought up to date in the registry; false if the folder is not there. */
	static bool ScanContent(std::string_view PluginName, std::string& OutContentDir);
	/** The mod's maps, from the registry. */
	static std::vector<FQVAssetData> Find(std::string_view PluginName);
};
