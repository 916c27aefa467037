// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/** Between UTF-8, in which the toolkit thinks, and UTF-16, which appears at its borders only. */
struct FQVUnicode
{
	static constexpr char32_t Replacement = 0xFFFD;

	static bool IsAscii(std::string_view Text);
	/** Each bad byte becomes U+FFFD. */
	static std::u16string ToUtf16(std::string_view Utf8);
	/** A lone surrogate becomes U+FFFD. */
	static std::string ToUtf8(std::u16string_view Utf16);
	/** The text with each bad byte replaced by U+FFFD; a text without one comes back as it is. */
	static std::string Repair(std::string_view Bytes);
	static void Append(std::string& OutUtf8, char32_t Point);
	/** How many bytes at the end begin a character that is not complete yet: 0 to 3. */
	static std::size_t IncompleteTail(std::string_view Bytes);
};
