// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Pak/PakFooter.h"

#include <deque>

namespace QVFormats
{
/** A file in a pak, as the index tells it. Its texts and bytes lie in the reader, which must outlive it. */
struct FPakEntry
{
	/** Below the mount point, with its closing slash; empty for a file right there. */
	std::string_view Folder;
	std::string_view Name;
	/** Of the record, in the pak. */
	std::uint64_t Offset = 0;
	/** Of the payload as stored. */
	std::uint64_t Size = 0;
	std::uint64_t UncompressedSize = 0;
	/** 0: none, else the footer's method of this number. */
	std::uint32_t Method = 0;
	/** As the index has it: tools write the file's size or 0 for a single block. */
	std::uint32_t BlockSize = 0;
	std::uint32_t BlockCount = 0;
	bool bEncrypted = false;
	/** Whether BlockTable holds start and end of each block (i64) or only lengths (u32). */
	bool bBlockRanges = false;
	/** Empty where the only block is the whole payload. */
	FBytes BlockTable;
	/** What the index's tables call this entry by; 0 in versions 8 and 9. */
	std::int32_t Place = 0;

	std::string Path() const;
	std::uint64_t HeadBytes() const { return PakRecordHeadBytes(Method, BlockCount); }
};

enum class EPakIndexHashes : std::uint8_t
{
	Check,
	/** For a quick listing: every bound is still checked, the contents of the index are believed. */
	Skip,
};

struct FPakIndex
{
	std::string MountPoint;
	/** By path without ASCII case; no two are equal. */
	std::vector<FPakEntry> Entries;
	std::uint64_t PathHashSeed = 0;
	bool bHasPathHashIndex = false;
	FBytes PathHashIndex;
	/** Texts that do not stand in the file as UTF-8. A deque, since entries look into them. */
	std::deque<std::string> Texts;

	/** Name is the file's, for messages. Allocates at most a small multiple of the index's own size. */
	static TResult<FPakIndex> Read(
		FBytes File, const FPakFooter& Footer, std::string_view Name, EPakIndexHashes Hashes);
};
} // namespace QVFormats
