// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Pak/PakFooter.h"

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
	/** As the index has it: tools write the file's size or 0 for a single block. */
	std::uint32_t BlockSize = 0;
	std::uint32_t BlockCount = 0;
	/** What the index's tables call this entry by; 0 in versions 8 and 9. */
	std::int32_t Place = 0;
	/** 0: none, else the footer's method of this number. */
	std::uint8_t Method = 0;
	bool bEncrypted = false;
	/** Whether the block table holds start and end of each block (i64) or only lengths (u32). */
	bool bBlockRanges = false;
	/** Null where the only block is the whole payload. */
	const std::byte* BlockTableData = nullptr;

	/** Leaves Folder, Name and Place alone. */
	void ReadRecord(FByteReader& In);
	void ReadEncoded(FByteReader& In);
	/** What cannot be about it in a pak with this footer; empty when it can be. */
	std::string WhyImpossible(const FPakFooter& Footer) const;

	std::string Path() const;
	std::uint64_t HeadBytes() const { return PakRecordHeadBytes(Method, BlockCount); }
	FBytes BlockTable() const;
};
} // namespace QVFormats
