// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapImportResult.h"

#include <string_view>

/**
 * The record of an import on the disk, from which it can be undone whatever happens: a folder for each mod with the
 * files as they were and the manifest. It is there as long as an import has not been undone. No file of the user's is
 * touched before the manifest is written.
 */
struct FQVMapImportJournal
{
	static constexpr std::int32_t SchemaVersion = 1;

	/** A file lies where a mod's copies do; after a pack there should be none. */
	static bool HasCopies(std::string_view PluginName);
	/** The mods that have a journal, sorted. */
	static std::vector<std::string> ListPlugins();

	static bool WriteImportManifest(std::string_view PluginName, const FQVImportResult& Result);
	/** False, with a warning unless there is none, if the manifest cannot be relied on; then nothing of it counts. What
	 * it names lies within the project; a project that has been moved since is followed. */
	static bool ReadImportManifest(std::string_view PluginName, FQVImportResult& OutResult);

	/** Notes what the import has made of the files, so that a later change by somebody else is known for one. */
	static void WriteStamps(std::string_view PluginName, const FQVImportResult& Result);
};
