// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVEvent.h"

/** The base release build as a running thing. */
struct FQVMapBaseReleaseBuild
{
	static inline bool bBuilding = false;
	static bool IsBaseReleaseBuilding() { return bBuilding; }
	static TQVEvent<>& OnBuildEnded()
	{
		static TQVEvent<> Event;
		return Event;
	}
};
