// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageNames.h"

#include "Standalone/Formats/Base/Crc32.h"
#include "Standalone/Formats/Base/Unicode.h"

#include <algorithm>
#include <array>

namespace QVFormats
{
namespace
{
constexpr std::size_t HashBytes = 4;
/** The engine's own bound. */
constexpr std::size_t MostNameUnits = 1023;

using FCrcTable = std::array<std::uint32_t, 256>;

constexpr FCrcTable MakeUpwardTable()
{
	FCrcTable Table{};
	for (std::uint32_t Index = 0; Index < 256; ++Index)
	{
		std::uint32_t Value = Index << 24;
		for (int Bit = 0; Bit < 8; ++Bit)
		{
			Value = (Value << 1) ^ ((Value & 0x80000000) != 0 ? 0x04C11DB7 : 0);
		}
		Table[Index] = Value;
	}
	return Table;
}

constexpr FCrcTable UpwardTable = MakeUpwardTable();

/** The engine shifts right through a table made for shifting left; files are keyed by that, so it stays. */
std::uint32_t AddFolded(std::uint32_t Hash, std::uint32_t Byte)
{
	return (Hash >> 8) ^ UpwardTable[(Hash ^ Byte) & 0xFF];
}

std::uint32_t ToUpper(std::uint32_t Unit)
{
	return Unit >= 'a' && Unit <= 'z' ? Unit - 'a' + 'A' : Unit;
}

bool IsTooLong(const FStringView& Name)
{
	return Name.Bytes.size() / (Name.bWide ? 2 : 1) > MostNameUnits;
}

FError DamagedNames(const FPackageSummary& Summary)
{
	return {"is damaged: " + std::to_string(Summary.Names.Count) + " names do not fit between " +
			std::to_string(Summary.Names.Offset) + " and the header's end at " +
			std::to_string(Summary.TotalHeaderSize)};
}
} // namespace

FNameHashes ComputeNameHashes(FStringView Name)
{
	const std::size_t Step = Name.bWide ? 2 : 1;
	std::uint32_t Folded = 0;
	std::vector<std::uint32_t> Units;
	Units.reserve(Name.Bytes.size() / Step);
	for (std::size_t Index = 0; Index + Step <= Name.Bytes.size(); Index += Step)
	{
		const std::uint32_t Low = std::to_integer<std::uint32_t>(Name.Bytes[Index]);
		const std::uint32_t High = Name.bWide ? std::to_integer<std::uint32_t>(Name.Bytes[Index + 1]) : 0;
		Folded = AddFolded(Folded, High == 0 ? ToUpper(Low) : Low);
		Folded = Name.bWide ? AddFolded(Folded, High) : Folded;
		Units.push_back(High << 8 | Low);
	}
	return {static_cast<std::uint16_t>(Folded), static_cast<std::uint16_t>(Crc32(std::as_bytes(std::span(Units))))};
}

TResult<FPackageNames> FPackageNames::Read(FBytes Header, const FPackageSummary& Summary)
{
	FByteReader Reader(Header);
	Reader.Seek(Summary.Names.Offset);
	const std::int32_t Count = Summary.Names.Count;
	if (Count < 0 || static_cast<std::size_t>(Count) * (sizeof(std::int32_t) + HashBytes) > Reader.Remaining())
	{
		return DamagedNames(Summary);
	}
	FPackageNames Names;
	Names.Entries.reserve(static_cast<std::size_t>(Count));
	for (std::int32_t Left = Count; Left > 0; --Left)
	{
		Names.Entries.push_back(Reader.String());
		Reader.Skip(HashBytes);
	}
	if (Reader.Failed())
	{
		return DamagedNames(Summary);
	}
	if (std::any_of(Names.Entries.begin(), Names.Entries.end(), IsTooLong))
	{
		return FError{"is damaged: it has a name of more than " + std::to_string(MostNameUnits) + " characters"};
	}
	Names.End = Reader.Position();
	return Names;
}

bool FPackageNames::IsNone(FNameRef Name) const
{
	constexpr std::string_view None = "NONE";
	const FStringView& Text = Entries[Name.Entry];
	// asked for each import of each package: no text is made
	return Name.Number == 0 && !Text.bWide &&
		   std::equal(Text.Bytes.begin(), Text.Bytes.end(), None.begin(), None.end(),
			   [](std::byte Letter, char Wanted)
			   { return ToUpper(std::to_integer<std::uint32_t>(Letter)) == static_cast<unsigned char>(Wanted); });
}

std::string FPackageNames::Text(FNameRef Name) const
{
	std::string Result = Entries[Name.Entry].ToUtf8();
	AppendNameNumber(Result, Name.Number);
	return Result;
}

FNameRef FPackageNames::AddForeign(FStringView Text)
{
	Entries.push_back(Text);
	return {static_cast<std::uint32_t>(Entries.size() - 1), 0};
}

FNameRef ReadName(FByteReader& Reader, const FPackageNames& Names)
{
	const std::int32_t Entry = Reader.I32();
	const std::int32_t Number = Reader.I32();
	if (Entry < 0 || static_cast<std::size_t>(Entry) >= Names.Num() || Number < 0)
	{
		Reader.Fail();
		return {};
	}
	return {static_cast<std::uint32_t>(Entry), static_cast<std::uint32_t>(Number)};
}
} // namespace QVFormats
