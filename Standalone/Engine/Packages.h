// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVPackages.h"
#include "Standalone/Engine/Plugins.h"
#include "Standalone/Formats/Package/PackageRegistrySection.h"

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
	FQVLoadedAsset LoadAsset(const FQVAssetData& Asset) const override;
	/** The long package name that a file's place gives it; false if it lies below no mount point. */
	bool TryConvertFilenameToLongPackageName(std::string_view File, std::string& OutPackageName) const;
	/** The full path of the file that holds a package, whichever extension it has; empty if there is none. */
	std::string FindPackageFile(std::string_view PackageName) const;
	/** `/Game` first, then `/Engine`, then the plugins. */
	std::vector<FMountPoint> GetMountPoints() const;

private:
	FQVName FindDestination(std::span<const QVFormats::FPackageTag> Tags) const;

	const std::string ProjectDir;
	const std::string EngineDir;
	const FPlugins& Plugins;
};
} // namespace QVStandalone
