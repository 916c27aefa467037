// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVNameSet.h"
#include "HandOff/QVMapPlayRequest.h"

class IQVWorld;

/** What the open map must and must not hold before it is packed. World is the open one. Game thread. */
struct FQVMapContentGates
{
	/** Asks about actors that the map needs and does not have. False if the user stops. */
	static bool PassPlayability(const FQVPlayRequest& Request, const IQVWorld& World);
	/**
	 * Refuses what the game would not load; the Level Blueprint's code the user may have taken out, which stays so.
	 * UsedPackages: assets of other packages are passed over; empty: all are judged.
	 */
	static bool PassSupported(const FQVPlayRequest& Request, const IQVWorld& World, const FQVNameSet& UsedPackages);
};
