// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVName.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/** Saves packages of the editor to their own places. Game thread. */
struct FQVMapPackageSaver
{
	/** A package that may be in memory only. True if it is on disk now. */
	static bool SaveReferencedPackage(FQVName Package);
	/** Whatever of a mod is loaded and has unsaved changes; a failure is logged and stops nothing. */
	static void SaveDirtyPluginPackages(std::string_view PluginName);
	/** OutFile: full path of what was written. OutError: for the log or the end of a sentence. */
	static bool SavePackageToDisk(FQVName Package, std::string& OutFile, std::string& OutError);
	/** Many of them, several at once where the engine can; OutError, empty before, is of the first that failed.
	 * Adds to OutFiles for each; of one that was not saved, an empty text. */
	static bool SavePackagesToDisk(
		std::span<const FQVName> Packages, std::vector<std::string>& OutFiles, std::string& OutError);
};
