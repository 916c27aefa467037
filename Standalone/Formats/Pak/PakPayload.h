// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Compression.h"
#include "Standalone/Formats/Pak/PakReader.h"

namespace QVFormats
{
/** A record of a pak with its head checked against the index. Made anew for each entry, its buffers are reused. */
struct FPakPayload
{
	FPakRecord Record;
	std::vector<FPakBlock> Blocks;
	/** The whole record. */
	FBytes RecordBytes;
	/** The payload as stored, without padding. */
	FBytes Stored;

	/** Reads and compares; the message names the field that differs. */
	FStatus Read(const FPakReader& Reader, const FPakEntry& Entry);
	FBytes Block(std::size_t Index) const;
	/** The payload's hash against the one in the head. */
	FStatus CheckHash(const FSha1Hash& Found) const;
};

/** Why this entry's content cannot be had ("encrypted", "compressed with Oodle"); empty when it can. */
std::string WhyPakContentIsClosed(const FPakReader& Reader, const FPakEntry& Entry);

/** Bytes of one block once it is inflated; the last block is the rest. */
std::uint64_t PakInflatedBlockBytes(const FPakEntry& Entry, std::size_t Block);

/** Inflates blocks into its own buffer. One for each thread. */
class FPakInflater
{
public:
	/** The bytes stay valid until the next call. */
	TResult<FBytes> Inflate(const FPakEntry& Entry, const FPakPayload& Payload, std::size_t Block);

private:
	FZlibDecompressor Decompressor;
	std::vector<std::byte> Buffer;
};
} // namespace QVFormats
