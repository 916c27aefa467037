// SPDX-License-Identifier: MIT
#pragma once

#include "Content/QVMapReferenceAudit.h"
#include "Diagnostics/QVMapDiagnosticReport.h"

/** What will stop a cook and can be seen before it begins. Findings of the reference group. Game thread. */
struct FQVMapCookObstacles
{
	/** Windows takes no path with more UTF-16 units than this. */
	static constexpr std::size_t MostPathUnits = 259;

	/** Files that the registry could not read; those of the mod are errors. */
	static FQVDiagnosticFinding CheckUnreadable(const std::string& Mod);
	/** Packages that 5.4 will not load; those of the mod are errors. */
	static FQVDiagnosticFinding CheckEngine(const FQVReferenceAudit& Audit);
	/** References out of the mod's packages that a disk takes only if it does not tell upper from lower case. */
	static FQVDiagnosticFinding CheckLetterCase(const FQVNameSet& Packages);
	/** Whether what the cook makes of the mod's packages has paths that Windows takes. */
	static FQVDiagnosticFinding CheckCookedPaths(const std::string& Mod, const FQVNameSet& Packages);
};
