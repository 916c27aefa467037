// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageHeader.h"

namespace QVFormats
{
enum class ENameUse
{
	ClassPackage,
	ClassName,
	ImportName,
	ImportPackage,
	ExportName,
	SoftPathPackage,
	SoftPathAsset,
	/** A package by itself: soft package references, build dependencies. */
	Package,
	Other,
};

/** A field of 8 bytes in the header that holds a name. */
struct FNameUse
{
	ENameUse Kind = ENameUse::Other;
	std::size_t Position = 0;
	/** Of its table. */
	std::size_t Row = 0;
	FNameRef Name;
};

enum class ETextUse
{
	PackageName,
	/** A package by itself: soft package references of old layouts. */
	Package,
	/** Of an object of this package, without it unless it begins with `/`. */
	ObjectPath,
	/** Paths may stand anywhere in it. */
	FreeText,
	PrimaryAssetName,
	Other,
};

/** A string of the header, length field and closing NUL included. */
struct FTextUse
{
	ETextUse Kind = ETextUse::Other;
	std::size_t Begin = 0;
	std::size_t End = 0;
	FStringView Text;
};

/** All fields with names, the name table apart. */
TResult<std::vector<FNameUse>> LocateNames(const FPackageHeader& Header);
/** The strings that can hold names of packages or objects, and those between them. */
TResult<std::vector<FTextUse>> LocateTexts(const FPackageHeader& Header);
} // namespace QVFormats
