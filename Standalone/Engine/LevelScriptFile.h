// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/OpenPackage.h"
#include "Standalone/Formats/Package/LevelReader.h"

#include <memory>
#include <string>
#include <vector>

namespace QVStandalone
{
/** A map's file, read for its Level Blueprint. */
struct FLevelScriptFile
{
	std::unique_ptr<FOpenPackage> Package;
	QVFormats::FMapWorld Map;

	/** The error begins with the file's name. */
	static QVFormats::TResult<FLevelScriptFile> Read(std::string_view PackageName, const std::string& File);

	/** `/Cave/Maps/Hall.Hall:PersistentLevel.Hall`; empty if the blueprint is not in this file. */
	std::string GetBlueprintPath() const;
	/** Exports: the blueprint's graphs of all kinds, in the file's order. */
	std::vector<std::size_t> GetGraphs() const;
	/** Exports: what lies in a graph itself. */
	std::vector<std::size_t> GetNodes(std::size_t Graph) const;
	std::string GetName(std::size_t Export) const;
	/** Names: what the class of the script declares. */
	std::vector<std::string> GetFunctions() const;
	/** Names, sorted: the actors in this file but for the script's own. */
	std::vector<std::string> GetActors() const;
};
} // namespace QVStandalone
