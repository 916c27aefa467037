// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapExportResult.h"

#include <functional>
#include <string>

/** One run of the flow that was asked for. A value: the flow keeps copies wherever it goes on later. */
struct FQVPlayRequest
{
	std::string ModName;
	/** Short name, `Hall`. */
	std::string MapName;
	/** `/Game/Cave/Maps/Hall`: the map that the game starts with. */
	std::string GamePath;
	/** The game is started when the pak is done. */
	bool bLaunch = false;
	/** Called on the game thread after a good export that the user did not stop; may be empty. */
	std::function<void(const FQVExportResult& Result)> OnComplete;
};
