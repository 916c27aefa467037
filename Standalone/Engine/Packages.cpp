// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Packages.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"

namespace QVStandalone
{
FPackages::FPackages(std::string InProjectDir, std::string InEngineDir, const FPlugins& InPlugins)
	: ProjectDir(std::move(InProjectDir))
	, EngineDir(std::move(InEngineDir))
	, Plugins(InPlugins)
{
}

std::vector<FMountPoint> FPackages::GetMountPoints() const
{
	std::vector<FMountPoint> Points = {{"/Game/", FQVPath::Combine(ProjectDir, "Content") + "/"},
		{"/Engine/", FQVPath::Combine(EngineDir, "Content") + "/"}};
	for (const FQVPluginInfo& Plugin : Plugins.GetDiscovered())
	{
		if (Plugin.bEnabled && Plugin.bCanContainContent)
		{
			Points.push_back({"/" + Plugin.Name + "/", FQVPath::Combine(Plugin.BaseDir, "Content") + "/"});
		}
	}
	return Points;
}

bool FPackages::TryConvertLongPackageNameToFilename(
	std::string_view PackageName, std::string& OutFilename, std::string_view Extension) const
{
	for (const FMountPoint& Point : GetMountPoints())
	{
		if (FQVString::StartsWithIgnoreCase(PackageName, Point.Root))
		{
			OutFilename = Point.Folder;
			OutFilename.append(PackageName.substr(Point.Root.size())).append(Extension);
			return true;
		}
	}
	return false;
}
} // namespace QVStandalone
