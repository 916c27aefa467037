// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/Classes.h"
#include "Standalone/Engine/OpenPackage.h"

namespace QVStandalone
{
/** A class of an open package, with what its default object says. Functions stay empty where they cannot be read. */
FClassContent ReadClass(const FOpenPackage& Package, std::size_t ClassExport);

/** The class of that name, or what a redirector of that name leads to; nothing of both if there is none. */
FClassContent FindClassIn(const FOpenPackage& Package, std::string_view ClassName);

std::vector<FQVFunction> ToFunctions(
	const QVFormats::FPackageHeader& Header, const std::vector<QVFormats::FScriptFunction>& Functions);
} // namespace QVStandalone
