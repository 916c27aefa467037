// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/PackageScan.h"

namespace QVStandalone
{
/** Each root once, with the folder that comes first; the folders of the others are added to Lost. */
std::vector<FMountPoint> WithoutLostMounts(
	const std::vector<FMountPoint>& Mounts, std::vector<FUnreadablePackage>& Lost);

/**
 * The part of each mount point that lies in a folder, or all of it when the folder is the outer one. Folder ends in a
 * slash; empty: all mount points.
 */
std::vector<FMountPoint> RootsWithin(const std::vector<FMountPoint>& Mounts, const std::string& Folder);
} // namespace QVStandalone
