// SPDX-License-Identifier: MIT
#include "Interface/QVMapDiagnosticsPanel.h"

#include "Tests/Diagnostics/DiagnosticsTestSupport.h"

namespace
{
using enum EQVDiagSeverity;
using enum EQVDiagCategory;

/** Notes what it is told. */
struct FRecordingView : IQVDiagnosticsPanelView
{
	std::string Told;
	std::string Clipboard;
	std::function<void()> OnRunning;

	std::string Take() { return std::exchange(Told, {}); }

	void OnRowsChanged() override { Told += "rows "; }
	void OnSelectionChanged() override { Told += "selection "; }
	void OnRunningChanged() override
	{
		Told += "running ";
		if (OnRunning)
		{
			OnRunning();
		}
	}
	void ShowFolder(const std::string& Folder) override { Told += "folder " + Folder + " "; }
	void OpenFile(const std::string& File) override { Told += "file " + File + " "; }
	void BrowseToAssets(const std::vector<FQVAssetData>& Assets) override
	{
		Told += "assets " + Assets.front().GetObjectPath() + " ";
	}
	void SetClipboard(const std::string& Text) override { Clipboard = Text; }
};

struct FDiagnosticsPanel : QVTest::FDiagnosticsTest
{
	QVTest::FRecordingTasks Tasks;
	FRecordingView View;
	FQVMapDiagnosticsPanel Panel{View};

	FDiagnosticsPanel() { Engine.Interfaces.SlowTasks = &Tasks; }

	static FQVDiagnosticFinding Make(EQVDiagCategory Category, EQVDiagSeverity Severity, const char* Id,
		const char* Title, const char* Detail = "", const char* Remedy = "")
	{
		const auto Shown = [](const char* Text) { return FQVText::FromString(Text); };
		return FQVDiagnosticModel::MakeFinding(Category, Severity, Id, Shown(Title), Shown(Detail), Shown(Remedy));
	}
	/** Two groups, three levels. */
	FQVDiagnosticReport MadeUp() const
	{
		FQVDiagnosticReport Report;
		Report.ModName = "Cave";
		Report.Timestamp = Clock.Now();
		FQVDiagnosticFinding Missing =
			Make(References, Warning, "Ref.Missing", "All there", "2 gone.", "Restore them.");
		Missing.Children = {Make(References, Warning, "Ref.Missing.Hard", "/Game/Rock"),
			Make(References, Warning, "Ref.Missing.Soft", "/Game/Tree", "from /Cave/Hall")};
		Missing.Children[1].Children = {Make(References, Info, "Ref.Missing.Deep", "a leaf of it")};
		Report.Findings = {Make(References, Info, "Ref.Trusted", "In every game", "none"), Missing,
			Make(Environment, Pass, "Env.UnrealPak", "UnrealPak available"),
			Make(References, Error, "Ref.Audit", "Traced", "No maps.")};
		return Report;
	}
	/** A line for each row: depth as blanks, a star if it is selected, severity, title. */
	std::string Rows() const
	{
		constexpr std::string_view Words[] = {"pass", "info", "warning", "error"};
		std::string Text;
		for (std::size_t Row = 0; Row < Panel.GetRows().size(); ++Row)
		{
			const FQVDiagnosticsRow& Each = Panel.GetRows()[Row];
			Text += std::string(Each.Depth, ' ') + (Panel.IsSelected(Row) ? "*" : "") +
					std::string(Words[static_cast<std::size_t>(Each.Severity)]) + " " + Each.GetTitle().ToString() +
					"\n";
		}
		return Text;
	}
	std::size_t RowOf(std::string_view Title) const
	{
		std::size_t Row = 0;
		while (Row < Panel.GetRows().size() && Panel.GetRows()[Row].GetTitle().ToString() != Title)
		{
			++Row;
		}
		EXPECT_LT(Row, Panel.GetRows().size()) << Title;
		return Row;
	}
};
} // namespace

