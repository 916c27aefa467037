// SPDX-License-Identifier: MIT
#pragma once

namespace QVStandalone
{
/**
 * The user's wish to stop: Ctrl-C, or a request of the system to end. The first is remembered; from then on no child
 * process is started and those that run are asked to end, so that the work in hand fails and unwinds as it would for
 * any other failure. The second kills the children at once.
 */
struct FInterrupt
{
	/** Catches the signals; once, at the start of a program. */
	static void Install();
	/** How often the user has asked. Any thread. */
	static int Count();
	static bool IsRaised() { return Count() > 0; }
	/** As if the user had asked. */
	static void Raise();
	/** Forgets all requests: for tests. */
	static void Reset();
};
} // namespace QVStandalone
