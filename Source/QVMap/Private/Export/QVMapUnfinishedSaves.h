// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapImportResult.h"

#include <string_view>

/** Files that saves which were cut off have left beside their targets: `Hall.umap.4711-3.tmp`. */
struct FQVMapUnfinishedSaves
{
	/** Those beside the originals and among the copies of an import that nobody is at any more. */
	static void Delete(std::string_view PluginName, const FQVImportResult& Import);
};
