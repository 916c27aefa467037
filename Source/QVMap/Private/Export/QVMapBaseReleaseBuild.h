// SPDX-License-Identifier: MIT
#pragma once

/** The base release build as a running thing. */
struct FQVMapBaseReleaseBuild
{
	static inline bool bBuilding = false;
	static bool IsBaseReleaseBuilding() { return bBuilding; }
};
