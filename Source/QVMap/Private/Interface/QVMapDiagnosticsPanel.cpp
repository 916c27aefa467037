// SPDX-License-Identifier: MIT
#include "Interface/QVMapDiagnosticsPanel.h"

#include "Core/QVString.h"
#include "Diagnostics/QVMapDiagnosticReportText.h"
#include "Diagnostics/QVMapDiagnostics.h"
#include "Workspace/QVMapScanner.h"

#include <algorithm>

FQVText FQVDiagnosticsRow::GetTitle() const
{
	return Finding != nullptr ? Finding->Title : FQVDiagnosticModel::GetCategoryText(Category);
}

bool FQVDiagnosticsRow::HasAction() const
{
	return Finding != nullptr && QVHasAction(*Finding);
}

FQVMapDiagnosticsPanel::FQVMapDiagnosticsPanel(IQVDiagnosticsPanelView& InView, FQVDiagnosticActions InActions)
	: View(InView)
	, Actions(std::move(InActions))
{
}

std::vector<std::string> FQVMapDiagnosticsPanel::GetMods()
{
	std::vector<std::string> Names;
	for (const FQVModInfo& Each : FQVMapScanner::ScanMods().Mods)
	{
		Names.push_back(Each.Name);
	}
	return Names;
}

void FQVMapDiagnosticsPanel::SetMod(std::string_view ModName)
{
	Mod = ModName;
}

void FQVMapDiagnosticsPanel::Run()
{
	if (bRunning)
	{
		return;
	}
	bRunning = true;
	View.OnRunningChanged();
	FQVDiagnosticOptions Options = FQVDiagnosticOptions::Everything();
	Options.ModName = Mod;
	Options.Actions = Actions;
	FQVDiagnosticReport NewReport = FQVMapDiagnostics::RunDiagnostics(Options);
	bRunning = false;
	Show(std::move(NewReport));
	View.OnRunningChanged();
}

void FQVMapDiagnosticsPanel::Show(FQVDiagnosticReport NewReport)
{
	Selection.clear();
	Report = std::move(NewReport);
	Rebuild();
}

FQVText FQVMapDiagnosticsPanel::GetSummary() const
{
	const auto Count = [this](EQVDiagSeverity Severity)
	{ return FQVDiagnosticModel::CountBySeverity(Report, Severity); };
	FQVText Counts(TextNamespace, "Summary", "{0} error(s), {1} warning(s), {2} note(s), {3} passed",
		Count(EQVDiagSeverity::Error), Count(EQVDiagSeverity::Warning), Count(EQVDiagSeverity::Info),
		Count(EQVDiagSeverity::Pass));
	return Report.bCancelled ? FQVText(TextNamespace, "SummaryCancelled", "{0} (cancelled)", std::move(Counts))
							 : Counts;
}

void FQVMapDiagnosticsPanel::SetShown(EQVDiagSeverity Severity, bool bShown)
{
	Shown[static_cast<std::size_t>(Severity)] = bShown;
	Rebuild();
}

void FQVMapDiagnosticsPanel::SetFilter(std::string_view Text)
{
	Filter = Text;
	Rebuild();
}

bool FQVMapDiagnosticsPanel::Matches(const FQVDiagnosticFinding& Finding) const
{
	const auto Has = [this](std::string_view Text) { return FQVString::ContainsIgnoreCase(Text, Filter); };
	return Filter.empty() || Has(Finding.Id.ToView()) || Has(Finding.Title.ToString()) ||
		   Has(Finding.Detail.ToString()) || Has(Finding.Remedy.ToString());
}

bool FQVMapDiagnosticsPanel::MatchesAnywhere(const FQVDiagnosticFinding& Finding) const
{
	return Matches(Finding) || std::ranges::any_of(Finding.Children,
								   [this](const FQVDiagnosticFinding& Child) { return MatchesAnywhere(Child); });
}

void FQVMapDiagnosticsPanel::Rebuild()
{
	Rows.clear();
	for (const EQVDiagCategory Category : {EQVDiagCategory::Environment, EQVDiagCategory::ModContent,
			 EQVDiagCategory::References, EQVDiagCategory::LastExport})
	{
		AddGroup(Category);
	}
	std::set<FKey> Kept;
	for (const FQVDiagnosticsRow& Row : Rows)
	{
		if (Selection.contains(KeyOf(Row)))
		{
			Kept.insert(KeyOf(Row));
		}
	}
	Selection = std::move(Kept);
	View.OnRowsChanged();
}