TEST_F(FDiagnosticsPanel, RowsAreTheReportWorstFirst)
{
	EXPECT_EQ(Rows(), "");
	EXPECT_EQ(View.Take(), "");
	Panel.Show(MadeUp());
	EXPECT_EQ(View.Take(), "rows ");
	EXPECT_EQ(Rows(), "pass Environment\n"
					  " pass UnrealPak available\n"
					  "error Asset References\n"
					  " error Traced\n"
					  " warning All there\n"
					  "  warning /Game/Rock\n"
					  "  warning /Game/Tree\n"
					  "   info a leaf of it\n"
					  " info In every game\n");
	EXPECT_EQ(Panel.GetSummary().ToString(), "1 error(s), 1 warning(s), 1 note(s), 1 passed");
	EXPECT_EQ(Panel.GetSummary().GetNamespace(), "SQVMapDiagnosticsPanel");
	EXPECT_EQ(View.Take(), "");
}

TEST_F(FDiagnosticsPanel, FilterBySeverityAndText)
{
	Panel.Show(MadeUp());
	View.Take();
	Panel.SetShown(Pass, false);
	Panel.SetShown(Error, false);
	EXPECT_EQ(View.Take(), "rows rows ");
	EXPECT_EQ(Rows(), "warning Asset References\n"
					  " warning All there\n"
					  "  warning /Game/Rock\n"
					  "  warning /Game/Tree\n"
					  "   info a leaf of it\n"
					  " info In every game\n");
	EXPECT_EQ(Panel.GetSummary().ToString(), "1 error(s), 1 warning(s), 1 note(s), 1 passed") << "of the whole report";
	const struct
	{
		const char* Text;
		const char* Rows;
	} Cases[] = {
		{"game/TREE", "warning Asset References\n warning All there\n  warning /Game/Tree\n   info a leaf of it\n"},
		{"leaf", "warning Asset References\n warning All there\n  warning /Game/Tree\n   info a leaf of it\n"},
		{"missing.hard", "warning Asset References\n warning All there\n  warning /Game/Rock\n"},
		{"restore", "warning Asset References\n warning All there\n  warning /Game/Rock\n  warning /Game/Tree\n"
					"   info a leaf of it\n"},
		{"NONE", "info Asset References\n info In every game\n"},
		{"No maps", ""},
	};
	for (const auto& Case : Cases)
	{
		Panel.SetFilter(Case.Text);
		EXPECT_EQ(Rows(), Case.Rows) << Case.Text;
	}
	Panel.SetFilter("");
	Panel.SetShown(Info, false);
	EXPECT_EQ(Rows(), "warning Asset References\n"
					  " warning All there\n"
					  "  warning /Game/Rock\n"
					  "  warning /Game/Tree\n"
					  "   info a leaf of it\n")
		<< "children go with their finding";
	EXPECT_TRUE(Panel.IsShown(Warning));
	EXPECT_FALSE(Panel.IsShown(Info));
}

TEST_F(FDiagnosticsPanel, SelectionOutlivesAFilterAndNoReport)
{
	Panel.Show(MadeUp());
	View.Take();
	Panel.SetSelected(RowOf("/Game/Rock"), true);
	Panel.SetSelected(RowOf("/Game/Rock"), true);
	Panel.SetSelected(RowOf("Traced"), true);
	Panel.SetSelected(99, true);
	EXPECT_EQ(View.Take(), "selection selection ");
	Panel.SetFilter("rock");
	EXPECT_EQ(Rows(), "warning Asset References\n warning All there\n  *warning /Game/Rock\n");
	Panel.SetFilter("");
	EXPECT_TRUE(Panel.IsSelected(RowOf("/Game/Rock")));
	EXPECT_FALSE(Panel.IsSelected(RowOf("Traced"))) << "it was out of sight";
	Panel.SetSelected(RowOf("/Game/Rock"), false);
	EXPECT_FALSE(Panel.IsSelected(RowOf("/Game/Rock")));
	View.Take();
	Panel.ClearSelection();
	EXPECT_EQ(View.Take(), "") << "there was none";
	Panel.SetSelected(RowOf("Environment"), true);
	Panel.Show(MadeUp());
	EXPECT_EQ(Rows().find('*'), std::string::npos);
	EXPECT_FALSE(Panel.IsSelected(99));
}

