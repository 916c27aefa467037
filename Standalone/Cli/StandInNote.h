// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Cli/Session.h"

namespace QVCli
{
/** Nobody shall take what the stand-ins made for something that the game can load. */
inline void SayIfStandIn(FSession& Session)
{
	if (Session.bBundledEngine)
	{
		Session.Console.Say(
			"note: made with the bundled stand-in tools: content is laid out, not converted, and the game "
			"will not load it. Name an installed engine with --engine.");
	}
}
} // namespace QVCli
