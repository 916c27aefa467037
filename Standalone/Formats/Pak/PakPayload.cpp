// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakPayload.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
constexpr std::string_view ZlibName = "Zlib";

/** Where the blocks are by the index; the record must say the same. */
void BlocksByIndex(const FPakEntry& Entry, std::vector<FPakBlock>& Blocks)
{
	Blocks.resize(Entry.BlockCount);
	if (Entry.bBlockRanges)
	{
		if (!Blocks.empty())
		{
			std::memcpy(Blocks.data(), Entry.BlockTableData, Entry.BlockTable().size());
		}
		return;
	}
	FByteReader Lengths(Entry.BlockTable());
	std::uint64_t Start = Entry.HeadBytes();
	for (FPakBlock& Block : Blocks)
	{
		const std::uint64_t Length = Entry.BlockTableData == nullptr ? Entry.Size : Lengths.U32();
		Block = {static_cast<std::int64_t>(Start), static_cast<std::int64_t>(Start + Length)};
		Start += PakStoredBytes(Length, Entry.bEncrypted);
	}
}

FError Differs(const char* Field, std::uint64_t Found, std::uint64_t Expected)
{
	return {std::string("the record's ") + Field + " is " + std::to_string(Found) + ", the index has " +
			std::to_string(Expected)};
}

bool IsBlockSizeRight(const FPakRecord& Record, const FPakEntry& Entry)
{
	// A single block: tools write 0 or the file's size, and not always the same at both places.
	return Record.BlockSize == Entry.BlockSize || (Entry.BlockCount == 1 && Record.BlockSize == Entry.UncompressedSize);
}

FStatus CompareFields(const FPakRecord& Record, const FPakEntry& Entry)
{
	const std::uint64_t Flags = Entry.bEncrypted ? PakRecordEncrypted : 0;
	const struct
	{
		const char* Name;
		std::uint64_t Found;
		std::uint64_t Expected;
	} Fields[] = {
		{"size", static_cast<std::uint64_t>(Record.Size), Entry.Size},
		{"uncompressed size", static_cast<std::uint64_t>(Record.UncompressedSize), Entry.UncompressedSize},
		{"compression method", Record.Method, Entry.Method},
		{"block count", Record.Blocks.size(), Entry.BlockCount},
		{"flags field", Record.Flags, Flags},
	};
	for (const auto& Field : Fields)
	{
		if (Field.Found != Field.Expected)
		{
			return Differs(Field.Name, Field.Found, Field.Expected);
		}
	}
	if (Record.Offset != 0)
	{
		return FError{"the record's offset is " + std::to_string(Record.Offset) + ", and 0 was expected"};
	}
	return IsBlockSizeRight(Record, Entry) ? Success() : Differs("block size", Record.BlockSize, Entry.BlockSize);
}

/** The blocks follow each other from the head's end to the payload's, with nothing between but padding. */
bool AreBlocksSound(const FPakEntry& Entry, const std::vector<FPakBlock>& Blocks)
{
	const std::uint64_t End = Entry.HeadBytes() + Entry.Size;
	std::uint64_t Expected = Entry.HeadBytes();
	std::uint64_t Last = Expected;
	for (const FPakBlock& Block : Blocks)
	{
		if (static_cast<std::uint64_t>(Block.Start) != Expected || Block.End < Block.Start ||
			static_cast<std::uint64_t>(Block.End) > PakStoredBytes(End, true))
		{
			return false;
		}
		Last = static_cast<std::uint64_t>(Block.End);
		Expected += PakStoredBytes(Last - Expected, Entry.bEncrypted);
	}
	return Last == End || Expected == End;
}
} // namespace

FStatus FPakPayload::Read(const FPakReader& Reader, const FPakEntry& Entry)
{
	const std::uint64_t HeadBytes = Entry.HeadBytes();
	RecordBytes = Reader.Bytes().subspan(
		static_cast<std::size_t>(Entry.Offset), static_cast<std::size_t>(HeadBytes + Entry.Size));
	Stored = RecordBytes.subspan(static_cast<std::size_t>(HeadBytes));
	FByteReader In(RecordBytes);
	Record.Read(In);
	if (In.Failed())
	{
		return FError{"the record's head is damaged: its block count does not fit into it"};
	}
	FStatus Fields = CompareFields(Record, Entry);
	if (!Fields || Entry.Method == 0)
	{
		Blocks.clear();
		return Fields;
	}
	BlocksByIndex(Entry, Blocks);
	if (Record.Blocks != Blocks)
	{
		return FError{"the record's blocks lie elsewhere than the index has them"};
	}
	return AreBlocksSound(Entry, Blocks) ? Success() : FError{"the blocks do not make up the payload"};
}

FBytes FPakPayload::Block(std::size_t Index) const
{
	// AreBlocksSound lets an encrypted block end inside its padding, behind the payload; those are not read.
	const FPakBlock& Range = Blocks[Index];
	const std::size_t Start = std::min(static_cast<std::size_t>(Range.Start), RecordBytes.size());
	return RecordBytes.subspan(
		Start, std::min(static_cast<std::size_t>(Range.End - Range.Start), RecordBytes.size() - Start));
}

FStatus FPakPayload::CheckHash(const FSha1Hash& Found) const
{
	return Found == Record.Hash ? Success()
								: FError{"the content is damaged: its hash is " + HashText(Found) + ", and " +
										 HashText(Record.Hash) + " was expected"};
}

std::string WhyPakContentIsClosed(const FPakReader& Reader, const FPakEntry& Entry)
{
	if (Entry.bEncrypted)
	{
		return "encrypted";
	}
	const std::string_view Method = Reader.MethodName(Entry);
	return Entry.Method == 0 || Method == ZlibName ? std::string() : "compressed with " + std::string(Method);
}

std::uint64_t PakInflatedBlockBytes(const FPakEntry& Entry, std::size_t Block)
{
	return Entry.BlockCount == 1 ? Entry.UncompressedSize
								 : std::min<std::uint64_t>(Entry.BlockSize,
									   Entry.UncompressedSize - std::uint64_t{Block} * Entry.BlockSize);
}

TResult<FBytes> FPakInflater::Inflate(const FPakEntry& Entry, const FPakPayload& Payload, std::size_t Block)
{
	const auto Size = static_cast<std::size_t>(PakInflatedBlockBytes(Entry, Block));
	if (Buffer.size() < Size)
	{
		Buffer.resize(Size);
	}
	const std::span<std::byte> Out = std::span(Buffer).first(Size);
	if (!Decompressor.Decompress(Payload.Block(Block), Out))
	{
		return FError{"block " + std::to_string(Block + 1) + " of " + std::to_string(Entry.BlockCount) +
					  " does not inflate to its " + std::to_string(Size) + " bytes"};
	}
	return FBytes(Out);
}
} // namespace QVFormats