TEST_F(FDiagnosticsPanel, CopiesWhatAUserWouldPaste)
{
	Panel.Show(MadeUp());
	const std::string Head = "Cave  Nov 21, 2026, 6:05:09 PM\n";
	const std::string MissingRows = "  warning  All there\n"
									"           2 gone.\n"
									"           fix: Restore them.\n"
									"           warning  /Game/Rock\n"
									"           warning  /Game/Tree\n"
									"                    from /Cave/Hall\n"
									"                    note     a leaf of it\n";
	Panel.Copy();
	EXPECT_EQ(View.Clipboard, Head +
								  "\nEnvironment\n"
								  "  ok       UnrealPak available\n"
								  "\nAsset References\n"
								  "  error    Traced\n"
								  "           No maps.\n" +
								  MissingRows +
								  "  note     In every game\n"
								  "           none\n"
								  "\n1 error(s), 1 warning(s), 1 note(s), 1 passed\n");
	Panel.SetSelected(RowOf("All there"), true);
	Panel.SetSelected(RowOf("/Game/Tree"), true);
	EXPECT_EQ(Panel.ToText(), Head + "\nAsset References\n" + MissingRows) << "nothing twice";
	Panel.SetSelected(RowOf("All there"), false);
	Panel.SetSelected(RowOf("Environment"), true);
	EXPECT_EQ(Panel.ToText(), Head + "\nEnvironment\n"
									 "  ok       UnrealPak available\n"
									 "\nAsset References\n"
									 "  warning  /Game/Tree\n"
									 "           from /Cave/Hall\n"
									 "           note     a leaf of it\n");
	FQVDiagnosticReport Bare;
	Bare.Timestamp = Clock.Now();
	Bare.bCancelled = true;
	Panel.Show(Bare);
	EXPECT_EQ(
		Panel.ToText(), "Nov 21, 2026, 6:05:09 PM\n\n0 error(s), 0 warning(s), 0 note(s), 0 passed (cancelled)\n");
}

TEST_F(FDiagnosticsPanel, ButtonsDoWhatTheirFindingSays)
{
	FQVDiagnosticReport Report;
	int Calls = 0;
	const auto Add = [&Report](const char* Title, EQVDiagAction Kind, const char* Path, const char* Label = "Do")
	{
		FQVDiagnosticFinding& Finding = Report.Findings.emplace_back(Make(Environment, Error, "Env.X", Title));
		Finding.ActionKind = Kind;
		Finding.ActionPath = Path;
		Finding.ActionLabel = FQVText::FromString(Label);
		return &Finding;
	};
	Report.Findings.reserve(16);
	Add("folder", EQVDiagAction::OpenFolder, "/there");
	Add("no folder", EQVDiagAction::OpenFolder, "");
	Add("file", EQVDiagAction::OpenFile, "/there/x.log");
	Add("no label", EQVDiagAction::OpenFile, "/there/x.log", "");
	Add("none", EQVDiagAction::None, "/there");
	Add("assets", EQVDiagAction::BrowseToAssets, "")->ActionAssets = {
		{FQVName("/Cave/Rock"), FQVName("Rock"), FQVName("/Script/Engine.StaticMesh"), {}}};
	Add("no assets", EQVDiagAction::BrowseToAssets, "");
	Add("unbound", EQVDiagAction::Custom, "");
	Add("refuses", EQVDiagAction::Custom, "")->ActionCallback = [&Calls] { return ++Calls == 0; };
	Add("does it", EQVDiagAction::Custom, "")->ActionCallback = [&Calls] { return ++Calls > 0; };
	Panel.Show(Report);
	View.Take();
	const struct
	{
		const char* Title;
		const char* Told;
	} Cases[] = {{"folder", "folder /there "}, {"no folder", ""}, {"file", "file /there/x.log "}, {"no label", ""},
		{"none", ""}, {"assets", "assets /Cave/Rock.Rock "}, {"no assets", ""}, {"unbound", ""}, {"refuses", ""}};
	for (const auto& Case : Cases)
	{
		const std::size_t Row = RowOf(Case.Title);
		Panel.Act(Row);
		EXPECT_EQ(View.Take(), Case.Told) << Case.Title;
		EXPECT_EQ(Panel.GetRows()[Row].HasAction(), *Case.Told != '\0' || Case.Title == std::string("refuses"));
	}
	EXPECT_EQ(Calls, 1);
	EXPECT_FALSE(Panel.GetRows()[0].HasAction()) << "a heading";
	Panel.Act(0);
	Panel.Act(99);
	Panel.Act(RowOf("does it"));
	EXPECT_EQ(Calls, 2);
	EXPECT_EQ(View.Take(), "running rows running ") << "true: the report is run again";
	EXPECT_GT(Panel.GetRows().size(), 4U);
}

