// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace QVCli
{
/** The candidate that a misspelled word was most likely meant to be; empty if none is near. */
std::string NearestWord(std::string_view Word, const std::vector<std::string>& Candidates);
} // namespace QVCli
