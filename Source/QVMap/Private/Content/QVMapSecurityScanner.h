// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVNameSet.h"

#include <string>
#include <string_view>
#include <vector>

class IQVWorld;

/** One thing for which the game would refuse the map. */
struct FQVSecurityViolation
{
	/** Categories; compared by callers, and part of what a finding is selected by. */
	static constexpr std::string_view UnsupportedAsset = "Unsupported Asset";
	static constexpr std::string_view LevelBlueprint = "Level Blueprint";
	static constexpr std::string_view UntrustedActor = "Untrusted Actor";
	static constexpr std::string_view WorldPartition = "World Partition";

	std::string Category;
	/** The sentence for the user. */
	std::string Detail;
	/** StripLevelBlueprint removes it. */
	bool bAutoFixable = false;
};

struct FQVSecurityScanResult
{
	/** The plugin may be packed as a map. */
	bool bIsMap = true;
	/** In the order in which they were found. */
	std::vector<FQVSecurityViolation> Violations;
};

/** What a map may hold and may refer to. Game thread, unless said otherwise. */
struct FQVMapSecurityScanner
{
	/**
	 * Assets of the plugin, and level blueprint, actors and World Partition of the world; without a world only the
	 * assets are judged. ReferencedPackages: assets of other packages are passed over; empty: all are judged.
	 */
	static FQVSecurityScanResult ScanForMapEligibility(
		std::string_view PluginName, const IQVWorld* World, const FQVNameSet& ReferencedPackages);

	/**
	 * Takes all nodes out of the level's blueprint and compiles it, as one step that can be undone; saves nothing. True
	 * also when there was nothing to do; false without a world or level, or when the engine cannot edit blueprints,
	 * and then nothing has changed.
	 */
	static bool StripLevelBlueprint(const IQVWorld* World);

	/** Any thread. Class paths. */
	static const FQVNameSet& GetAllowedAssetClasses();
	/** Any thread. Whether every game has what lies below this path: the engine's content, and the base game's. */
	static bool IsTrustedPackagePath(std::string_view PackagePath);
};
