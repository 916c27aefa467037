// SPDX-License-Identifier: MIT
#include "Standalone/Engine/TextEncoding.h"

#include "Core/QVUnicode.h"

namespace QVStandalone
{
namespace
{
constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view Utf16LittleMark = "\xFF\xFE";
constexpr std::string_view Utf16BigMark = "\xFE\xFF";

std::string DecodeUtf16(std::string_view Bytes, bool bBigEndian)
{
	std::u16string Units;
	Units.reserve(Bytes.size() / 2 + 1);
	for (std::size_t Index = 0; Index + 1 < Bytes.size(); Index += 2)
	{
		const auto First = static_cast<unsigned char>(Bytes[Index]);
		const auto Second = static_cast<unsigned char>(Bytes[Index + 1]);
		Units.push_back(static_cast<char16_t>(bBigEndian ? First << 8 | Second : Second << 8 | First));
	}
	if (Bytes.size() % 2 != 0)
	{
		Units.push_back(static_cast<char16_t>(FQVUnicode::Replacement));
	}
	return FQVUnicode::ToUtf8(Units);
}
} // namespace

std::string DecodeText(std::string_view Bytes)
{
	if (Bytes.starts_with(Utf16LittleMark) || Bytes.starts_with(Utf16BigMark))
	{
		return DecodeUtf16(Bytes.substr(2), Bytes.starts_with(Utf16BigMark));
	}
	return FQVUnicode::Repair(Bytes.starts_with(Utf8Mark) ? Bytes.substr(Utf8Mark.size()) : Bytes);
}

std::string EncodeText(std::string_view Utf8)
{
	if (FQVUnicode::IsAscii(Utf8))
	{
		return std::string(Utf8);
	}
	std::string Bytes(Utf16LittleMark);
	for (const char16_t Unit : FQVUnicode::ToUtf16(Utf8))
	{
		Bytes.push_back(static_cast<char>(Unit & 0xFF));
		Bytes.push_back(static_cast<char>(Unit >> 8));
	}
	return Bytes;
}
} // namespace QVStandalone
