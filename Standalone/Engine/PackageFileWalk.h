// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/PackageGraph.h"
#include "Standalone/Engine/Packages.h"

#include <functional>
#include <string>

namespace QVStandalone
{
/** A package's file as the walk met it. */
struct FWalkedFile
{
	/** `Hall.umap` */
	std::string FileName;
	/** Of FPackageWalk::Folders. */
	std::uint32_t Folder = 0;
	FPackageFile File;
	/** Empty, or why it cannot be read. */
	std::string Problem;

	/** `Hall` */
	std::string_view BaseName() const { return std::string_view(FileName).substr(0, FileName.rfind('.')); }
};

struct FWalkedFolder
{
	/** `<Project>/Plugins/Cave/Content/Maps/` */
	std::string Path;
	/** `/Cave/Maps/` */
	std::string PackagePath;
};

struct FUnreadableFolder
{
	std::string Path;
	std::string Problem;
};

struct FPackageWalk
{
	std::vector<FWalkedFolder> Folders;
	/** In alphabetical order of the packages, unless folders differ in letter case only. */
	std::vector<FWalkedFile> Files;
	std::vector<FUnreadableFolder> Unreadable;

	std::string PackageNameOf(const FWalkedFile& File) const
	{
		return Folders[File.Folder].PackagePath + std::string(File.BaseName());
	}
	std::string PathOf(const FWalkedFile& File) const { return Folders[File.Folder].Path + File.FileName; }
};

/** Asked now and then, on any thread; true ends the work, whose result is then worth nothing. */
using FStopWish = std::function<bool()>;

/**
 * Finds the `.uasset` and `.umap` files below some folders, given as mount points are, with their sizes and times, on
 * all cores. A folder that is not there has no files. Links are followed, but no folder is entered twice from one
 * root: what also lies there without a link is found there, and of several links the alphabetically first one counts.
 */
FPackageWalk WalkPackageFiles(const std::vector<FMountPoint>& Roots, const FStopWish& Stop);
} // namespace QVStandalone
