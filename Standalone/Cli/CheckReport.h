// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVJson.h"
#include "Diagnostics/QVMapDiagnosticReport.h"

namespace QVCli
{
/** The diagnostics of one map, with what is needed to tell of them. */
struct FCheckReport
{
	FQVDiagnosticReport Report;
	/** Package of the map that was opened; empty if none was. */
	std::string Map;
	/** Full path of the folder that files are named from: the repository's, else the project's. */
	std::string Root;
};

/** What is counted: top-level findings. */
struct FCheckCounts
{
	std::int32_t Errors = 0;
	std::int32_t Warnings = 0;
	std::int32_t Notes = 0;
	std::int32_t Passes = 0;

	explicit FCheckCounts(const FQVDiagnosticReport& Report);
	/** `2 errors, 1 warning, 3 notes, 14 passed`. */
	std::string ToString() const;
};

/** A warning or an error, or one child of it. */
struct FCheckProblem
{
	EQVDiagSeverity Severity = EQVDiagSeverity::Error;
	/** Of the top-level finding. */
	std::string Id;
	std::string Title;
	std::string Message;
	/** Below the report's root; empty if it concerns no file there. */
	std::string File;
};

/** A report's parts in the order in which they are shown: group by group, in each the worst first. */
std::vector<const FQVDiagnosticFinding*> InShownOrder(const FQVDiagnosticReport& Report);
/** Over all groups the worst first. */
std::vector<FCheckProblem> ListProblems(const FCheckReport& Report);
/** `pass`, `info`, `warning`, `error`. */
std::string_view SeverityWord(EQVDiagSeverity Severity);
/** What to type to follow a finding's remedy; empty if no verb does it. */
std::string CommandFor(const FQVDiagnosticFinding& Finding, const std::string& Mod);
/** Full path of the nearest folder upward from Folder that holds `.git`; empty if none does. */
std::string FindRepository(std::string Folder);

/** Each the whole output, with a line end. */
std::string ToText(const FCheckReport& Report);
std::string ToHtml(const FCheckReport& Report);
std::string ToGithub(const FCheckReport& Report);
FQVJson ToJson(const FCheckReport& Report);
FQVJson ToSarif(const FCheckReport& Report, std::string_view Version);
} // namespace QVCli
