// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

/** What the user can give a key to; none has one to begin with. Game thread. */
struct FQVMapCommands
{
	static constexpr std::string_view ContextName = "QVMap";
	/** The module's. */
	static constexpr std::string_view TextNamespace = "FQVMapModule";

	static void Register();
	static void Unregister();
};
