// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace QVCli
{
class FConsole;

/** A map that a typed word may mean. */
struct FMapChoice
{
	std::string Mod;
	/** `/Cave/Maps/Hall`; empty: the mod alone. */
	std::string Map;
};

/** Maps that bear the name, that package or game path, or whose mod does, ignoring case; all maps for an empty name. */
std::vector<FMapChoice> FindMaps(std::string_view Name);
/** It is not clear which of several is meant; the hints name this verb. */
void TellChoice(
	FConsole& Console, std::string_view Verb, std::string_view Name, const std::vector<FMapChoice>& Candidates);
} // namespace QVCli
