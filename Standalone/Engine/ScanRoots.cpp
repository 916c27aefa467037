// SPDX-License-Identifier: MIT
#include "Standalone/Engine/ScanRoots.h"

#include "Core/QVString.h"

#include <algorithm>

namespace QVStandalone
{
std::vector<FMountPoint> WithoutLostMounts(
	const std::vector<FMountPoint>& Mounts, std::vector<FUnreadablePackage>& Lost)
{
	std::vector<FMountPoint> Unique;
	for (const FMountPoint& Mount : Mounts)
	{
		const auto Winner = std::find_if(Unique.begin(), Unique.end(),
			[&Mount](const FMountPoint& Each) { return FQVString::EqualsIgnoreCase(Each.Root, Mount.Root); });
		if (Winner == Unique.end())
		{
			Unique.push_back(Mount);
		}
		else if (Winner->Folder != Mount.Folder)
		{
			Lost.push_back(
				{Mount.Folder, "is left out: the packages of " + Mount.Root + " lie in " + Winner->Folder, {}});
		}
	}
	return Unique;
}

std::vector<FMountPoint> RootsWithin(const std::vector<FMountPoint>& Mounts, const std::string& Folder)
{
	if (Folder.empty())
	{
		return Mounts;
	}
	std::vector<FMountPoint> Roots;
	for (const FMountPoint& Mount : Mounts)
	{
		if (Mount.Folder.starts_with(Folder))
		{
			Roots.push_back(Mount);
		}
		else if (Folder.starts_with(Mount.Folder))
		{
			Roots.push_back({Mount.Root + Folder.substr(Mount.Folder.size()), Folder});
		}
	}
	return Roots;
}
} // namespace QVStandalone
