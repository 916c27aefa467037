// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/** One plugin descriptor that was set aside. */
struct FQVDisabledPlugin
{
	/** `<PluginDir>/<Name>.uplugin.disabled` */
	std::string DisabledPath;
	/** `<PluginDir>/<Name>.uplugin` */
	std::string OriginalPath;
};

/**
 * Sets plugin descriptors aside so that a child process does not find the plugins, and owns the way back: whatever is
 * still set aside when the guard goes is moved back. The list is in memory only.
 */
class FQVPluginDisableGuard
{
public:
	FQVPluginDisableGuard() = default;
	FQVPluginDisableGuard(const FQVPluginDisableGuard&) = delete;
	FQVPluginDisableGuard& operator=(const FQVPluginDisableGuard&) = delete;
	~FQVPluginDisableGuard();

	/** Moves the descriptor of one plugin to its disabled name; false if that failed. */
	bool Disable(const std::string& PluginDir, const std::string& PluginName);

	/**
	 * Moves all of them back. False if a move failed; a descriptor that is no longer there is no failure. The list is
	 * empty afterwards, so that a pair that failed is not tried again.
	 */
	bool RestoreDisabledPlugins();

private:
	std::vector<FQVDisabledPlugin> Disabled;
};
