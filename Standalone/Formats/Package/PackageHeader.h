// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageRegistrySection.h"
#include "Standalone/Formats/Package/PackageTables.h"

namespace QVFormats
{
struct FPackageReadOptions
{
	/** A scan for names and dependencies can do without the tags. */
	bool bRegistrySection = true;
};

/** Everything of a package but its objects' data. Views point into the bytes given, which have to outlive it. */
struct FPackageHeader
{
	/** The first TotalHeaderSize bytes of the file. */
	FBytes Bytes;
	FPackageSummary Summary;
	FPackageNames Names;
	std::vector<FPackageImport> Imports;
	std::vector<FPackageExport> Exports;
	std::vector<FPackageSoftPath> SoftObjectPaths;
	std::vector<FNameRef> SoftPackageReferences;
	FPackageRegistrySection Registry;

	/** The package that an import lies in; false for an object below an export of this very package. */
	bool FindPackageOf(const FPackageImport& Import, FNameRef& OutPackage) const;
	/** `/Script/Engine.StaticMesh`; empty for a class. */
	std::string ClassPathOf(const FPackageExport& Export) const;
};

/**
 * File: a whole package or at least its header (PeekHeaderSize); a cooked .uasset is just that. Packages of UE 4.15 to
 * 5.8, all others are refused with a sentence that goes behind the file's name. Any thread.
 */
TResult<FPackageHeader> ReadPackageHeader(FBytes File, const FPackageReadOptions& Options = {});
} // namespace QVFormats
