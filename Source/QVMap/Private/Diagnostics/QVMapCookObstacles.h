// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVNameSet.h"
#include "Diagnostics/QVMapDiagnosticReport.h"

/** What will stop a cook and can be seen before it begins. Findings of the reference group. Game thread. */
struct FQVMapCookObstacles
{
	/** Windows takes no path with more UTF-16 units than this. */
	static constexpr std::size_t MostPathUnits = 259;

	/** Files that the registry could not read; those of the mod are errors. */
	static FQVDiagnosticFinding CheckUnreadable(const std::string& Mod);
	/** Whether what the cook makes of the mod's packages has paths that Windows takes. */
	static FQVDiagnosticFinding CheckCookedPaths(const std::string& Mod, const FQVNameSet& Packages);
};
