// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVName.h"

#include <string_view>
#include <unordered_set>

/** Long package names that the maps of a mod use. */
using FQVPackageSet = std::unordered_set<FQVName>;

/** Which cooked files the maps of a mod use. */
struct FQVMapDependencyAnalyzer
{
	/**
	 * Any thread. Whether a cooked file, given below the cooked directory, stays in the pak: a file of a package if the
	 * package is used, any other file always.
	 */
	static bool ShouldIncludeFile(
		std::string_view RelativePath, std::string_view PluginName, const FQVPackageSet& UsedPackages);

	/** Any thread. The package that a cooked file belongs to: `Maps/Hall.uexp` of Cave gives `/Cave/Maps/Hall`. */
	static FQVName MakePackageStem(std::string_view Path, std::string_view PluginName);
};
