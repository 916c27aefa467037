// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticOptions.h"

/** How the latest export ended and what is left of it. Game thread. */
struct FQVMapLastExportChecks
{
	static void CheckLastExport(const FQVDiagnosticOptions& Options, FQVDiagnosticFindings& Findings);
};
