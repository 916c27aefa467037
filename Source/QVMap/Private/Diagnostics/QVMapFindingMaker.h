// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticReport.h"

/** What a group of checks writes its findings with. Any thread. */
struct FQVFindingMaker : FQVDiagnosticModel
{
	EQVDiagCategory Category;

	constexpr explicit FQVFindingMaker(EQVDiagCategory InCategory)
		: Category(InCategory)
	{
	}

	/** Text that is shown as it is: a path, a name. */
	static FQVText Shown(std::string_view Source) { return FQVText::FromString(Source); }

	FQVDiagnosticFinding Pass(std::string_view Id, FQVText Title, FQVText Detail) const
	{
		return MakePassFinding(Category, Id, std::move(Title), std::move(Detail));
	}
	FQVDiagnosticFinding Make(
		EQVDiagSeverity Severity, std::string_view Id, FQVText Title, FQVText Detail, FQVText Remedy = {}) const
	{
		return MakeFinding(Category, Severity, Id, std::move(Title), std::move(Detail), std::move(Remedy));
	}

	// Each gives the finding a button.
	static void OfferFolderOf(FQVDiagnosticFinding& Finding, std::string_view File);
	static void OfferFile(FQVDiagnosticFinding& Finding, FQVText Label, std::string_view File);
	/** The package that would have to be changed; no button if the asset is none. */
	static void OfferReferencer(FQVDiagnosticFinding& Finding, const FQVAssetData& Referencer);
};
