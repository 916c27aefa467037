// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

/** What a map may hold and may refer to. */
struct FQVMapSecurityScanner
{
	/** Any thread. Whether every game has what lies below this path: the engine's content, and the base game's. */
	static bool IsTrustedPackagePath(std::string_view PackagePath);
};
