// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVText.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/** What the toolkit asks of a plugin that the engine knows. */
struct FQVPluginInfo
{
	std::string Name;
	/** Folder of the plugin. */
	std::string BaseDir;
	std::string DescriptorPath;
	/** `VersionName` of the descriptor; may be empty. */
	std::string VersionName;
	bool bEnabled = false;
	bool bCanContainContent = false;
};

/** A descriptor, as far as it is not what the engine writes by itself. It has no modules. */
struct FQVPluginDescriptor
{
	std::int32_t Version = 1;
	std::string VersionName;
	std::string FriendlyName;
	std::string Description;
	std::string Category;
	std::string CreatedBy;
	bool bCanContainContent = false;
};

/** A plugin that is to be made. */
struct FQVNewPlugin
{
	/** Of the plugin and of its folder. */
	std::string Name;
	/** Full path of the folder that its folder is made in. */
	std::string Location;
	FQVPluginDescriptor Descriptor;
};

/** The plugin manager. Any thread, unless said otherwise. */
class IQVPlugins
{
public:
	virtual ~IQVPlugins() = default;

	/** A discovered plugin by name, ignoring case, enabled or not. */
	virtual std::optional<FQVPluginInfo> FindPlugin(std::string_view Name) const = 0;
	/** Whether a new plugin may bear the name and lie in that folder; on false, why not. */
	virtual bool ValidateNewPluginNameAndLocation(
		std::string_view Name, std::string_view Location, FQVText& OutFailReason) const = 0;
	/**
	 * Game thread. Makes the plugin's folder, its descriptor and, if it can contain content, its Content folder; mounts
	 * it, and has the asset registry scan it before it returns. The project file stays as it is. Nothing on failure;
	 * the reason may be empty.
	 */
	virtual std::optional<FQVPluginInfo> CreateAndLoadNewPlugin(const FQVNewPlugin& Plugin, FQVText& OutFailReason) = 0;
};
