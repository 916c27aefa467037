// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageHeader.h"

namespace QVFormats
{
/** A function that a class made from a blueprint declares itself. */
struct FScriptFunction
{
	FNameRef Name;
	/** Bytes of its compiled script as the engine counts them once it is loaded; 0: it has none. */
	std::int32_t ScriptBytes = 0;
	/** The same script as it lies in the file, where names and references take other room. */
	std::int32_t StoredBytes = 0;
};

/** The functions of a class, which is an export, in the order in which the class lists them. Layouts of 4.27 to 5.6. */
TResult<std::vector<FScriptFunction>> ReadScriptFunctions(
	const FPackageHeader& Header, FBytes File, std::size_t ClassExport);
} // namespace QVFormats
