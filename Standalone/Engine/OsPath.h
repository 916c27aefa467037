// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace QVStandalone
{
/** UTF-8 with either slash, as the toolkit has it, to the operating system's own form. */
inline std::filesystem::path ToOsPath(std::string_view Utf8)
{
	return std::filesystem::path(std::u8string(Utf8.begin(), Utf8.end()));
}

/** UTF-8 with forward slashes. */
inline std::string FromOsPath(const std::filesystem::path& Path)
{
	const std::u8string Text = Path.generic_u8string();
	return std::string(Text.begin(), Text.end());
}
} // namespace QVStandalone
