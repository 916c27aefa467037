// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageTables.h"

#include <utility>

namespace QVFormats
{
struct FImportSpec
{
	std::string ClassPackage;
	std::string ClassName;
	std::string ObjectName;
	/** Null for a package. */
	FPackageIndex Outer;
	bool bUsedInGame = true;
};

struct FExportSpec
{
	FPackageIndex Class;
	FPackageIndex Super;
	FPackageIndex Outer;
	std::string ObjectName;
	/** EObjectFlags. */
	std::uint32_t ObjectFlags = 0;
	bool bAsset = false;
	/** Names in it are positions in FPackageSpec::DataNames. */
	std::vector<std::byte> Data;
	/** Where the tagged properties, which are to begin the data, end. */
	std::int64_t ScriptEnd = 0;
	/** Its row of the depends map. */
	std::vector<FPackageIndex> DependsOn;
};

struct FSoftPathSpec
{
	std::string Package;
	std::string Asset;
	std::string SubPath;
	bool bUsedInGame = true;
};

struct FAssetSpec
{
	std::string ObjectPath;
	std::string ClassPath;
	std::vector<std::pair<std::string, std::string>> Tags;
};

struct FPackageSpec
{
	/** `/Game/Maps/Hall`. */
	std::string PackageName;
	/** EPackageFlags. */
	std::uint32_t Flags = 0;
	/** The name table's first entries, in this order, for the exports' data. */
	std::vector<std::string> DataNames;
	std::vector<FImportSpec> Imports;
	std::vector<FExportSpec> Exports;
	std::vector<FSoftPathSpec> SoftPaths;
	/** The registry section. */
	std::vector<FAssetSpec> Assets;
};

/**
 * An uncooked package as UE 5.4 lays it out (file version 1012), with no thumbnails, texts or bulk data. The same spec
 * gives the same bytes. Checked against this library's reader and the layout of the engine's own files; no editor has
 * opened what it writes. Indices in the spec have to lie inside its tables.
 */
std::vector<std::byte> BuildPackage(const FPackageSpec& Spec);
} // namespace QVFormats
