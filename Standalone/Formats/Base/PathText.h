// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace QVFormats
{
/** A path for a message: UTF-8 on every system, where path::string() takes the code page of the machine. */
inline std::string PathText(const std::filesystem::path& Path)
{
	const std::u8string Text = Path.u8string();
	return std::string(Text.begin(), Text.end());
}

inline std::filesystem::path PathFromUtf8(std::string_view Utf8)
{
	return std::filesystem::path(std::u8string(Utf8.begin(), Utf8.end()));
}
} // namespace QVFormats
