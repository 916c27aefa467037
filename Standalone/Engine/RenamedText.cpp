// SPDX-License-Identifier: MIT
#include "Standalone/Engine/RenamedText.h"

#include "Core/QVString.h"
#include "Core/QVUnicode.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** Never in a package's name. */
constexpr std::u16string_view NameEnds = u"\\:*?\"<>|' ,.&!~@#";
/** Rarely: behind a name in a longer text, as a rule. */
constexpr std::u16string_view LikelyEnds = u"(){}[]=;";

bool EndsName(char16_t Unit)
{
	return Unit < u' ' || NameEnds.find(Unit) != std::u16string_view::npos;
}

/** Past the end: NUL. */
char16_t UnitAt(std::string_view Bytes, std::size_t At, std::size_t UnitBytes)
{
	const auto Byte = [&](std::size_t Place)
	{ return static_cast<unsigned char>(Place < Bytes.size() ? Bytes[Place] : 0); };
	return static_cast<char16_t>(UnitBytes == 1 ? Byte(At) : Byte(At) | Byte(At + 1) << 8);
}

/** Whether a letter of a name stands before it. In UTF-16, which need not lie at even places, only ASCII counts as one:
 * a text's length or type in front of it could be any other. */
bool IsInsideName(std::string_view Bytes, std::size_t At, std::size_t UnitBytes)
{
	const char16_t Before = At < UnitBytes ? u'\0' : UnitAt(Bytes, At - UnitBytes, UnitBytes);
	const bool bLetter = !EndsName(Before) && LikelyEnds.find(Before) == std::u16string_view::npos;
	return bLetter && (UnitBytes == 1 || Before < 0x80);
}
} // namespace

FRenamedText::FRenamedText(std::span<const FPackageRename> Renames)
{
	for (const FPackageRename& Rename : Renames)
	{
		const std::string Name = FQVString::ToLower(Rename.From);
		const std::u16string Wide = FQVUnicode::ToUtf16(Name);
		for (const unsigned Second : {static_cast<unsigned>(static_cast<unsigned char>(Name[1])), Wide[1] & 0xFFu})
		{
			Seconds[Second] = true;
			Seconds[Second >= 'a' && Second <= 'z' ? Second - 'a' + 'A' : Second] = true;
		}
		LongestName = std::max(LongestName, Name.size());
		Names.emplace(Name, Rename.From);
	}
}

std::string FRenamedText::FindAt(std::string_view Bytes, std::size_t At, std::size_t UnitBytes) const
{
	if (!Seconds[static_cast<unsigned char>(Bytes[At + UnitBytes])] || IsInsideName(Bytes, At, UnitBytes))
	{
		return {};
	}
	std::u16string Name;
	for (std::size_t Next = At; Name.size() <= LongestName; Next += UnitBytes)
	{
		const char16_t Unit = UnitAt(Bytes, Next, UnitBytes);
		const bool bEnd = EndsName(Unit);
		if (bEnd || LikelyEnds.find(Unit) != std::u16string_view::npos)
		{
			const std::string Text =
				UnitBytes == 1 ? std::string(Bytes.substr(At, Next - At)) : FQVUnicode::ToUtf8(Name);
			const auto Known = Names.find(FQVString::ToLower(Text));
			if (bEnd || Known != Names.end())
			{
				return Known != Names.end() ? Known->second : std::string();
			}
		}
		Name.push_back(Unit);
	}
	return {};
}

std::string FRenamedText::FindIn(std::string_view Bytes) const
{
	std::string Found;
	for (std::size_t At = Bytes.find('/'); Found.empty() && At != std::string_view::npos; At = Bytes.find('/', At + 1))
	{
		const std::size_t UnitBytes = At + 1 < Bytes.size() && Bytes[At + 1] == 0 ? 2 : 1;
		Found = At + UnitBytes < Bytes.size() ? FindAt(Bytes, At, UnitBytes) : std::string();
	}
	return Found;
}
} // namespace QVStandalone
