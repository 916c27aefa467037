// SPDX-License-Identifier: MIT
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <type_traits>

namespace QVFormats
{
static_assert(std::endian::native == std::endian::little, "the formats are little endian and are read in place");

using FBytes = std::span<const std::byte>;

/** An FString as it lies in the file, not copied: 8-bit characters or UTF-16 units, without the closing NUL. */
struct FStringView
{
	FBytes Bytes;
	bool bWide = false;

	bool IsEmpty() const { return Bytes.empty(); }
	/** Latin-1 or UTF-16 turned into UTF-8; a lone surrogate becomes U+FFFD. */
	std::string ToUtf8() const;
};

/**
 * Reads little-endian fields from bytes that nobody vouches for. The first read past the end sets Failed, and every
 * read from then on gives zero or nothing: a parser reads a whole record and tests once. Does not own the bytes.
 */
class FByteReader
{
public:
	explicit FByteReader(FBytes InData)
		: Data(InData)
	{
	}

	std::size_t Size() const { return Data.size(); }
	std::size_t Position() const { return Offset; }
	std::size_t Remaining() const { return bFailed ? 0 : Data.size() - Offset; }
	bool Failed() const { return bFailed; }
	void Fail() { bFailed = true; }

	/** A position outside the data, negative ones included, fails. */
	void Seek(std::int64_t Position)
	{
		const bool bInside = Position >= 0 && static_cast<std::uint64_t>(Position) <= Data.size();
		bFailed = bFailed || !bInside;
		Offset = bInside ? static_cast<std::size_t>(Position) : Offset;
	}
	void Skip(std::uint64_t Count) { Take(Count); }

	template<class T>
	requires std::is_trivially_copyable_v<T> T Read()
	{
		T Value{};
		const FBytes Field = Take(sizeof(T));
		if (!Field.empty())
		{
			std::memcpy(&Value, Field.data(), sizeof(T));
		}
		return Value;
	}
	std::uint8_t U8() { return Read<std::uint8_t>(); }
	std::uint16_t U16() { return Read<std::uint16_t>(); }
	std::uint32_t U32() { return Read<std::uint32_t>(); }
	std::uint64_t U64() { return Read<std::uint64_t>(); }
	std::int32_t I32() { return Read<std::int32_t>(); }
	std::int64_t I64() { return Read<std::int64_t>(); }
	/** Four bytes; anything but 0 and 1 fails. */
	bool Bool32();

	/** Count bytes in place, or nothing and Failed. */
	FBytes Take(std::uint64_t Count)
	{
		if (bFailed || Count > Data.size() - Offset)
		{
			bFailed = true;
			return {};
		}
		const FBytes Result = Data.subspan(Offset, static_cast<std::size_t>(Count));
		Offset += static_cast<std::size_t>(Count);
		return Result;
	}

	/**
	 * An i32 count of items that take at least MinItemBytes each. A negative count, or one that cannot fit into what
	 * remains, fails: so nothing is ever allocated beyond a small multiple of the file's size.
	 */
	std::int32_t Count(std::size_t MinItemBytes);

	/** FString: i32 length with the NUL; negative for UTF-16; 0 for empty. */
	FStringView String();

private:
	FBytes Data;
	std::size_t Offset = 0;
	bool bFailed = false;
};
} // namespace QVFormats
