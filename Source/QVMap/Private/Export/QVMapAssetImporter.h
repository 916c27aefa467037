// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapImportResult.h"

#include <string_view>

/**
 * Brings what a mod uses from elsewhere in the project into the mod, for the length of one pack: copies below the
 * folder
 * `_QVImported`, and the mod's own packages made to refer to them. What it changes is recorded in the import journal
 * first. Game thread.
 */
struct FQVMapAssetImporter
{
	/** Success with empty lists: there was nothing to do. After a failure the project is as it was, or the journal is
	 * there for the next recovery. */
	static FQVImportResult BringInExternalAssets(std::string_view PluginName);
};
