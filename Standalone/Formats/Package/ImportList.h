// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageSpec.h"

#include <string_view>

namespace QVFormats
{
/** Imports of a package in the making, each once. The spec outlives it. */
class FImportList
{
public:
	explicit FImportList(FPackageSpec& InSpec)
		: Spec(InSpec)
	{
	}

	FPackageIndex Package(std::string_view Name, bool bUsedInGame = true);
	/** A native class, or one made from a blueprint: `/Cave/BP_Door.BP_Door_C`. */
	FPackageIndex Class(std::string_view ClassPath);
	FPackageIndex Object(FImportSpec Import);

private:
	FPackageSpec& Spec;
};
} // namespace QVFormats
