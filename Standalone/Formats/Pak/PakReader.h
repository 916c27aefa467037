// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/MappedFile.h"
#include "Standalone/Formats/Pak/PakIndex.h"

namespace QVFormats
{
/** A pak of version 8 to 12, open for reading. Movable; safe to read from many threads. Nothing in the file is trusted.
 */
class FPakReader
{
public:
	static TResult<FPakReader> Open(const std::filesystem::path& Path, EPakIndexHashes Hashes = EPakIndexHashes::Check);
	/** Bytes must outlive the reader; Name stands in messages. */
	static TResult<FPakReader> FromMemory(
		FBytes Bytes, std::string Name, EPakIndexHashes Hashes = EPakIndexHashes::Check);

	const std::string& Name() const { return FileName; }
	EPakVersion Version() const { return FileFooter.Version; }
	const FPakFooter& Footer() const { return FileFooter; }
	const std::string& MountPoint() const { return Index.MountPoint; }
	/** Sorted by path without ASCII case. */
	const std::vector<FPakEntry>& Entries() const { return Index.Entries; }
	/** By path below the mount point, without ASCII case; null when there is none. */
	const FPakEntry* Find(std::string_view Path) const;
	/** "None", "Zlib", "Oodle", ... */
	std::string_view MethodName(const FPakEntry& Entry) const;

	const FPakIndex& IndexTables() const { return Index; }
	FBytes Bytes() const { return View; }

private:
	FMappedFile Mapping;
	FBytes View;
	std::string FileName;
	FPakFooter FileFooter;
	FPakIndex Index;
};
} // namespace QVFormats
