// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticOptions.h"

/** What the map's maps reach, what of that the game will not have, and what will stop the cook. Game thread. */
struct FQVMapReferenceChecks
{
	/** Nothing is said without a map. */
	static void CheckReferences(const FQVDiagnosticOptions& Options, FQVDiagnosticFindings& Findings);
};
