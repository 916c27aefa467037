// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVPlugins.h"

#include <functional>
#include <list>
#include <mutex>
#include <vector>

namespace QVStandalone
{
/**
 * The plugins of project and engine, found on disk at the first question and remembered, as an editor remembers those
 * that it started with; one that is made here comes after them. Where both have one of a name, the project's counts.
 */
class FPlugins : public IQVPlugins
{
public:
	FPlugins(std::string InProjectFile, std::string InEngineDir);

	std::optional<FQVPluginInfo> FindPlugin(std::string_view Name) const override;
	bool ValidateNewPluginNameAndLocation(
		std::string_view Name, std::string_view Location, FQVText& OutFailReason) const override;
	std::optional<FQVPluginInfo> CreateAndLoadNewPlugin(const FQVNewPlugin& Plugin, FQVText& OutFailReason) override;
	/** All of them, the project's first. Stays as it is, whatever is made later. */
	const std::vector<FQVPluginInfo>& GetDiscovered() const;

	/** Called with a new plugin, on the game thread. */
	std::function<void(const FQVPluginInfo&)> OnMounted;

private:
	const std::string ProjectFile;
	const std::string EngineDir;
	mutable std::mutex Lock;
	/** One for each plugin that was made: who reads on another thread keeps the one that it began with. */
	mutable std::list<std::vector<FQVPluginInfo>> Discovered;
};
} // namespace QVStandalone
