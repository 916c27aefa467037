// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PropertyValues.h"

#include <functional>

namespace QVFormats
{
/**
 * Goes through all properties of an export and gives what its class has written behind them, or why the two do not hold
 * together. File: the whole package, not a cooked one.
 */
TResult<FByteReader> ReadObject(const FPackageHeader& Header, const FPackageExport& Export, FBytes File,
	const std::function<void(const FPropertyTag&)>& OnProperty = {});

/** Fails the reader when the index lies outside the header's tables. */
FPackageIndex ReadObjectIndex(FByteReader& In, const FPackageHeader& Header);
/** An i32 count and as many indices. */
std::vector<FPackageIndex> ReadObjectIndices(FByteReader& In, const FPackageHeader& Header);

/** It is an import of that class, `/Script/Engine` and `World`; not one derived from it. */
bool IsClass(const FPackageHeader& Header, FPackageIndex Class, std::string_view Package, std::string_view Name);
} // namespace QVFormats
