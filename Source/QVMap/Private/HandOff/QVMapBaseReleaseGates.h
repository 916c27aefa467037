// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

/** What has to be true of the base release before a map can be packed against it. Game thread. */
struct FQVMapBaseReleaseGates
{
	/**
	 * False, with the reason told, if the run ends here. Where the user has the release built, Restart is called when
	 * that has succeeded.
	 */
	static bool Pass(const std::function<void()>& Restart);
};
