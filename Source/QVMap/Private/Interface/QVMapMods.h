// SPDX-License-Identifier: MIT
#pragma once

#include "Interface/QVMenuEntry.h"
#include "Workspace/QVMapScanner.h"

/** The menu that switches maps, and the list of maps behind it. Game thread. */
struct FQVMapMods
{
	/** What the last scan found; scans again if that is asked for or if something has changed since. */
	static FQVScanResult GetMods(bool bForceRefresh);
	/** The next question scans again. */
	static void InvalidateCache();
	/** An entry for each map, in the scanner's order; the maps of a mod that has several in a submenu. */
	static std::vector<FQVMenuEntry> BuildMenu();
	/** Asks to save what is open, then opens a map by its package name, `/Cave/Maps/Hall`. */
	static bool OpenMap(std::string_view ModName, std::string_view MapPath);
};
