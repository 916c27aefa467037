// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapCookResult.h"
#include "Export/QVMapProgress.h"

#include <string>
#include <string_view>
#include <vector>

/** The engine's cook commandlet as a hidden child process: for one mod, and for the base release it is based on. */
struct FQVMapCooker
{
	/** Whether a mod may bear the name; on false OutError holds the sentence for the user. Any thread. */
	static bool ValidatePluginName(std::string_view Name, std::string& OutError);

	/**
	 * Cooks a mod as downloadable content against the base release. MapPaths are the long package names of its maps, at
	 * least one. Blocks the calling thread for the whole cook; needs the game thread to be free for a moment, unless it
	 * is called there.
	 */
	static FQVCookResult CookDLC(
		const std::string& PluginName, const std::vector<std::string>& MapPaths, const FQVCookProgress& Progress);

	/**
	 * Builds the base release anew. Sets the descriptors of all mods aside while the cook runs, and puts them back on
	 * every way out. Blocks like CookDLC; `CookedDir` is the release's folder.
	 */
	static FQVCookResult BuildBaseRelease(const FQVCookProgress& Progress);
};
