// SPDX-License-Identifier: MIT
#pragma once

#include "Tests/Support/TempFolder.h"

#include <string>
#include <string_view>
#include <vector>

namespace QVTest
{
/**
 * A mapping project on disk: MapWork.uproject, the game's bridge plugin, version 1.4, and beside the project an engine
 * 5.4.4 whose tools play a script (see TestChild.cpp). No mods and no base release until they are added. Paths are
 * full, UTF-8, with forward slashes.
 */
class FTestProject
{
public:
	FTestProject();

	std::string ProjectDir() const { return At(""); }
	std::string ProjectFile() const { return At("MapWork.uproject"); }
	std::string EngineDir() const;
	/** The full path of what lies in the project. */
	std::string At(std::string_view Relative) const;

	/** A file of the project, its folders with it. */
	void Write(std::string_view Relative, std::string_view Bytes) const;
	std::string Read(std::string_view Relative) const;
	bool Exists(std::string_view Relative) const;
	void MakeFolder(std::string_view Relative) const;
	void Remove(std::string_view Relative) const;
	/** Paths of all files below a folder of the project, sorted. */
	std::vector<std::string> FilesIn(std::string_view Relative) const;

	/** A content plugin with its descriptor and maps that nothing is missing in; names as "Maps/Hall". */
	void AddMod(std::string_view Name, const std::vector<std::string_view>& Maps) const;
	/** The map that new ones begin as, in the bridge plugin; without it a check has warnings. */
	void AddTemplate() const;
	/** A release that passes the check, with its stamp. */
	void AddBaseRelease() const;
	/** The bytes of a registry that lists so many packages. */
	static std::string RegistryBytes(int Packages);
	static constexpr std::string_view DevelopmentRegistry =
		"Releases/1.0/Windows/Metadata/DevelopmentAssetRegistry.bin";

	/** What the tool does when it is started. */
	void ScriptEditorCmd(const std::vector<std::string>& Commands) const;
	void ScriptUnrealPak(const std::vector<std::string>& Commands) const;

	/** The text with the project's and the engine's folder as "<Project>" and "<Engine>". */
	std::string Mask(std::string Text) const;

private:
	FTempFolder Folder;

	void AddMap(std::string_view Plugin, std::string_view Map) const;
	void Script(std::string_view Tool, const std::vector<std::string>& Commands) const;
};
} // namespace QVTest
