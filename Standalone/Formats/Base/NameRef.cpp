// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/NameRef.h"

#include <charconv>

namespace QVFormats
{
FSplitName SplitNameNumber(std::string_view Text)
{
	constexpr std::uint32_t Limit = 0x7FFFFFFF;
	const std::size_t Line = Text.find_last_not_of("0123456789");
	if (Line == std::string_view::npos || Text[Line] != '_')
	{
		return {Text, 0};
	}
	const std::string_view Digits = Text.substr(Line + 1);
	if (Digits.empty() || (Digits.size() > 1 && Digits[0] == '0'))
	{
		return {Text, 0};
	}
	std::uint32_t Value = 0;
	const auto [End, Error] = std::from_chars(Digits.data(), Digits.data() + Digits.size(), Value);
	if (Error != std::errc{} || Value >= Limit)
	{
		return {Text, 0};
	}
	return {Text.substr(0, Line), Value + 1};
}

void AppendNameNumber(std::string& Text, std::uint32_t Number)
{
	if (Number != 0)
	{
		Text += '_';
		Text += std::to_string(Number - 1);
	}
}
} // namespace QVFormats
