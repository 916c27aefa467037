// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/ByteWriter.h"

#include "Standalone/Formats/Base/Unicode.h"

namespace QVFormats
{
void FByteWriter::Append(FBytes Bytes)
{
	Data.insert(Data.end(), Bytes.begin(), Bytes.end());
}

void FByteWriter::String(std::string_view Utf8)
{
	if (Utf8.empty())
	{
		I32(0);
		return;
	}
	if (IsAscii(Utf8))
	{
		I32(static_cast<std::int32_t>(Utf8.size() + 1));
		Append(std::as_bytes(std::span(Utf8)));
		U8(0);
		return;
	}
	const std::u16string Wide = Utf8ToUtf16(Utf8);
	I32(-static_cast<std::int32_t>(Wide.size() + 1));
	Append(std::as_bytes(std::span(Wide)));
	U16(0);
}
} // namespace QVFormats
