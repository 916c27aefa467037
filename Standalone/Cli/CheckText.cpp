// SPDX-License-Identifier: MIT
#include "Core/QVPrintf.h"
#include "Diagnostics/QVMapDiagnosticReportText.h"
#include "Standalone/Cli/CheckReport.h"
#include "Standalone/Cli/InspectReport.h"

namespace QVCli
{
namespace
{
std::string HeadLine(const FCheckReport& Report)
{
	const std::string& Mod = Report.Report.ModName;
	if (Mod.empty())
	{
		return "no map\n";
	}
	return EscapeControls(Report.Map.empty() ? Mod : Mod + "  " + Report.Map) + "\n";
}
} // namespace

std::string ToText(const FCheckReport& Report)
{
	const FQVDiagnosticReportText Writer{[&Report](const FQVDiagnosticFinding& Finding)
		{ return CommandFor(Finding, Report.Report.ModName); },
		EscapeControls};
	std::string Text = HeadLine(Report);
	const FQVDiagnosticFinding* Last = nullptr;
	for (const FQVDiagnosticFinding* Finding : InShownOrder(Report.Report))
	{
		const bool bNewGroup = Last == nullptr || Last->Category != Finding->Category;
		Text += (bNewGroup ? Writer.Heading(Finding->Category) : std::string()) + Writer.Tree(*Finding);
		Last = Finding;
	}
	return Text +
		   QVPrintf("\n%s%s\n", FCheckCounts(Report.Report).ToString(), Report.Report.bCancelled ? " (cancelled)" : "");
}
} // namespace QVCli
