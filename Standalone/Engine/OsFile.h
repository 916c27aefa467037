// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string_view>
#include <system_error>

namespace QVStandalone
{
/**
 * Writes a whole file beside its target, flushes it to the disk and renames it over: a reader, a full disk or a crash
 * never leaves half a file. A target that is marked read-only is refused, a link is followed. Nothing is left on
 * failure.
 */
std::error_code ReplaceFile(const std::filesystem::path& Target, std::string_view Bytes);

/** Renames a file over another. A read-only source is refused, as it is where our users are. */
std::error_code MoveFileOver(const std::filesystem::path& Target, const std::filesystem::path& Source);
} // namespace QVStandalone
