// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

/** Names and places of what an import makes. Any thread. */
struct FQVMapImportPaths
{
	/** Where the copies lie, below a mod's content. */
	static constexpr std::string_view CopiesFolder = "_QVImported";

	/** `/<Mod>/_QVImported<Source>` */
	static std::string MakeImportedName(std::string_view PluginName, std::string_view Source);
	static bool IsInPlugin(std::string_view PackagePath, std::string_view PluginName);

	/** Where the journals of all mods lie, and their locks. */
	static std::string GetJournalRoot();
	/** A mod's journal. */
	static std::string GetJournalFolder(std::string_view PluginName);
	static std::string GetManifestPath(std::string_view PluginName);
	/** Where a mod's copies lie. */
	static std::string GetCopiesFolder(std::string_view PluginName);
};
