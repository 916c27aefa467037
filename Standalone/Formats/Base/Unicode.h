// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace QVFormats
{
bool IsAscii(std::string_view Text);

/** Bytes above 0x7F become the code point of the same number. */
std::string Latin1ToUtf8(std::span<const std::byte> Bytes);

/** UTF-16 little endian, not necessarily aligned; a lone surrogate or a trailing odd byte becomes U+FFFD. */
std::string Utf16BytesToUtf8(std::span<const std::byte> Bytes);

/** Each bad byte becomes U+FFFD. */
std::u16string Utf8ToUtf16(std::string_view Utf8);

/** A..Z made small, nothing else: the only folding that the formats know. */
std::string ToLowerAscii(std::string_view Text);
} // namespace QVFormats
