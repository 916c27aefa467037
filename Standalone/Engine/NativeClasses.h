// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace QVStandalone
{
/**
 * What is known of classes of code, whose modules are never loaded: a short table of those of the engine that a level
 * holds most, and those of the game's bridge plugin that the checks ask for. Class paths; names heed no case.
 */
struct FNativeClasses
{
	static constexpr std::string_view BridgePlugin = "QUARVEL";
	static constexpr std::string_view LevelScriptActor = "/Script/Engine.LevelScriptActor";
	static constexpr std::string_view Brush = "/Script/Engine.Brush";

	static bool IsKnown(std::string_view ClassPath);
	/** Empty for one that is not known, and where the table ends. */
	static std::string_view ParentOf(std::string_view ClassPath);
	/** The class itself declares an enum property that can have that value. */
	static bool DeclaresEnum(std::string_view ClassPath, std::string_view Property, std::string_view Enumerator);
};
} // namespace QVStandalone
