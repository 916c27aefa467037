// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Result.h"

#include <string>
#include <string_view>

namespace QVFormats
{
/** The engine's paths go up this many folders at most before they go down: from Engine/Binaries/<Platform>. */
inline constexpr int PakMostFoldersUp = 3;

/**
 * A destination in one spelling: forward slashes, no empty, `.` or `..` segments but those that it begins with. An
 * error when it is empty, names a folder or climbs out.
 */
TResult<std::string> NormalizePakDestination(std::string_view Destination);

/** Without ASCII case: negative, zero, positive. The order of the records in a pak. */
int ComparePakPaths(std::string_view A, std::string_view B);

/** The part that two destinations share up to its closing slash, without ASCII case; spelled as in A, maybe empty. */
std::string_view CommonPakFolder(std::string_view A, std::string_view B);

/** The mount point without the `../` and `/` that it begins with. */
std::string_view PakMountFolder(std::string_view MountPoint);

/** Why a file of this name must not be written below a folder; empty when it may. */
std::string_view WhyUnsafeBelowFolder(std::string_view Path);
} // namespace QVFormats
