// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/ByteReader.h"

#include "Standalone/Formats/Base/Unicode.h"

#include <limits>

namespace QVFormats
{
std::string FStringView::ToUtf8() const
{
	return bWide ? Utf16BytesToUtf8(Bytes) : Latin1ToUtf8(Bytes);
}

bool FByteReader::Bool32()
{
	const std::uint32_t Value = U32();
	if (Value > 1)
	{
		bFailed = true;
	}
	return Value == 1;
}

std::int32_t FByteReader::Count(std::size_t MinItemBytes)
{
	const std::int32_t Value = I32();
	if (Value < 0 || static_cast<std::uint64_t>(Value) * MinItemBytes > Remaining())
	{
		bFailed = true;
		return 0;
	}
	return Value;
}

FStringView FByteReader::String()
{
	const std::int32_t Length = I32();
	if (Length == 0)
	{
		return {};
	}
	if (Length == std::numeric_limits<std::int32_t>::min())
	{
		bFailed = true;
		return {};
	}
	const bool bWide = Length < 0;
	const std::uint64_t UnitBytes = bWide ? 2 : 1;
	const std::uint64_t Units =
		bWide ? static_cast<std::uint64_t>(-static_cast<std::int64_t>(Length)) : static_cast<std::uint64_t>(Length);
	const FBytes Bytes = Take(Units * UnitBytes);
	if (bFailed)
	{
		return {};
	}
	return {Bytes.first(Bytes.size() - static_cast<std::size_t>(UnitBytes)), bWide};
}
} // namespace QVFormats
