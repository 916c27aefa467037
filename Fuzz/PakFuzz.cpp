// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakExtract.h"

using namespace QVFormats;

/** Reads and verifies from memory; where files would be written is worked out, nothing is. */
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
	const FBytes File = std::as_bytes(std::span(Data, Size));
	// changed bytes seldom have the right hash
	const TResult<FPakReader> Reader = FPakReader::FromMemory(File, "fuzz.pak", EPakIndexHashes::Skip);
	static_cast<void>(FPakReader::FromMemory(File, "fuzz.pak", EPakIndexHashes::Check));
	if (!Reader)
	{
		return 0;
	}
	for (const FPakEntry& Entry : Reader->Entries())
	{
		Reader->MethodName(Entry);
		Reader->Find(Entry.Path());
		PakExtractedPath(*Reader, Entry, "/out");
	}
	VerifyPak(*Reader, 1);
	return 0;
}
