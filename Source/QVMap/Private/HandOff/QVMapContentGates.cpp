// SPDX-License-Identifier: MIT
#include "HandOff/QVMapContentGates.h"

#include "Content/QVMapSecurityScanner.h"
#include "Core/QVLog.h"
#include "Core/QVString.h"
#include "Diagnostics/QVMapRequiredActors.h"
#include "Engine/QVDialogs.h"
#include "Engine/QVEngine.h"
#include "Engine/QVWorld.h"

#include <algorithm>

namespace
{
constexpr std::string_view TextNamespace = "QVMap";

FQVCustomDialog MakePlayabilityDialog(const FQVPlayRequest& Request, const FQVRequiredActorsReport& Report)
{
	const FQVText Fix{TextNamespace, "CancelAndFix", "Cancel and Fix"};
	const FQVText Pack{TextNamespace, "PackAnyway", "Pack Anyway"};
	const bool bErrors = FQVMapRequiredActors::HasErrors(Report);
	FQVCustomDialog Dialog;
	Dialog.Title = {TextNamespace, "PlayabilityTitle", "Map Playability Check"};
	Dialog.Body = {TextNamespace, "PlayabilityBody", "{0} is missing something it needs to play:\n\n{1}\n{2}",
		Request.MapName.empty() ? Request.ModName : Request.MapName, FQVMapRequiredActors::FormatProblems(Report),
		bErrors ? FQVText{TextNamespace, "PlayabilityErrorFooter",
					  "Packed as it stands, the map loads and mounts correctly and still cannot be played."}
				: FQVText{TextNamespace, "PlayabilityWarnFooter",
					  "This is a warning, not a failure - packing will work either way."}};
	Dialog.Buttons = bErrors ? std::vector{Fix, Pack} : std::vector{Pack, Fix};
	Dialog.Cancel = bErrors ? 0 : 1;
	Dialog.GoOn = 1 - Dialog.Cancel;
	return Dialog;
}

bool IsOfLevelBlueprint(const FQVSecurityViolation& Violation)
{
	return FQVString::EqualsIgnoreCase(Violation.Category, FQVSecurityViolation::LevelBlueprint);
}

std::string FormatViolations(const FQVSecurityScanResult& Scan)
{
	std::string List;
	for (const FQVSecurityViolation& Violation : Scan.Violations)
	{
		List += QVPrintf("  \u2022 [%s] %s\n", Violation.Category, Violation.Detail);
	}
	return List;
}

/** Whether the user has the Level Blueprint's code taken out. */
bool AskToStrip(const FQVSecurityScanResult& Scan, bool bAllOfLevelBlueprint)
{
	FQVCustomDialog Dialog;
	Dialog.Title = {TextNamespace, "UnsupportedContentTitle", "Unsupported Content"};
	Dialog.Body = {TextNamespace, "UnsupportedContentBody",
		"This map contains content that is not supported.\nThe game refuses to load a map containing it, so "
		"packing\nis blocked until it is removed.\n\nNot supported:\n{0}\nRemove these, or replace them with supported "
		"assets, then pack again.",
		FormatViolations(Scan)};
	const bool bStrip = std::ranges::any_of(Scan.Violations, &IsOfLevelBlueprint);
	if (bAllOfLevelBlueprint)
	{
		Dialog.Buttons.emplace_back(TextNamespace, "StripAndExport", "Strip Level Blueprint & Export as Map");
	}
	else if (bStrip)
	{
		Dialog.Buttons.emplace_back(TextNamespace, "StripLevelBP", "Strip Level Blueprint");
	}
	Dialog.Cancel = Dialog.Buttons.size();
	Dialog.Buttons.emplace_back(TextNamespace, "CancelExport", "Cancel");
	return FQVEngine::Get().Dialogs->ShowCustomDialog(Dialog) != Dialog.Cancel;
}

void TellNotStripped()
{
	QVLog(EQVLogVerbosity::Log, "QVMap: Pack blocked - the Level Blueprint could not be stripped");
	FQVEngine::Get().Dialogs->ShowMessage(
		{TextNamespace, "StripFailed",
			"The Level Blueprint could not be stripped, so nothing was packed. The log says why.\n\nDelete all nodes "
			"of "
			"the Level Blueprint by hand, compile it and save the map, then pack again."},
		{TextNamespace, "RemainingIssuesTitle", "Unsupported Content"});
}

/** Whether the map qualifies when the Level Blueprint is gone. */
bool PassRemaining(const FQVPlayRequest& Request, const IQVWorld& World)
{
	const FQVSecurityScanResult Left = FQVMapSecurityScanner::ScanForMapEligibility(Request.ModName, &World, {});
	if (Left.bIsMap)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: All issues resolved after strip, packing as map");
		return true;
	}
	FQVEngine::Get().Dialogs->ShowMessage(
		{TextNamespace, "RemainingIssues",
			"Level Blueprint was stripped, but unsupported content remains:\n\n{0}\nRemove these, or replace them with "
			"supported assets, then pack again.",
			FormatViolations(Left)},
		{TextNamespace, "RemainingIssuesTitle", "Unsupported Content"});
	QVLog(EQVLogVerbosity::Log, "QVMap: Pack blocked - unsupported content remains after strip");
	return false;
}
} // namespace

bool FQVMapContentGates::PassPlayability(const FQVPlayRequest& Request, const IQVWorld& World)
{
	const FQVRequiredActorsReport Report = FQVMapRequiredActors::EvaluateRequiredActors(&World);
	if (!FQVMapRequiredActors::HasProblems(Report))
	{
		return true;
	}
	const FQVCustomDialog Dialog = MakePlayabilityDialog(Request, Report);
	if (FQVEngine::Get().Dialogs->ShowCustomDialog(Dialog) != Dialog.GoOn)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Export cancelled - map failed the playability check");
		return false;
	}
	QVLog(EQVLogVerbosity::Warning, "QVMap: Packing '%s' despite the playability check", Request.ModName);
	return true;
}

bool FQVMapContentGates::PassSupported(
	const FQVPlayRequest& Request, const IQVWorld& World, const FQVNameSet& UsedPackages)
{
	const FQVSecurityScanResult Scan =
		FQVMapSecurityScanner::ScanForMapEligibility(Request.ModName, &World, UsedPackages);
	if (Scan.bIsMap)
	{
		return true;
	}
	const bool bAllOfLevelBlueprint = std::ranges::all_of(Scan.Violations, &IsOfLevelBlueprint);
	if (!AskToStrip(Scan, bAllOfLevelBlueprint))
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Pack blocked - unsupported content, user cancelled");
		return false;
	}
	if (!FQVMapSecurityScanner::StripLevelBlueprint(&World))
	{
		TellNotStripped();
		return false;
	}
	if (!bAllOfLevelBlueprint)
	{
		return PassRemaining(Request, World);
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Level Blueprint stripped, proceeding as map");
	return true;
}
