// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Pak/PakEntry.h"

#include <deque>

namespace QVFormats
{
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
