// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace QVStandalone
{
/**
 * A value in the text of a configuration file: the last `Key=Value` under any `[Section]`, names without case, blanks
 * and quotes around the value gone. Lines that edit lists (`+Key=`) are passed over.
 */
std::optional<std::string> FindConfigValue(std::string_view Text, std::string_view Section, std::string_view Key);

/** The same of the files that together are the game configuration; of two that say it the later layer counts. */
std::optional<std::string> ReadGameConfig(
	const std::string& ProjectDir, const std::string& EngineDir, std::string_view Section, std::string_view Key);
} // namespace QVStandalone
