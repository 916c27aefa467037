// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace QVCli
{
/** How many columns of a terminal a text takes: two for a letter such as 鍾. */
std::size_t CountColumns(std::string_view Text);
/** Shortened in the middle to so many columns: the ends of paths and messages tell the most. */
std::string FitColumns(std::string_view Text, std::size_t Width);
/** With as many blanks behind it as are missing to so many columns. */
std::string PadColumns(std::string_view Text, std::size_t Width);
} // namespace QVCli
