// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticOptions.h"
#include "Interface/QVFindingAction.h"

#include <array>
#include <optional>
#include <set>

/** One line of the diagnostics panel: the heading of a group, a finding of it, or a finding below a finding. */
struct FQVDiagnosticsRow
{
	/** Null: a heading. Good until another report is shown. */
	const FQVDiagnosticFinding* Finding = nullptr;
	EQVDiagCategory Category = EQVDiagCategory::Environment;
	/** Of a heading the worst that is shown below it. */
	EQVDiagSeverity Severity = EQVDiagSeverity::Pass;
	/** 0 a heading, 1 a finding, 2 and more its children. */
	std::size_t Depth = 0;

	FQVText GetTitle() const;
	/** It has a button that does something. */
	bool HasAction() const;
};

/** What draws the panel. It asks the panel for what to draw when it is told that something has changed. */
class IQVDiagnosticsPanelView : public IQVFindingView
{
public:
	/** Another report, or another filter. Which rows are selected has changed with them. */
	virtual void OnRowsChanged() = 0;
	virtual void OnSelectionChanged() = 0;
	/** A run begins or is over; while it lasts the panel does nothing else. */
	virtual void OnRunningChanged() = 0;

	virtual void SetClipboard(const std::string& Text) = 0;
};

/**
 * The diagnostics panel without its drawing: the report as rows, which of them are shown and selected, and what their
 * buttons do. Game thread.
 */
class FQVMapDiagnosticsPanel
{
public:
	static constexpr std::string_view TextNamespace = "SQVMapDiagnosticsPanel";

	/** The view outlives the panel. Nothing is run yet. */
	explicit FQVMapDiagnosticsPanel(IQVDiagnosticsPanelView& InView, FQVDiagnosticActions InActions = {});

	/** The mods that can be picked. */
	static std::vector<std::string> GetMods();
	/** What the next run reports on; empty, as in the beginning: the open map's mod. */
	void SetMod(std::string_view ModName);
	/** Runs all groups; the user may cancel between two of them. Nothing if there is a run already. */
	void Run();
	bool IsRunning() const { return bRunning; }
	/** Shows a report that somebody else has made. */
	void Show(FQVDiagnosticReport NewReport);

	/** Groups in their order, in each the worst first, children below their finding. */
	const std::vector<FQVDiagnosticsRow>& GetRows() const { return Rows; }
	const FQVDiagnosticReport& GetReport() const { return Report; }
	/** How many findings of each kind the report has, shown or not. */
	FQVText GetSummary() const;

	/** Of findings below a heading; children go with theirs. All are shown in the beginning. */
	void SetShown(EQVDiagSeverity Severity, bool bShown);
	bool IsShown(EQVDiagSeverity Severity) const { return Shown[static_cast<std::size_t>(Severity)]; }
	/** Shows what has these letters, without case, in any of its texts or in its id, with the rows above and below. */
	void SetFilter(std::string_view Text);

	// Rows by their place. What is selected and still shown stays selected under another filter.
	void SetSelected(std::size_t Row, bool bSelected);
	void ClearSelection();
	bool IsSelected(std::size_t Row) const;

	/** What the row's button does; nothing without one. */
	void Act(std::size_t Row);
	/** Rows that are selected, each with those below it; all that are shown if none is. As a user would paste it. */
	std::string ToText() const;
	void Copy() const { View.SetClipboard(ToText()); }

private:
	/** A finding; for a heading its group. */
	using FKey = std::pair<const FQVDiagnosticFinding*, EQVDiagCategory>;

	IQVDiagnosticsPanelView& View;
	const FQVDiagnosticActions Actions;
	std::string Mod;
	FQVDiagnosticReport Report;
	std::vector<FQVDiagnosticsRow> Rows;
	std::array<bool, 4> Shown = {true, true, true, true};
	std::string Filter;
	std::set<FKey> Selection;
	bool bRunning = false;

	static FKey KeyOf(const FQVDiagnosticsRow& Row) { return {Row.Finding, Row.Category}; }
	std::vector<std::optional<std::size_t>> GetTextDepths() const;
	bool Matches(const FQVDiagnosticFinding& Finding) const;
	bool MatchesAnywhere(const FQVDiagnosticFinding& Finding) const;
	void Rebuild();
	void AddGroup(EQVDiagCategory Category);
	void AddFinding(const FQVDiagnosticFinding& Finding, std::size_t Depth, bool bAll);
};
