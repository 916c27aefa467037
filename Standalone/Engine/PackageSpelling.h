// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/PackageScan.h"

namespace QVStandalone
{
/**
 * References of a package, soft ones too, whose letters differ in case from the place of the file that they lead to.
 * The package's header is read only if the scan has met anything of the kind.
 */
std::vector<FQVMisspelledReference> FindMisspelledReferences(const FScannedPackages& Packages, std::uint32_t Row);
} // namespace QVStandalone