TEST_F(FDiagnosticsPanel, RunsAgainAndCanBeCancelledBetweenGroups)
{
	Project.AddMod("Cave", {"Maps/Hall"});
	Project.AddMod("Harbor", {"Maps/Pier"});
	Scan();
	EXPECT_EQ(FQVMapDiagnosticsPanel::GetMods(), (std::vector<std::string>{"Cave", "Harbor"}));
	bool bRunning = false;
	View.OnRunning = [&]
	{
		bRunning = !bRunning;
		EXPECT_EQ(Panel.IsRunning(), bRunning);
		if (bRunning)
		{
			Panel.Run(); // a click that comes too late
		}
	};
	Panel.SetMod("Harbor");
	Panel.Run();
	EXPECT_EQ(View.Take(), "running rows running ");
	EXPECT_EQ(Panel.GetReport().ModName, "Harbor");
	EXPECT_NE(Rows().find("error Last Export"), 0U);
	EXPECT_EQ(Tasks.Told.find("dialog 1 0\n"), Tasks.Told.find('\n') + 1) << "with its Cancel button";
	Tasks.CancelAfter = 1;
	Panel.SetMod("Cave");
	Panel.Run();
	EXPECT_TRUE(Panel.GetReport().bCancelled);
	EXPECT_TRUE(Panel.GetSummary().ToString().ends_with(" (cancelled)"));
	EXPECT_NE(Rows().find("Environment\n"), std::string::npos);
	EXPECT_EQ(Rows().find("Map Content\n"), std::string::npos);
	Tasks.CancelAfter = 1000;
	QVTest::FBareWorld World;
	Editor.World = &World;
	Panel.SetMod("");
	Panel.Run();
	EXPECT_EQ(Panel.GetReport().ModName, "Cave") << "the open map's";
	EXPECT_NE(Rows().find("Map Content\n"), std::string::npos);
	EXPECT_NE(Describe(Panel.GetReport().Findings, "Content.MapSaved"), "") << "the editor's world is looked at";
}

TEST_F(FDiagnosticsPanel, GivesTheFindingsTheirHigherActions)
{
	int Built = 0;
	FQVMapDiagnosticsPanel Building(View, {[&Built] { ++Built; }});
	Building.Run();
	const auto& Rows = Building.GetRows();
	const auto Row = std::find_if(Rows.begin(), Rows.end(),
		[](const FQVDiagnosticsRow& Each)
		{ return Each.Finding != nullptr && Each.Finding->Id == FQVName("Env.BaseRelease"); });
	ASSERT_NE(Row, Rows.end());
	Building.Act(static_cast<std::size_t>(Row - Rows.begin()));
	EXPECT_EQ(Built, 1);
}
