// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticOptions.h"

/** Whether machine and project can pack at all. Needs no map. Game thread. */
struct FQVMapEnvironmentChecks
{
	/** Appends one finding for each check; none stops another. */
	static void CheckEnvironment(const FQVDiagnosticOptions& Options, FQVDiagnosticFindings& Findings);
};
