// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVPackages.h"
#include "Standalone/Engine/Plugins.h"

#include <vector>

namespace QVStandalone
{
/** A root of long package names and the folder that serves it. */
struct FMountPoint
{
	/** `/Cave/` */
	std::string Root;
	/** `<Project>/Plugins/Cave/Content/` */
	std::string Folder;
};

/** Long package names over the mount points of project, engine and enabled content plugins. */
class FPackages : public IQVPackages
{
public:
	FPackages(std::string InProjectDir, std::string InEngineDir, const FPlugins& InPlugins);

	bool TryConvertLongPackageNameToFilename(
		std::string_view PackageName, std::string& OutFilename, std::string_view Extension) const override;
	/** `/Game` first, then `/Engine`, then the plugins. */
	std::vector<FMountPoint> GetMountPoints() const;

private:
	const std::string ProjectDir;
	const std::string EngineDir;
	const FPlugins& Plugins;
};
} // namespace QVStandalone
