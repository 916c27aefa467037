// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakEntry.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
/** A number that no footer has a name for. */
constexpr std::uint32_t UnknownMethod = 255;
} // namespace

void FPakEntry::ReadRecord(FByteReader& In)
{
	Offset = In.U64();
	Size = In.U64();
	UncompressedSize = In.U64();
	const std::uint32_t RecordMethod = In.U32();
	Method = static_cast<std::uint8_t>(std::min(RecordMethod, UnknownMethod));
	In.Skip(sizeof(FSha1Hash));
	if (RecordMethod != 0)
	{
		BlockCount = static_cast<std::uint32_t>(In.Count(PakBlockRangeBytes));
		BlockTableData = In.Take(BlockCount * PakBlockRangeBytes).data();
		bBlockRanges = true;
	}
	bEncrypted = (In.U8() & PakRecordEncrypted) != 0;
	BlockSize = In.U32();
}

void FPakEntry::ReadEncoded(FByteReader& In)
{
	FPakEncodedEntry Fields;
	Fields.Read(In);
	Offset = Fields.Offset;
	Size = Fields.Size;
	UncompressedSize = Fields.UncompressedSize;
	Method = static_cast<std::uint8_t>(Fields.Method);
	BlockSize = Fields.BlockSize;
	BlockCount = Fields.BlockCount;
	bEncrypted = Fields.bEncrypted;
	BlockTableData = Fields.BlockLengths.data();
}

std::string FPakEntry::WhyImpossible(const FPakFooter& Footer) const
{
	const auto Limit = static_cast<std::uint64_t>(Footer.IndexOffset);
	if (Offset > Limit || Size > Limit || HeadBytes() + Size > Limit - Offset)
	{
		return "lies outside the file: offset " + std::to_string(Offset) + ", size " + std::to_string(Size) +
			   ", and the index begins at " + std::to_string(Limit);
	}
	if (Method > Footer.Methods.size() || (Method > 0 && Footer.Methods[Method - 1].empty()))
	{
		return "is compressed by method " + std::to_string(Method) + ", which the footer does not name";
	}
	if (Method == 0)
	{
		return Size == UncompressedSize && BlockCount == 0
				   ? std::string()
				   : "is not compressed, but its sizes are " + std::to_string(Size) + " and " +
						 std::to_string(UncompressedSize) + " and it has " + std::to_string(BlockCount) + " blocks";
	}
	const std::uint64_t Block = BlockCount == 1 ? UncompressedSize : BlockSize;
	if (Block == 0 || Block > PakLargestBlockBytes || PakBlockCount(UncompressedSize, Block) != BlockCount)
	{
		return "cannot have " + std::to_string(BlockCount) + " blocks of " + std::to_string(Block) +
			   " bytes, since its size is " + std::to_string(UncompressedSize);
	}
	return {};
}

std::string FPakEntry::Path() const
{
	return std::string(Folder).append(Name);
}

FBytes FPakEntry::BlockTable() const
{
	return BlockTableData == nullptr ? FBytes()
									 : FBytes(BlockTableData, BlockCount * (bBlockRanges ? PakBlockRangeBytes : 4));
}
} // namespace QVFormats
