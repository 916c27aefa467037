// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/PackageScan.h"

namespace QVStandalone
{
/** A file of the walk and what becomes of it. */
struct FPackageCandidate
{
	FQVName Package;
	bool bOddlySpelled = false;
	bool bToRead = false;
	/** The row of the old graph, if what that says of the file still holds. */
	std::uint32_t OldRow = FPackageGraph::NoRow;
	/** Why the package is not known, if it is not. */
	std::string Problem;
	/** The problem will not go away as long as the file is as it is. */
	bool bLasting = true;
};

/** One for each file of the walk: what of Old can be believed, and which files have to be read. */
std::vector<FPackageCandidate> ExaminePackageFiles(
	const FPackageWalk& Walk, const std::vector<FMountPoint>& Mounts, const FScannedPackages& Old);
} // namespace QVStandalone
