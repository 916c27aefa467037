// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace QVStandalone
{
/**
 * Splits one argument string by the rule of Windows programs: blanks and tabs separate, quotes group, 2n backslashes
 * before a quote are n of them, 2n + 1 are n and a quote that groups nothing, two quotes inside a group are one.
 */
std::vector<std::string> SplitArguments(std::string_view Arguments);
} // namespace QVStandalone
