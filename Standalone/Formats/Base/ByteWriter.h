// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"

#include <string_view>
#include <vector>

namespace QVFormats
{
/** Appends little-endian fields to a growing buffer: the mirror of FByteReader. */
class FByteWriter
{
public:
	template<class T>
	requires std::is_trivially_copyable_v<T>
	void Write(const T& Value) { Append(std::as_bytes(std::span(&Value, 1))); }
	void U8(std::uint8_t Value) { Write(Value); }
	void U16(std::uint16_t Value) { Write(Value); }
	void U32(std::uint32_t Value) { Write(Value); }
	void U64(std::uint64_t Value) { Write(Value); }
	void I32(std::int32_t Value) { Write(Value); }
	void I64(std::int64_t Value) { Write(Value); }
	void Bool32(bool bValue) { U32(bValue ? 1 : 0); }
	void Append(FBytes Bytes);
	void Zeros(std::size_t Count) { Data.resize(Data.size() + Count); }

	/** FString in the form that the engine picks: bytes when all characters are below 0x80, else UTF-16. */
	void String(std::string_view Utf8);

	/** Overwrites a field that was written before its value was known. */
	template<class T>
	requires std::is_trivially_copyable_v<T>
	void PatchAt(std::size_t Position, const T& Value) { std::memcpy(Data.data() + Position, &Value, sizeof(T)); }

	std::size_t Position() const { return Data.size(); }
	FBytes Bytes() const { return Data; }
	std::vector<std::byte> Release() { return std::move(Data); }

private:
	std::vector<std::byte> Data;
};
} // namespace QVFormats
