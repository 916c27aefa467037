// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVToolMenu.h"
#include "Export/QVMapBaseReleaseBuild.h"

/** The toolkit's place in the editor's toolbar: icon, Play, Workshop, and the menu of settings. Game thread. */
struct FQVMapToolbar : FQVMapBaseReleaseBuild
{
	static constexpr std::string_view TextNamespace = "FQVMapToolbar";

	/** Puts the toolbar into the level editor's, for the life of the program. */
	static void Register();
	/** All of it, from left to right; always enabled. */
	static std::vector<FQVToolbarControl> BuildToolbar();
	/** As the settings are at this moment. */
	static std::vector<FQVMenuEntry> BuildSettingsMenu();
	/** Looks for a newer mapping project and tells the user what was found. */
	static void CheckForUpdate();
	/** Builds the base release; asks first if there is one that is good. */
	static void BuildBaseRelease();
};
