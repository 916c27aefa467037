// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapImportResult.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/** Steps of undoing an import, on files alone. What is done is on the disk when they return. Any thread. */
struct FQVMapImportUndo
{
	/** A disk that fails to tell of a file for a moment must not pass for one that has none: then its folder is asked.
	 */
	static bool IsThere(const std::string& File);
	/** Gives those that could not be put back, for instance since what somebody else wrote could not be kept. */
	static std::vector<const FQVImportBackup*> PutBack(std::span<const FQVImportBackup* const> Backups);
	/** Gives the files that could not be deleted. */
	static std::vector<std::string> DeleteCopies(std::span<const FQVImportedPackage> Copies);
	/** When all is back in its place. A deletion that is cut off is taken up again as long as the manifest is there;
	 * without it, what is left of the folder does no harm. */
	static void DeleteJournal(std::string_view PluginName);
};
