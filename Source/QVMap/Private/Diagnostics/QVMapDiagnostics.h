// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticOptions.h"

/** What stands between one map and a working pak, as one report. It describes and blocks nothing. */
struct FQVMapDiagnostics : FQVDiagnosticModel
{
	/**
	 * Game thread. Runs the groups that are asked for, one behind the other; what cannot be checked is a finding. A
	 * cancel takes effect between two groups.
	 */
	static FQVDiagnosticReport RunDiagnostics(const FQVDiagnosticOptions& Options);
};
