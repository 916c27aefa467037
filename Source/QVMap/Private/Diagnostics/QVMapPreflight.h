// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticReport.h"

#include <functional>
#include <string>

enum class EQVPreflightVerdict : std::uint8_t
{
	GoOn,
	/** The user has cancelled the check, not the pack. */
	GoOnUnchecked,
	Cancelled
};

/** What is to be packed. */
struct FQVPreflightOptions
{
	std::string ModName;
	/** Short name; may be empty. */
	std::string MapName;
	/** The map is the one that is open in the editor. */
	bool bOpenMap = false;
	/** What the check finds may be mended now: the mod's files are the user's own. */
	bool bMayMend = true;
};

struct FQVPreflightResult
{
	EQVPreflightVerdict Verdict = EQVPreflightVerdict::Cancelled;
	/** The user has seen what the required-actor rules say of this map. */
	bool bRequiredActorsCovered = false;
};

/** The diagnostics as the last question before a pack. */
struct FQVMapPreflight
{
	static constexpr std::string_view TextNamespace = "FQVMapPreflight";

	using FOpenDiagnostics = std::function<void(const FQVDiagnosticReport& Report)>;

	/** Game thread. Runs all groups and asks the user about errors and warnings, in one dialog. */
	static FQVPreflightResult Run(const FQVPreflightOptions& Options);
	/** Game thread. What brings a report to the front; without it the dialog has no button for that. */
	static void SetOpenDiagnostics(FOpenDiagnostics Open);
};
