// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace QVFormats
{
/** A name as files hold it: an entry of some name table and a number. 0: the entry as it stands; n: entry, '_', n - 1.
 */
struct FNameRef
{
	std::uint32_t Entry = 0;
	std::uint32_t Number = 0;

	auto operator<=>(const FNameRef&) const = default;
};

struct FSplitName
{
	std::string_view Entry;
	std::uint32_t Number = 0;
};

/** Splits a trailing `_<digits>` off as the engine does: no leading zero, and the value below 2^31 - 1. */
FSplitName SplitNameNumber(std::string_view Text);

void AppendNameNumber(std::string& Text, std::uint32_t Number);
} // namespace QVFormats
