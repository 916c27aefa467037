// SPDX-License-Identifier: MIT
#pragma once

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

/** The plugin manager. Any thread. */
class IQVPlugins
{
public:
	virtual ~IQVPlugins() = default;

	/** A discovered plugin by name, ignoring case, enabled or not. */
	virtual std::optional<FQVPluginInfo> FindPlugin(std::string_view Name) const = 0;
};
