// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVEvent.h"
#include "Export/QVMapBackgroundRun.h"
#include "Export/QVMapCookResult.h"

#include <functional>

using FQVBaseReleaseBuildState = TQVBackgroundRun<FQVCookResult>;

/** The build of the base release as a thing that runs: one at a time, in the background, shown by a notification. */
struct FQVMapBaseReleaseBuild
{
	using FOnComplete = std::function<void(bool bSuccess)>;

	/** Any thread. While it is true the mods' descriptors are set aside. */
	static bool IsBaseReleaseBuilding();
	/**
	 * Game thread. Returns at once. OnComplete may be empty; it is called on the game thread when the build has ended,
	 * or at once with false if there is one already.
	 */
	static void StartBaseReleaseBuild(FOnComplete OnComplete);
	/** Game thread. Told at the end of each build, when IsBaseReleaseBuilding gives false again. */
	static TQVEvent<>& OnBuildEnded();
};
