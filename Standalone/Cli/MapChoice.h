// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Cli/Session.h"

#include <string>

namespace QVCli
{
/** The map that a verb is to work on. */
struct FMapChoice
{
	std::string Mod;
	/** Package name, "/Cave/Maps/Hall"; empty for a mod without maps. */
	std::string Package;

	/** "Hall" */
	std::string Name() const;
	/** "/Game/Cave/Maps/Hall" */
	std::string GamePath() const { return Package.empty() ? Package : "/Game" + Package; }
};

/**
 * Turns what the user typed into a map: a map's name, package or game path, or a mod with one map; empty for the
 * project's only map. False, with the error told, if it is not clear which is meant. Verb is named in the advice.
 * A folder below Plugins that is no mod to others is a choice too, without a map, and so is a project without maps.
 */
bool ChooseMap(FSession& Session, std::string_view Verb, const std::string& Typed, FMapChoice& Out);
} // namespace QVCli
