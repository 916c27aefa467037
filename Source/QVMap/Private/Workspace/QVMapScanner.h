// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/** One map of a mod. For `Plugins/Cave/Content/Maps/Hall.umap`: */
struct FQVMapInfo
{
	/** `Hall` */
	std::string Name;
	/** `Hall.umap` */
	std::string FileName;
	/** `Maps/Hall.umap`, below the mod's `Content` */
	std::string RelativePath;
	/** `/Game/Cave/Maps/Hall`, the name in manifests and records */
	std::string GamePath;
	/** `/Cave/Maps/Hall`, the package name that the cook is given */
	std::string CookPath;
};

/** One mod: a content plugin of the project that holds at least one map. */
struct FQVModInfo
{
	std::string Name;
	std::string PluginDir;
	std::string ContentDir;
	/** Never empty; sorted by `GamePath`, ignoring case. */
	std::vector<FQVMapInfo> Maps;
};

struct FQVScanResult
{
	/** Sorted by the plugin folder's full path, ignoring case. */
	std::vector<FQVModInfo> Mods;
	std::int32_t ModCount = 0;
	/** Empty unless the Plugins folder is missing. */
	std::string ErrorMessage;

	/** The mod of that name, ignoring case, or null. */
	const FQVModInfo* Find(std::string_view Name) const;
};

/** Finds the mods of the project by looking at the disk alone, anew each time. Any thread. */
struct FQVMapScanner
{
	static FQVScanResult ScanMods();
	/** The toolkit's own plugin, or a reserved name; ignoring case. */
	static bool IsToolchainPlugin(std::string_view Name);
	/** A name that no mod may bear; ignoring case. */
	static bool IsReservedName(std::string_view Name);
};
