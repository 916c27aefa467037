// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakFormat.h"

#include "Standalone/Formats/Base/Crc32.h"
#include "Standalone/Formats/Base/Unicode.h"

#include <limits>

namespace QVFormats
{
namespace
{
constexpr std::uint64_t FnvOffset = 0xCBF29CE484222325;
constexpr std::uint64_t FnvPrime = 0x00000100000001B3;

/** Bits of an encoded entry. */
constexpr std::uint32_t BlockSizeMask = 0x3F;
constexpr std::uint32_t BlockSizeFollows = 0x3F;
constexpr int BlockSizeShift = 11;
constexpr int BlockCountShift = 6;
constexpr std::uint32_t BlockCountMask = 0xFFFF;
constexpr std::uint32_t EncryptedBit = 1U << 22;
constexpr int MethodShift = 23;
constexpr std::uint32_t MethodMask = 0x3F;
constexpr std::uint32_t SizeFits = 1U << 29;
constexpr std::uint32_t UncompressedSizeFits = 1U << 30;
constexpr std::uint32_t OffsetFits = 1U << 31;

bool FitsU32(std::uint64_t Value)
{
	return Value <= std::numeric_limits<std::uint32_t>::max();
}

std::uint64_t ReadSized(FByteReader& In, bool bShort)
{
	return bShort ? In.U32() : In.U64();
}

void WriteSized(FByteWriter& Out, std::uint64_t Value)
{
	FitsU32(Value) ? Out.U32(static_cast<std::uint32_t>(Value)) : Out.U64(Value);
}

std::uint64_t AddUnit(std::uint64_t Hash, std::uint16_t Unit)
{
	if (Unit >= 'A' && Unit <= 'Z')
	{
		Unit = static_cast<std::uint16_t>(Unit - 'A' + 'a');
	}
	Hash = (Hash ^ (Unit & 0xFF)) * FnvPrime;
	return (Hash ^ (Unit >> 8)) * FnvPrime;
}

std::uint64_t AddText(std::uint64_t Hash, std::string_view Text)
{
	if (IsAscii(Text))
	{
		for (const char Letter : Text)
		{
			Hash = AddUnit(Hash, static_cast<unsigned char>(Letter));
		}
		return Hash;
	}
	for (const char16_t Unit : Utf8ToUtf16(Text))
	{
		Hash = AddUnit(Hash, Unit);
	}
	return Hash;
}

bool HasBlockLengths(std::uint32_t BlockCount, bool bEncrypted)
{
	return BlockCount > 1 || (BlockCount == 1 && bEncrypted);
}
} // namespace

void FPakRecord::Read(FByteReader& In)
{
	Offset = In.I64();
	Size = In.I64();
	UncompressedSize = In.I64();
	Method = In.U32();
	Hash = In.Read<FSha1Hash>();
	Blocks.clear();
	if (Method != 0)
	{
		const std::int32_t Count = In.Count(PakBlockRangeBytes);
		Blocks.resize(static_cast<std::size_t>(Count));
		const FBytes Bytes = In.Take(Blocks.size() * PakBlockRangeBytes);
		if (!Bytes.empty())
		{
			std::memcpy(Blocks.data(), Bytes.data(), Bytes.size());
		}
	}
	Flags = In.U8();
	BlockSize = In.U32();
}

void FPakRecord::Write(FByteWriter& Out) const
{
	Out.I64(Offset);
	Out.I64(Size);
	Out.I64(UncompressedSize);
	Out.U32(Method);
	Out.Append(Hash);
	if (Method != 0)
	{
		Out.I32(static_cast<std::int32_t>(Blocks.size()));
		Out.Append(std::as_bytes(std::span(Blocks)));
	}
	Out.U8(Flags);
	Out.U32(BlockSize);
}

void FPakEncodedEntry::Read(FByteReader& In)
{
	const std::uint32_t Bits = In.U32();
	const std::uint32_t Packed = Bits & BlockSizeMask;
	BlockCount = (Bits >> BlockCountShift) & BlockCountMask;
	bEncrypted = (Bits & EncryptedBit) != 0;
	Method = (Bits >> MethodShift) & MethodMask;
	BlockSize = Packed == BlockSizeFollows ? In.U32() : Packed << BlockSizeShift;
	Offset = ReadSized(In, (Bits & OffsetFits) != 0);
	UncompressedSize = ReadSized(In, (Bits & UncompressedSizeFits) != 0);
	Size = Method == 0 ? UncompressedSize : ReadSized(In, (Bits & SizeFits) != 0);
	BlockLengths = HasBlockLengths(BlockCount, bEncrypted) ? In.Take(std::uint64_t{BlockCount} * 4) : FBytes();
}

void FPakEncodedEntry::Write(FByteWriter& Out) const
{
	const std::uint32_t Shifted = BlockSize >> BlockSizeShift;
	const bool bPacks = Shifted < BlockSizeFollows && Shifted << BlockSizeShift == BlockSize;
	std::uint32_t Bits =
		(bPacks ? Shifted : BlockSizeFollows) | (BlockCount << BlockCountShift) | (Method << MethodShift);
	Bits |= bEncrypted ? EncryptedBit : 0;
	Bits |= FitsU32(Size) ? SizeFits : 0;
	Bits |= FitsU32(UncompressedSize) ? UncompressedSizeFits : 0;
	Bits |= FitsU32(Offset) ? OffsetFits : 0;
	Out.U32(Bits);
	if (!bPacks)
	{
		Out.U32(BlockSize);
	}
	WriteSized(Out, Offset);
	WriteSized(Out, UncompressedSize);
	if (Method != 0)
	{
		WriteSized(Out, Size);
	}
	if (HasBlockLengths(BlockCount, bEncrypted))
	{
		Out.Append(BlockLengths);
	}
}

std::uint64_t PakPathHash(std::string_view Folder, std::string_view Name, std::uint64_t Seed)
{
	return AddText(AddText(FnvOffset + Seed, Folder), Name);
}

std::uint64_t PakPathHashSeed(std::string_view PakName)
{
	FByteWriter Letters;
	for (const char16_t Unit : Utf8ToUtf16(ToLowerAscii(PakName)))
	{
		Letters.U32(Unit);
	}
	return Crc32(Letters.Bytes());
}
} // namespace QVFormats
