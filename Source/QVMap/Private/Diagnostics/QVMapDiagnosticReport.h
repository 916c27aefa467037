// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVDateTime.h"
#include "Core/QVName.h"
#include "Core/QVText.h"
#include "Engine/QVAssetRegistry.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/** Worse is larger. Info tells something without judging it: neither a pass nor a problem. */
enum class EQVDiagSeverity : std::uint8_t
{
	Pass = 0,
	Info = 1,
	Warning = 2,
	Error = 3
};

/** The group that a finding is shown under; in the order in which the groups run. */
enum class EQVDiagCategory : std::uint8_t
{
	/** Ids begin with "Env." */
	Environment = 0,
	/** Ids begin with "Content." */
	ModContent = 1,
	/** Ids begin with "Ref." */
	References = 2,
	/** Ids begin with "Export." */
	LastExport = 3
};

/** What a finding's button does; carried out by whoever shows the report. */
enum class EQVDiagAction : std::uint8_t
{
	None = 0,
	/** Shows the folder ActionPath, if that is not empty. */
	OpenFolder = 1,
	/** Opens the file ActionPath with the program for its kind, if that is not empty. */
	OpenFile = 2,
	/** Shows ActionAssets in the content browser, if there are any. */
	BrowseToAssets = 3,
	/** Runs ActionCallback, if it is bound; when that gives true, the report is run again. */
	Custom = 4
};

/** One row of a report. A value: copies share nothing but what a callback captured. */
struct FQVDiagnosticFinding
{
	EQVDiagCategory Category = EQVDiagCategory::Environment;
	EQVDiagSeverity Severity = EQVDiagSeverity::Pass;
	/** Stable from version to version; what a finding is selected by. */
	FQVName Id;
	/** What was checked, worded as the good state whatever the outcome: "UnrealPak available". */
	FQVText Title;
	/** What was found. */
	FQVText Detail;
	/** What to do; empty on a pass. */
	FQVText Remedy;
	/** The button's caption; empty means no button. */
	FQVText ActionLabel;
	EQVDiagAction ActionKind = EQVDiagAction::None;
	/** Target of OpenFolder and OpenFile. */
	std::string ActionPath;
	/** Targets of BrowseToAssets. */
	std::vector<FQVAssetData> ActionAssets;
	/** Target of Custom. Game thread. */
	std::function<bool()> ActionCallback;
	/** Shown nested below this row. */
	std::vector<FQVDiagnosticFinding> Children;
};

/** What stands between one map and a working pak. */
struct FQVDiagnosticReport
{
	/** The mod that was reported on; empty if none could be determined. */
	std::string ModName;
	/** When the run began, local time. */
	FQVDateTime Timestamp;
	/** The user cancelled: only the groups that ran before are in it. */
	bool bCancelled = false;
	/** In the order in which they were found. */
	std::vector<FQVDiagnosticFinding> Findings;
};

/** What is done with the report's parts without running anything. Any thread. */
struct FQVDiagnosticModel
{
	/** Namespace of the texts of report, driver and groups. */
	static constexpr std::string_view TextNamespace = "FQVMapDiagnostics";

	/** A text of this namespace. */
	template<class... Args>
	static FQVText Text(std::string_view Key, std::string_view Source, Args&&... Arguments)
	{
		return {TextNamespace, Key, Source, std::forward<Args>(Arguments)...};
	}

	static FQVDiagnosticFinding MakeFinding(EQVDiagCategory Category, EQVDiagSeverity Severity, std::string_view Id,
		FQVText Title, FQVText Detail, FQVText Remedy);
	static FQVDiagnosticFinding MakePassFinding(
		EQVDiagCategory Category, std::string_view Id, FQVText Title, FQVText Detail);

	/** A group's findings to be shown: worst first, and of one severity in the order in which they were found. */
	static std::vector<const FQVDiagnosticFinding*> WorstFirst(
		const FQVDiagnosticReport& Report, EQVDiagCategory Category);
	/** Top-level findings of that severity; children are not counted. */
	static std::int32_t CountBySeverity(const FQVDiagnosticReport& Report, EQVDiagSeverity Severity);
	/** Heading of a group. */
	static FQVText GetCategoryText(EQVDiagCategory Category);
	/** Name of the icon in the editor's style. */
	static std::string_view GetSeverityIcon(EQVDiagSeverity Severity);
	/** "123 B", "1.5 KB", "4.25 MB". */
	static FQVText FormatBytes(std::int64_t Bytes);
};
