// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVText.h"

#include <string>

/** Which mod and which map the open level belongs to. */
struct FQVMapReadiness
{
	/**
	 * Game thread. For `/Cave/Maps/Hall.Hall`: Cave, Hall, and `/Game/Cave/Maps/Hall` if that is asked for. Only a
	 * level in a plugin with its own descriptor can be packed; for any other OutError says what to do instead.
	 */
	static bool ResolveOpenMap(
		std::string& OutMod, std::string& OutMap, FQVText& OutError, std::string* OutGamePath = nullptr);
};
