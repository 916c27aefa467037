// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticOptions.h"

/** What a new user still has to do before a map can be packed and played. Game thread. */
struct FQVMapSetupChecklist
{
	/**
	 * One row for each step, in the order in which they are done; ids begin with "Setup.". Pass is done, Info can be
	 * left as it is, Warning should be done, Error has to be.
	 */
	static FQVDiagnosticFindings Evaluate(const FQVDiagnosticActions& Actions);
	/** No step is left that has to be done. */
	static bool IsComplete(const FQVDiagnosticFindings& Rows);
	/** Whether whoever starts the editor should show it by itself: the user wants it, and something is missing. */
	static bool ShouldShowAtStart(const FQVDiagnosticFindings& Rows);
};
