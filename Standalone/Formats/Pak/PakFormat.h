// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"
#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Base/Sha1.h"

#include <vector>

namespace QVFormats
{
inline constexpr std::uint32_t PakMagic = 0x5A6F12E1;

/** Each version by what came with it. */
enum class EPakVersion : std::uint32_t
{
	CompressionNames = 8,
	FrozenIndex = 9,
	PathHashIndex = 10,
	Fnv64BugFix = 11,
	Utf8Directory = 12,
};

inline constexpr std::size_t PakMethodNameBytes = 32;
inline constexpr std::size_t PakMethodCount = 5;
/** The first paks with compression names had room for one fewer. */
inline constexpr std::size_t PakEarlyMethodCount = 4;
/** Key guid, encrypted flag, magic, version, index offset and size, index hash. */
inline constexpr std::size_t PakFooterBaseBytes = 61;
/** Where the magic lies in the footer: behind key guid and encrypted flag. */
inline constexpr std::size_t PakMagicPosition = 17;
inline constexpr std::size_t PakFooterBytes = PakFooterBaseBytes + PakMethodCount * PakMethodNameBytes;
inline constexpr std::size_t PakEarlyFooterBytes = PakFooterBaseBytes + PakEarlyMethodCount * PakMethodNameBytes;
inline constexpr std::size_t PakFrozenFooterBytes = PakFooterBytes + 1;

inline constexpr std::uint32_t PakBlockBytes = 65536;
/** Blocks larger than this are made by nobody, and each must fit into memory. */
inline constexpr std::uint32_t PakLargestBlockBytes = 16 * 1024 * 1024;
inline constexpr std::size_t PakBlockRangeBytes = 16;
inline constexpr std::uint64_t PakEncryptedAlignment = 16;

inline constexpr std::uint8_t PakRecordEncrypted = 1;

/** The bytes of a data record before its payload. */
constexpr std::uint64_t PakRecordHeadBytes(std::uint32_t Method, std::uint64_t Blocks)
{
	return Method == 0 ? 53 : 57 + Blocks * PakBlockRangeBytes;
}

/** What lies on disk for a payload of this size. */
constexpr std::uint64_t PakStoredBytes(std::uint64_t Size, bool bEncrypted)
{
	return bEncrypted ? (Size + PakEncryptedAlignment - 1) / PakEncryptedAlignment * PakEncryptedAlignment : Size;
}

/** How many pieces of BlockBytes a file of this size is cut into. */
constexpr std::uint64_t PakBlockCount(std::uint64_t Size, std::uint64_t BlockBytes)
{
	return Size / BlockBytes + (Size % BlockBytes != 0 ? 1 : 0);
}

/** A compressed piece, counted from the start of its record. */
struct FPakBlock
{
	std::int64_t Start = 0;
	std::int64_t End = 0;

	bool operator==(const FPakBlock&) const = default;
};

/** The head of a data record; the same fields stand in the old index and among the plain entries of the new one. */
struct FPakRecord
{
	std::int64_t Offset = 0;
	std::int64_t Size = 0;
	std::int64_t UncompressedSize = 0;
	std::uint32_t Method = 0;
	FSha1Hash Hash{};
	std::vector<FPakBlock> Blocks;
	std::uint8_t Flags = 0;
	std::uint32_t BlockSize = 0;

	/** Fails the reader at the first field that cannot be. */
	void Read(FByteReader& In);
	void Write(FByteWriter& Out) const;
};

/** The fields of an index entry as they are packed into bits; Read and Write are each other's mirror. */
struct FPakEncodedEntry
{
	std::uint64_t Offset = 0;
	std::uint64_t Size = 0;
	std::uint64_t UncompressedSize = 0;
	std::uint32_t Method = 0;
	std::uint32_t BlockSize = 0;
	std::uint32_t BlockCount = 0;
	bool bEncrypted = false;
	/** u32 length of each block; empty where the only block is the whole payload. */
	FBytes BlockLengths;

	/** More blocks than its bits can count: such an entry is written as a plain record. */
	bool Fits() const { return BlockCount < 0x10000; }
	void Read(FByteReader& In);
	void Write(FByteWriter& Out) const;
};

/** FNV-1a over the UTF-16 units of a path below the mount point, made small. */
std::uint64_t PakPathHash(std::string_view Folder, std::string_view Name, std::uint64_t Seed);

/** The seed that the engine's tool would derive from this text. */
std::uint64_t PakPathHashSeed(std::string_view PakName);

/** A file is stored plain unless compression saves 1,024 bytes and 5 percent. */
constexpr bool PakCompressionPays(std::uint64_t Size, std::uint64_t CompressedSize)
{
	constexpr std::uint64_t LeastSaving = 1024;
	return CompressedSize + LeastSaving <= Size && Size - CompressedSize >= (Size + 19) / 20;
}
} // namespace QVFormats
