// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageHeader.h"

namespace QVFormats
{
struct FPackageDependency
{
	/** Of the header's names. */
	FNameRef Package;
	/** Loaded with the package (an import), not just named (a soft reference). */
	bool bHard = false;
	/** Not only used by the editor. */
	bool bGame = false;

	bool operator==(const FPackageDependency&) const = default;
};

/**
 * What a package depends on, as the engine's registry derives it: code packages (`/Script/...`) included, the package
 * itself too where it refers to itself. Each package once, except that one that is hard for the editor only and soft
 * for the game is there twice. In order of the name table. The header has to be read with its registry section.
 */
std::vector<FPackageDependency> PackageDependencies(const FPackageHeader& Header);
} // namespace QVFormats
