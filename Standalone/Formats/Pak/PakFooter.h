// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Result.h"
#include "Standalone/Formats/Pak/PakFormat.h"

namespace QVFormats
{
/** The last bytes of a pak; Read and Write are each other's mirror. */
struct FPakFooter
{
	std::array<std::byte, 16> KeyGuid{};
	bool bIndexEncrypted = false;
	EPakVersion Version = EPakVersion::Fnv64BugFix;
	std::int64_t IndexOffset = 0;
	std::int64_t IndexSize = 0;
	FSha1Hash IndexHash{};
	bool bIndexFrozen = false;
	/** Compression methods; the first is number 1. May hold empty names. */
	std::vector<std::string> Methods;
	/** Bytes that the footer takes in the file. */
	std::size_t Bytes = PakFooterBytes;

	/** Finds the version by where the magic lies. Name is the file's, for messages. */
	static TResult<FPakFooter> Read(FBytes File, std::string_view Name);
	/** Version 11 only. */
	void Write(FByteWriter& Out) const;
};
} // namespace QVFormats
