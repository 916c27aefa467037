// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakDirectory.h"

#include "Standalone/Formats/Base/Unicode.h"

#include <limits>

namespace QVFormats
{
namespace
{
/** Encoded entries are made of such words. */
constexpr std::size_t PlaceAlignment = 4;

std::string_view Letters(FBytes Bytes)
{
	return {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()};
}
} // namespace

std::string_view FPakTexts::Read(FByteReader& In)
{
	if (bUtf8)
	{
		return ReadUtf8(In);
	}
	const FStringView Text = In.String();
	return !Text.bWide && IsAscii(Letters(Text.Bytes)) ? Letters(Text.Bytes) : Store.emplace_back(Text.ToUtf8());
}

std::string_view FPakTexts::ReadUtf8(FByteReader& In)
{
	std::string_view Text = Letters(In.Take(static_cast<std::uint64_t>(In.Count(1))));
	if (Text.ends_with('\0'))
	{
		Text.remove_suffix(1);
	}
	if (IsAscii(Text))
	{
		return Text;
	}
	// Once there and back makes bad bytes into U+FFFD.
	const std::u16string Wide = Utf8ToUtf16(Text);
	return Store.emplace_back(Utf16BytesToUtf8(std::as_bytes(std::span(Wide))));
}

void FPakTexts::Skip(FByteReader& In) const
{
	bUtf8 ? In.Skip(static_cast<std::uint64_t>(In.Count(1))) : void(In.String());
}

FPakDirectory::FPakDirectory(FBytes InBytes, FPakTexts InTexts, std::size_t InEncodedBytes)
	: Bytes(InBytes)
	, Texts(InTexts)
	, FileAt(InEncodedBytes / PlaceAlignment)
{
}

bool FPakDirectory::Scan()
{
	return Walk([this](std::size_t Name, std::size_t Folder, std::int32_t Place) { return Note(Name, Folder, Place); });
}

bool FPakDirectory::Note(std::size_t NamePosition, std::size_t Folder, std::int32_t Place)
{
	++Files;
	const std::size_t Word = static_cast<std::size_t>(Place) / PlaceAlignment;
	if (Place < 0 || Place % PlaceAlignment != 0 || Word >= FileAt.size() || FileAt[Word].Folder != 0 ||
		NamePosition > std::numeric_limits<std::uint32_t>::max())
	{
		bByPlace = false;
		return true;
	}
	FileAt[Word] = {static_cast<std::uint32_t>(NamePosition), static_cast<std::uint32_t>(Folder + 1)};
	return true;
}

FPakNamedPlace FPakDirectory::At(std::size_t NamePosition, std::size_t Folder)
{
	FByteReader In(Bytes.subspan(NamePosition));
	FPakNamedPlace Result;
	Result.Folder = Folders[Folder];
	Result.Name = Texts.Read(In);
	Result.Place = In.I32();
	return Result;
}
} // namespace QVFormats