void FQVMapDiagnosticsPanel::AddGroup(EQVDiagCategory Category)
{
	const std::size_t Heading = Rows.size();
	for (const FQVDiagnosticFinding* Finding : FQVDiagnosticModel::WorstFirst(Report, Category))
	{
		if (IsShown(Finding->Severity) && MatchesAnywhere(*Finding))
		{
			AddFinding(*Finding, 1, Matches(*Finding));
		}
	}
	if (Rows.size() > Heading)
	{
		const EQVDiagSeverity Worst = Rows[Heading].Severity;
		Rows.insert(Rows.begin() + static_cast<std::ptrdiff_t>(Heading), {nullptr, Category, Worst, 0});
	}
}

void FQVMapDiagnosticsPanel::AddFinding(const FQVDiagnosticFinding& Finding, std::size_t Depth, bool bAll)
{
	Rows.push_back({&Finding, Finding.Category, Finding.Severity, Depth});
	for (const FQVDiagnosticFinding& Child : Finding.Children)
	{
		if (bAll || MatchesAnywhere(Child))
		{
			AddFinding(Child, Depth + 1, bAll || Matches(Child));
		}
	}
}

void FQVMapDiagnosticsPanel::SetSelected(std::size_t Row, bool bSelected)
{
	if (Row >= Rows.size() || IsSelected(Row) == bSelected)
	{
		return;
	}
	bSelected ? static_cast<void>(Selection.insert(KeyOf(Rows[Row])))
			  : static_cast<void>(Selection.erase(KeyOf(Rows[Row])));
	View.OnSelectionChanged();
}

void FQVMapDiagnosticsPanel::ClearSelection()
{
	if (!Selection.empty())
	{
		Selection.clear();
		View.OnSelectionChanged();
	}
}

bool FQVMapDiagnosticsPanel::IsSelected(std::size_t Row) const
{
	return Row < Rows.size() && Selection.contains(KeyOf(Rows[Row]));
}

void FQVMapDiagnosticsPanel::Act(std::size_t Row)
{
	if (bRunning || Row >= Rows.size() || !Rows[Row].HasAction())
	{
		return;
	}
	// whoever acts may show another report
	const FQVDiagnosticFinding Finding = *Rows[Row].Finding;
	if (QVRunAction(Finding, View))
	{
		Run();
	}
}

/** How far in a row stands in the text; nothing for a heading, and for what is not to be in it. */
std::vector<std::optional<std::size_t>> FQVMapDiagnosticsPanel::GetTextDepths() const
{
	std::vector<std::optional<std::size_t>> Depths;
	// of the selected row that the rows at hand are below
	std::optional<std::size_t> Top;
	for (std::size_t Place = 0; Place < Rows.size(); ++Place)
	{
		const FQVDiagnosticsRow& Row = Rows[Place];
		if (!Top || Row.Depth <= *Top)
		{
			Top = Selection.empty() || IsSelected(Place) ? std::optional(Row.Depth) : std::nullopt;
		}
		Depths.push_back(
			Top && Row.Finding != nullptr ? std::optional(Row.Depth - std::max<std::size_t>(*Top, 1)) : std::nullopt);
	}
	return Depths;
}

std::string FQVMapDiagnosticsPanel::ToText() const
{
	const FQVDiagnosticReportText Writer;
	std::string Text = Report.ModName + (Report.ModName.empty() ? "" : "  ") + Report.Timestamp.ToDisplayText() + "\n";
	const std::vector<std::optional<std::size_t>> Depths = GetTextDepths();
	const FQVDiagnosticFinding* Last = nullptr;
	for (std::size_t Place = 0; Place < Rows.size(); ++Place)
	{
		if (Depths[Place])
		{
			const FQVDiagnosticFinding& Finding = *Rows[Place].Finding;
			const bool bNewGroup = Last == nullptr || Last->Category != Finding.Category;
			Text += (bNewGroup ? Writer.Heading(Finding.Category) : "") + Writer.Line(Finding, *Depths[Place]);
			Last = &Finding;
		}
	}
	return Selection.empty() ? Text + "\n" + GetSummary().ToString() + "\n" : Text;
}
