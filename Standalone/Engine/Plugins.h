// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVPlugins.h"

#include <mutex>
#include <vector>

namespace QVStandalone
{
/**
 * The plugins of project and engine, found on disk at the first question and remembered, as an editor remembers those
 * that it started with. Where both have one of a name, the project's counts.
 */
class FPlugins : public IQVPlugins
{
public:
	FPlugins(std::string InProjectFile, std::string InEngineDir);

	std::optional<FQVPluginInfo> FindPlugin(std::string_view Name) const override;
	/** All of them, the project's first. */
	const std::vector<FQVPluginInfo>& GetDiscovered() const;

private:
	const std::string ProjectFile;
	const std::string EngineDir;
	mutable std::once_flag Once;
	mutable std::vector<FQVPluginInfo> Discovered;
};
} // namespace QVStandalone
