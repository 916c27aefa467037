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
	/** Neither a client's game nor a server's gets it. */
	bool bEditorOnly = false;
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
} // namespace QVFormats
