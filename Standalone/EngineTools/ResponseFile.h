// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Result.h"

#include <string>
#include <string_view>
#include <vector>

namespace QVEngineTools
{
/** One file of a pak, as a response file names it. */
struct FResponseEntry
{
	std::string Source;
	std::string Destination;
	bool bCompress = false;

	bool operator==(const FResponseEntry&) const = default;
};

/**
 * The lines of a response file: `"source" "destination"` and options, separated by blanks, quotes grouping. A source
 * with a star stands for all files below its folder. Empty lines count for nothing. Errors name the line.
 */
QVFormats::TResult<std::vector<FResponseEntry>> ParseResponseFile(std::string_view Text);
} // namespace QVEngineTools
