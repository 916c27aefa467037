// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"
#include "Standalone/Formats/Package/PackageRenames.h"

namespace QVFormats
{
struct FPackageEdit
{
	/** What stands instead of the file's first OldHeaderBytes; all behind them follows byte for byte. */
	std::vector<std::byte> Header;
	std::size_t OldHeaderBytes = 0;
	bool bChanged = false;
	/** Names and texts of the header that changed. */
	std::size_t References = 0;
	/** Old names that the objects' data may still hold, since their entries of the name table had to stay, or that have
	 * followed there without the name of the object beside them. */
	std::vector<std::string> PossiblyStale;
};

/**
 * Renames packages wherever the header of a package speaks of them: the package itself, when one of Renames is for
 * PackageName, and what it refers to. Objects' data is not looked into; names in it follow where they share an entry of
 * the name table with the header, strings in it do not. PackageName is the name that the file's place gives it: what
 * the header says can be out of date. File: at least the whole header. Errors are said without the file's name, to be
 * put behind it. Any thread.
 */
TResult<FPackageEdit> RenameInPackage(
	FBytes File, std::string_view PackageName, std::span<const FPackageRename> Renames);
/** The same, of many files with the same renames: those are checked and sorted once. */
TResult<FPackageEdit> RenameInPackage(FBytes File, std::string_view PackageName, const FPackageRenames& Renames);

/**
 * The header with every name, text and offset that an edit could change written anew from what was read. Of a file that
 * the engine saved that gives the same bytes: the proof that an edit writes as the engine does.
 */
TResult<std::vector<std::byte>> WriteHeaderAnew(FBytes File);
} // namespace QVFormats
