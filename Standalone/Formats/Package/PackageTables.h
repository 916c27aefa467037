// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageNames.h"

namespace QVFormats
{
/** 0: nothing; n > 0: export n - 1; n < 0: import -n - 1. */
struct FPackageIndex
{
	std::int32_t Value = 0;

	static FPackageIndex Export(std::size_t Index) { return {static_cast<std::int32_t>(Index) + 1}; }
	static FPackageIndex Import(std::size_t Index) { return {-static_cast<std::int32_t>(Index) - 1}; }
	bool IsNull() const { return Value == 0; }
	bool IsExport() const { return Value > 0; }
	bool IsImport() const { return Value < 0; }
	/** Only when IsExport. */
	std::size_t ToExport() const { return static_cast<std::size_t>(Value) - 1; }
	/** Only when IsImport. */
	std::size_t ToImport() const { return static_cast<std::size_t>(-(static_cast<std::int64_t>(Value) + 1)); }
	bool operator==(const FPackageIndex&) const = default;
};

struct FPackageImport
{
	FNameRef ClassPackage;
	FNameRef ClassName;
	/** Can be an export: an actor in a file of its own has its map's level as outer. */
	FPackageIndex Outer;
	FNameRef ObjectName;
	/** The package file that the object lies in when that is not its outermost import's. */
	FNameRef PackageName;
	bool bHasPackageName = false;
	bool bOptional = false;
};

struct FPackageExport
{
	/** Null: the export is itself a class. */
	FPackageIndex Class;
	FPackageIndex Super;
	FPackageIndex Template;
	FPackageIndex Outer;
	FNameRef ObjectName;
	std::uint32_t ObjectFlags = 0;
	/** The data counts from the start of the file; in a cooked package it lies in the .uexp, as if appended. */
	std::int64_t SerialSize = 0;
	std::int64_t SerialOffset = 0;
	std::uint32_t SerialOffsetAt = 0;
	bool bForced = false;
	bool bNotForClient = false;
	bool bNotForServer = false;
	bool bInherited = false;
	bool bAsset = false;
	bool bPublicHash = false;
	/** Where the tagged properties lie, counted from SerialOffset; 5.4 on, else both 0. */
	std::int64_t ScriptStart = 0;
	std::int64_t ScriptEnd = 0;
};

struct FPackageSoftPath
{
	FNameRef Package;
	FNameRef Asset;
	FStringView SubPath;
	/** The sub path's bytes are UTF-8 already: packages of 5.6 on. */
	bool bUtf8 = false;

	std::string SubPathText() const;
};

/** Every index and name in what these give lies inside its table, so they may be followed without looking. */
TResult<std::vector<FPackageImport>> ReadImports(
	FBytes Header, const FPackageSummary& Summary, const FPackageNames& Names);
TResult<std::vector<FPackageExport>> ReadExports(
	FBytes Header, const FPackageSummary& Summary, const FPackageNames& Names);
TResult<std::vector<FPackageSoftPath>> ReadSoftObjectPaths(
	FBytes Header, const FPackageSummary& Summary, const FPackageNames& Names);
/** Adds to Names in layouts that write the packages as strings. */
TResult<std::vector<FNameRef>> ReadSoftPackageReferences(
	FBytes Header, const FPackageSummary& Summary, FPackageNames& Names);
} // namespace QVFormats
