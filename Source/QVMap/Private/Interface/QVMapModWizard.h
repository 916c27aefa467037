// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVText.h"

#include <string>
#include <string_view>

/** A map that is to be made; the texts trimmed. */
struct FQVCreateModRequest
{
	/** Of the plugin, of its folder and of its level. */
	std::string Name;
	std::string Author;
	std::string Description;
};

struct FQVCreateModResult
{
	/** The plugin and its level are there, and the level is open. */
	bool bCreated = false;
	std::string ModName;
	/** `/Cave/Maps/Cave`, once the plugin is there. */
	std::string MapPackagePath;
	/** The plugin is there but holds no map: the author has to add one. */
	bool bFolderCreated = false;
	/** For the user; empty on success. */
	FQVText ErrorMessage;
};

/** Makes new maps, each a content plugin of its own with a starter level. */
struct FQVMapModWizard
{
	/** Game thread. Asks to save what is open first: the new level takes its place. */
	static FQVCreateModResult CreateMod(const FQVCreateModRequest& Request);
	/** Whether a new map may bear the name; on false, what to tell the user. */
	static bool ValidateNewModName(std::string_view Name, FQVText& OutError);

	/** `<Plugins>/Cave/Content` */
	static std::string GetModContentDir(std::string_view Name);
	/** `<Plugins>/Cave/Cave.uplugin` */
	static std::string GetModDescriptorPath(std::string_view Name);
	/** `/Cave/Maps/Cave` */
	static std::string GetMapPackagePath(std::string_view Name);
	/** `<Plugins>/Cave/Content/Maps/Cave.umap` */
	static std::string GetMapFilePath(std::string_view Name);
};
