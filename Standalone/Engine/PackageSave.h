// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/LoadedPackages.h"

namespace QVStandalone
{
struct FPackageSave
{
	/** The name that the source's place gives it. */
	std::string_view SourceName;
	std::string SourceFile;
	/** Full path; its folder is made. Can be the source. */
	std::string File;
	const FRenameTable& Table;
};

/**
 * Writes a package's file with the renames done in its header, the rest byte for byte: whole or not at all, and on the
 * disk then. Refused where a reference would stay on an old name. Gives an old name that the objects' data holds in
 * texts that are no references; mostly there is none. Errors say file, cause and remedy.
 */
QVFormats::TResult<std::string> SaveRenamedPackage(const FPackageSave& Save);
} // namespace QVStandalone
