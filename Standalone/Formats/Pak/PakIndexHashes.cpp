// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakIndexHashes.h"

namespace QVFormats
{
void FPakIndexHashes::Add(const char* What, FBytes Bytes, const FSha1Hash& Expected)
{
	Parts[Count++] = {What, Bytes, Expected, {}};
}

bool FPakIndexHashes::AreLarge() const
{
	// Starting a thread takes about as long as hashing this much.
	constexpr std::size_t ThreadsWorthBytes = 64 * 1024;
	std::size_t Total = 0;
	for (const FPart& Part : Parts)
	{
		Total += Part.Bytes.size();
	}
	return Total > ThreadsWorthBytes;
}

void FPakIndexHashes::Work()
{
	// the last part is what came from the disk first
	for (std::size_t Done = Next++; Done < Count; Done = Next++)
	{
		FPart& Part = Parts[Count - 1 - Done];
		Part.Found = FSha1::Of(Part.Bytes);
	}
}

std::optional<std::string> FPakIndexHashes::Mismatch() const
{
	for (const FPart& Part : std::span(Parts).first(Count))
	{
		if (Part.Found != Part.Expected)
		{
			return "the " + std::string(Part.What) + " is damaged: its hash is " + HashText(Part.Found) + ", and " +
				   HashText(Part.Expected) + " was expected";
		}
	}
	return std::nullopt;
}
} // namespace QVFormats
