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
	std::shared_ptr<const FRenameTable> Table;
};

/**
 * Writes packages' files with the renames done in their headers, the rest byte for byte: each whole or not at all, and
 * on the disk then. Refused where a reference would stay on an old name. Gives for each, in the order given, an old
 * name that the objects' data holds in texts that are no references; mostly there is none. Errors say file, cause and
 * remedy. Several at once, or in the order given where one is the source of another.
 */
std::vector<QVFormats::TResult<std::string>> SaveRenamedPackages(std::span<const FPackageSave> Saves);
} // namespace QVStandalone
