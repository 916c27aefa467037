// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/PackageFileWalk.h"

#include <atomic>
#include <memory>
#include <unordered_map>

namespace QVStandalone
{
/** A file, or a folder, that the registry knows nothing of although it should. */
struct FUnreadablePackage
{
	std::string File;
	/** To be put behind the file's name: "is a Git LFS pointer: fetch the file with git lfs pull". */
	std::string Reason;
	/** As it was when it was read. Time 0: to be tried again in any case, for the reason may be gone. */
	FPackageFile Stamp;

	bool operator==(const FUnreadablePackage&) const = default;
};

/** What a scan found. Never changes, so any thread may read it. */
struct FScannedPackages
{
	FPackageGraph Graph;
	/** Each root once. */
	std::vector<FMountPoint> Mounts;
	/** Full paths of files that are not, or were not, spelled like their package's name, which is spelled as it was
	 * first met. */
	std::unordered_map<FQVName, std::string> OddlySpelled;
	/** In order of the files. */
	std::vector<FUnreadablePackage> Unreadable;

	/** Full path of a package's file. */
	std::string PathAt(std::uint32_t Row) const;
	/** A package's long name as its file's place spells it. */
	std::string NameOnDiskAt(std::uint32_t Row) const;
};
using FScannedPackagesRef = std::shared_ptr<const FScannedPackages>;

struct FScanProgress
{
	/** Files to be read; 0 as long as that is not known. */
	std::atomic<std::size_t> Total = 0;
	std::atomic<std::size_t> Done = 0;
};

/** What to look at. */
struct FScanScope
{
	/** All mount points, in order of precedence; where two have one root the first one counts. */
	std::vector<FMountPoint> Mounts;
	/** Full path; empty: everything. Packages that do not lie below it stay as they are. */
	std::string Folder;
};

/** Gives what is to be brought up to date, never null; called once, on any thread, while the folders are walked. */
using FLoadOldPackages = std::function<FScannedPackagesRef()>;

/**
 * What the old packages become when they are brought up to date with the disk: files of the same size and time are
 * believed, all others are read, on all cores. The old ones themselves if nothing has changed, null if the scan was
 * stopped.
 */
FScannedPackagesRef ScanPackages(
	const FLoadOldPackages& LoadOld, const FScanScope& Scope, FScanProgress& Progress, const FStopWish& Stop);
} // namespace QVStandalone
