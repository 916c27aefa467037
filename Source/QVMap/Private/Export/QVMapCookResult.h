// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/** What a cook, or a base release build, gives back. */
struct FQVCookResult
{
	bool bSuccess = false;
	/** Folder of the plugin's cooked files as it was probed, or of the release; empty on failure. */
	std::string CookedDir;
	/** All that the child wrote, also when it failed. */
	std::string Output;
	/** Empty on success. */
	std::string ErrorMessage;
	/** `CookedDir` up to the folder named after the project; empty if there is none. */
	std::string StagedRoot;
};
