// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Compression.h"
#include "Standalone/Formats/Base/InputFile.h"
#include "Standalone/Formats/Pak/PakFormat.h"
#include "Standalone/Formats/Pak/PakPlan.h"

namespace QVFormats
{
/** A file as it lies in the pak that is being written. */
struct FPakStoredFile
{
	std::uint64_t Offset = 0;
	std::uint64_t Size = 0;
	std::uint64_t UncompressedSize = 0;
	FSha1Hash Hash{};
	bool bCompressed = false;
	/** Of each compressed block. */
	std::vector<std::uint32_t> BlockLengths;

	std::uint64_t HeadBytes() const { return PakRecordHeadBytes(bCompressed ? 1 : 0, BlockLengths.size()); }
	std::uint32_t BlockSize() const;
	/** Its record, with this as the first field. */
	FPakRecord Record(std::uint64_t OffsetField) const;
};

/** Memory without its zeroing. */
struct FPakBuffer
{
	std::unique_ptr<std::byte[]> Data;
	std::size_t Capacity = 0;

	/** What was in it is lost when it grows. */
	std::span<std::byte> Take(std::size_t Size);
};

/** Opens a source that has not changed its size since the pak was planned. */
TResult<FInputFile> OpenPakSource(const FPlannedFile& File);

/** Fills Out; a source that ends before that has changed meanwhile. */
FStatus ReadPakSource(const FPlannedFile& File, FInputFile& Input, std::uint64_t Begin, std::span<std::byte> Out);

/** Makes records and pieces of them. One for each thread. */
class FPakRecordMaker
{
public:
	/** The whole record of a file into Room, which holds at least its plain head and its size. */
	FStatus MakeRecord(const FPlannedFile& File, FInputFile& Input, std::span<std::byte> Room, FPakStoredFile& Result);

	/** Compresses block by block into Out, which is large enough. */
	FStatus Compress(const FPlannedFile& File, FBytes Plain, std::span<std::byte> Out,
		std::vector<std::uint32_t>& Lengths, std::uint64_t& Used);

	FPakBuffer Input;
	FPakBuffer Output;

private:
	FZlibCompressor Compressor;
	FZlibCompressor Storer{0};
};
} // namespace QVFormats
