// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakFooter.h"

#include <algorithm>
#include <optional>

namespace QVFormats
{
namespace
{
/** Where a version's magic may be, counted from the file's end. Before the names the footers ended with the hash. */
struct FLayout
{
	std::size_t FooterBytes;
	std::size_t MagicFromEnd;
	std::uint32_t FirstVersion;
	std::uint32_t LastVersion;
};

constexpr std::size_t OldestFooterBytes = 44;
constexpr std::uint32_t OldestReadable = 8;
constexpr std::uint32_t NewestReadable = 12;
constexpr FLayout Layouts[] = {
	{PakFooterBytes, PakFooterBytes - PakMagicPosition, 10, 12},
	{PakFrozenFooterBytes, PakFrozenFooterBytes - PakMagicPosition, 9, 9},
	{PakFooterBytes, PakFooterBytes - PakMagicPosition, 8, 8},
	{PakEarlyFooterBytes, PakEarlyFooterBytes - PakMagicPosition, 8, 8},
	{OldestFooterBytes, OldestFooterBytes, 1, 7},
};

std::optional<std::uint32_t> VersionAt(FBytes File, std::size_t MagicFromEnd)
{
	if (File.size() < MagicFromEnd)
	{
		return std::nullopt;
	}
	FByteReader In(File.last(MagicFromEnd));
	const std::uint32_t Magic = In.U32();
	const std::uint32_t Version = In.U32();
	return Magic == PakMagic ? std::optional(Version) : std::nullopt;
}

const FLayout* FindLayout(FBytes File)
{
	const auto Fits = [File](const FLayout& Layout)
	{
		const auto Version = VersionAt(File, Layout.MagicFromEnd);
		return Version && *Version >= Layout.FirstVersion && *Version <= Layout.LastVersion &&
			   File.size() >= Layout.FooterBytes;
	};
	const FLayout* Found = std::find_if(std::begin(Layouts), std::end(Layouts), Fits);
	return Found == std::end(Layouts) ? nullptr : Found;
}

FError UnknownVersion(std::string_view Name, std::uint32_t Version)
{
	return {std::string(Name) + ": pak version " + std::to_string(Version) + " is not known; versions " +
			std::to_string(OldestReadable) + " to " + std::to_string(NewestReadable) + " can be read"};
}

FError NoFooter(FBytes File, std::string_view Name)
{
	if (File.empty())
	{
		return {std::string(Name) + " is empty; a pak has a footer of " + std::to_string(PakFooterBytes) + " bytes"};
	}
	for (const FLayout& Layout : Layouts)
	{
		if (const auto Version = VersionAt(File, Layout.MagicFromEnd))
		{
			return UnknownVersion(Name, *Version);
		}
	}
	if (File.size() < PakEarlyFooterBytes)
	{
		return {std::string(Name) + " is too small for a pak: " + std::to_string(File.size()) +
				" bytes, and the footer alone has " + std::to_string(PakFooterBytes)};
	}
	return {std::string(Name) +
			" is not a pak file: its end does not hold the mark 0x5A6F12E1 where a footer of version " +
			std::to_string(OldestReadable) + " to " + std::to_string(NewestReadable) + " has it"};
}

std::string MethodName(FBytes Bytes)
{
	const auto End = std::find(Bytes.begin(), Bytes.end(), std::byte{0});
	std::string Name;
	std::transform(
		Bytes.begin(), End, std::back_inserter(Name), [](std::byte Byte) { return static_cast<char>(Byte); });
	return Name;
}

FPakFooter ReadFields(FBytes Bytes)
{
	FByteReader In(Bytes);
	FPakFooter Footer;
	Footer.Bytes = Bytes.size();
	Footer.KeyGuid = In.Read<std::array<std::byte, 16>>();
	Footer.bIndexEncrypted = In.U8() != 0;
	In.Skip(sizeof(PakMagic));
	Footer.Version = static_cast<EPakVersion>(In.U32());
	Footer.IndexOffset = In.I64();
	Footer.IndexSize = In.I64();
	Footer.IndexHash = In.Read<FSha1Hash>();
	if (Footer.Version == EPakVersion::FrozenIndex)
	{
		Footer.bIndexFrozen = In.U8() != 0;
	}
	while (In.Remaining() >= PakMethodNameBytes)
	{
		Footer.Methods.push_back(MethodName(In.Take(PakMethodNameBytes)));
	}
	return Footer;
}
} // namespace

TResult<FPakFooter> FPakFooter::Read(FBytes File, std::string_view Name)
{
	const FLayout* Layout = FindLayout(File);
	if (Layout == nullptr)
	{
		return NoFooter(File, Name);
	}
	if (Layout->LastVersion < OldestReadable)
	{
		return UnknownVersion(Name, *VersionAt(File, Layout->MagicFromEnd));
	}
	return ReadFields(File.last(Layout->FooterBytes));
}

void FPakFooter::Write(FByteWriter& Out) const
{
	Out.Append(KeyGuid);
	Out.U8(bIndexEncrypted ? 1 : 0);
	Out.U32(PakMagic);
	Out.U32(static_cast<std::uint32_t>(Version));
	Out.I64(IndexOffset);
	Out.I64(IndexSize);
	Out.Append(IndexHash);
	for (std::size_t Index = 0; Index < PakMethodCount; ++Index)
	{
		const std::string_view Method = Index < Methods.size() ? std::string_view(Methods[Index]) : std::string_view();
		Out.Append(std::as_bytes(std::span(Method)));
		Out.Zeros(PakMethodNameBytes - Method.size());
	}
}
} // namespace QVFormats
