// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticOptions.h"

/** What the map's plugin holds, and whether it can be cooked, loaded and played. Game thread. */
struct FQVMapContentChecks
{
	/** Without a world the checks of the open map are left out. */
	static void CheckMapContent(const FQVDiagnosticOptions& Options, FQVDiagnosticFindings& Findings);
};
