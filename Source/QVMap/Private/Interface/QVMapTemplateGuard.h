// SPDX-License-Identifier: MIT
#pragma once

/**
 * Warns a user who works in the maps that ship with the game's plugin, which an update replaces: when one of them is
 * opened and when something is saved beside them. It never blocks either. Game thread.
 */
struct FQVMapTemplateGuard
{
	/** From now on it watches; not in a commandlet, and not where nobody could be asked. */
	static void Register();
	/** It has never watched: nothing is under way, nothing is remembered. */
	static void Unregister();
};
