// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/Packages.h"
#include "Standalone/Formats/Package/PackageRenames.h"

#include <string>

namespace QVStandalone
{
/**
 * Where a package of redirectors leads in the end, since a redirector may lead to a redirector: fills in To and Objects
 * of a rename whose From is set. Gives what stands in the way; then the rename is of no use.
 */
std::string FollowRedirector(
	const FPackages& Packages, const std::string& RedirectorFile, QVFormats::FPackageRename& Rename);
} // namespace QVStandalone
