// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVNameSet.h"

#include <cstdint>
#include <string>
#include <string_view>

/** What the maps of a mod use. */
struct FQVDependencyResult
{
	/** The walk ran to its end. */
	bool bSuccess = false;
	/** Long package names such as `/Cave/Maps/Hall`, in the order in which they were met. */
	FQVNameSet UsedPackages;
	std::int32_t MapCount = 0;
	/** Redirectors followed to a target. */
	std::int32_t RedirectorsResolved = 0;
	std::string ErrorMessage;
};

/** Which cooked files the maps of a mod use. */
struct FQVMapDependencyAnalyzer
{
	/** Game thread. Walks the references of all maps of a mod, whether the game or only the editor needs them. */
	static FQVDependencyResult AnalyzeDependencies(std::string_view PluginName);

	/**
	 * Game thread. The packages that an export of the mod is to keep: empty, which means all, if unused assets are not
	 * filtered out or the analysis fails.
	 */
	static FQVNameSet GatherUsedPackages(std::string_view PluginName);

	/**
	 * Any thread. Whether a cooked file, given below the cooked directory, stays in the pak: a file of a package if the
	 * package is used, any other file always.
	 */
	static bool ShouldIncludeFile(
		std::string_view RelativePath, std::string_view PluginName, const FQVNameSet& UsedPackages);

	/** Any thread. The package that a cooked file belongs to: `Maps/Hall.uexp` of Cave gives `/Cave/Maps/Hall`. */
	static FQVName MakePackageStem(std::string_view Path, std::string_view PluginName);
};
