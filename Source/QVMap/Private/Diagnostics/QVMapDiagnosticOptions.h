// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticReport.h"

class IQVWorld;

/** What a finding's button starts that stands above the checks; filled in by whoever runs them. May be unbound. */
struct FQVDiagnosticActions
{
	std::function<void()> BuildBaseRelease;
};

/** What a run of the diagnostics is asked. */
struct FQVDiagnosticOptions
{
	/** Empty: the open map's. */
	std::string ModName;
	/** The world to inspect; may be null. */
	const IQVWorld* World = nullptr;
	/** Without a world: the editor's. */
	bool bUseEditorWorld = false;
	bool bEnvironment = false;
	bool bContent = false;
	bool bReferences = false;
	bool bLastExport = false;
	/** Progress dialog with its Cancel button. */
	bool bShowDialog = false;
	FQVDiagnosticActions Actions;

	/** All six flags on. */
	static FQVDiagnosticOptions Everything()
	{
		FQVDiagnosticOptions Options;
		Options.bUseEditorWorld = Options.bEnvironment = Options.bContent = true;
		Options.bReferences = Options.bLastExport = Options.bShowDialog = true;
		return Options;
	}
};

using FQVDiagnosticFindings = std::vector<FQVDiagnosticFinding>;
