// SPDX-License-Identifier: MIT
#pragma once

#include "HandOff/QVMapGameLaunch.h"
#include "HandOff/QVMapPlayRequest.h"

#include <string>

/** From the user's wish to play a map, or to publish it, to the game that has it. Game thread. */
struct FQVMapPlaytest : FQVMapGameLaunch
{
	/** Packs the open map's mod and starts the game with it. */
	static void PlayOpenMap();
	/** Mod, short name and game path of the open map. False, and the user has been told why. */
	static bool ResolveOpenMap(std::string& OutModName, std::string& OutMapName, std::string& OutGamePath);
	/**
	 * Takes a map through all gates, asking the user where one stands in the way, and exports it in the background.
	 * Returns when a gate has stopped the run, or with the export, or a build of the base release, under way. A second
	 * run meanwhile is a run of its own.
	 */
	static void RunExport(const FQVPlayRequest& Request);
};
