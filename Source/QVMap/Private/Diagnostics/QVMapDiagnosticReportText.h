// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticReport.h"

/** Findings as plain text, for a terminal or to be pasted somewhere. Any thread. */
struct FQVDiagnosticReportText
{
	/** What to type to follow a finding's remedy, or nothing. May be unbound. */
	std::function<std::string(const FQVDiagnosticFinding&)> CommandFor;
	/** What a line has to go through. May be unbound. */
	std::function<std::string(std::string_view)> CleanLine;

	/** The line of a group, an empty one before it. */
	static std::string Heading(EQVDiagCategory Category);
	/** A finding without its children; children have a depth of 1 and more. */
	std::string Line(const FQVDiagnosticFinding& Finding, std::size_t Depth) const;
	/** A finding with its children. */
	std::string Tree(const FQVDiagnosticFinding& Finding, std::size_t Depth = 0) const;

private:
	std::string Clean(std::string_view Line) const;
	std::string Indented(std::string_view Text, std::size_t Blanks) const;
};
