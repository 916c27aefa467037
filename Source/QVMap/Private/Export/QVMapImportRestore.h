// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapImportResult.h"

#include <string>
#include <string_view>
#include <vector>

/** Puts a project back as it was before an import. Game thread. */
struct FQVMapImportRestore
{
	/** After a pack, in the run that imported. Whatever could not be put back stays in the journal for the next
	 * recovery; then OutError says so for the user. */
	static void RestoreAfterPacking(std::string_view PluginName, const FQVImportResult& Result, std::string& OutError);

	/** Undoes what runs left that did not come to their end; on files alone. Adds the mods that were put back. False if
	 * one could not be. A mod that another run has at this moment is left alone. */
	static bool RecoverInterruptedImports(std::vector<std::string>& OutRecovered);
	/** The same for one mod, whose lock the caller holds. */
	static bool RecoverInterruptedImport(std::string_view PluginName, std::vector<std::string>& OutRecovered);
};
