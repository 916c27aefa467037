// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapDiagnostics.h"

#include "Tests/Diagnostics/DiagnosticsTestSupport.h"

#include <thread>

namespace
{
struct FDiagnostics : QVTest::FDiagnosticsTest
{
	QVTest::FRecordingTasks Tasks;

	FDiagnostics() { Engine.Interfaces.SlowTasks = &Tasks; }

	/** The driver's own line. */
	std::string Summary()
	{
		const std::string All = Logged();
		const std::size_t Begin = All.find("QVMap: Diagnostics for ");
		return Begin == std::string::npos ? "" : All.substr(Begin);
	}
	static std::string Groups(const FQVDiagnosticReport& Report)
	{
		std::string Text;
		for (const FQVDiagnosticFinding& Finding : Report.Findings)
		{
			const std::string Id = Finding.Id.ToString();
			const std::string Group = Id.substr(0, Id.find('.')) + " ";
			Text += Text.ends_with(Group) ? "" : Group;
		}
		return Text;
	}
};
} // namespace

TEST_F(FDiagnostics, WordsOfTheModel)
{
	const struct
	{
		EQVDiagCategory Category;
		const char* Text;
	} Categories[] = {
		{EQVDiagCategory::Environment, "CategoryEnvironment: Environment"},
		{EQVDiagCategory::ModContent, "CategoryModContent: Map Content"},
		{EQVDiagCategory::References, "CategoryReferences: Asset References"},
		{EQVDiagCategory::LastExport, "CategoryLastExport: Last Export"},
	};
	for (const auto& Each : Categories)
	{
		EXPECT_EQ(Describe(FQVMapDiagnostics::GetCategoryText(Each.Category)), Each.Text);
		EXPECT_EQ(FQVMapDiagnostics::GetCategoryText(Each.Category).GetNamespace(), "FQVMapDiagnostics");
	}
	const char* Icons[] = {"Icons.SuccessWithColor", "Icons.Info", "Icons.WarningWithColor", "Icons.ErrorWithColor"};
	for (int Severity = 0; Severity < 4; ++Severity)
	{
		EXPECT_EQ(FQVMapDiagnostics::GetSeverityIcon(static_cast<EQVDiagSeverity>(Severity)), Icons[Severity]);
	}
	const struct
	{
		std::int64_t Bytes;
		const char* Text;
	} Sizes[] = {
		{0, "BytesB: 0 B"},
		{1023, "BytesB: 1,023 B"},
		{1024, "BytesKB: 1 KB"},
		{1536, "BytesKB: 1.5 KB"},
		{1048575, "BytesKB: 1,023.999 KB"},
		{1048576, "BytesMB: 1 MB"},
		{5'000'000'000, "BytesMB: 4,768.372 MB"},
	};
	for (const auto& Each : Sizes)
	{
		EXPECT_EQ(Describe(FQVMapDiagnostics::FormatBytes(Each.Bytes)), Each.Text);
	}
}

TEST_F(FDiagnostics, CountsAndOrder)
{
	const auto Make = [](EQVDiagCategory Category, EQVDiagSeverity Severity, const char* Id)
	{ return FQVMapDiagnostics::MakeFinding(Category, Severity, Id, {}, {}, {}); };
	using enum EQVDiagCategory;
	using enum EQVDiagSeverity;
	FQVDiagnosticReport Report;
	Report.Findings = {Make(Environment, Pass, "1"), Make(ModContent, Error, "2"), Make(ModContent, Info, "3"),
		Make(ModContent, Error, "4"), Make(ModContent, Warning, "5"), Make(Environment, Info, "6")};
	Report.Findings[1].Children.assign(3, Make(ModContent, Error, "child"));
	EXPECT_EQ(FQVMapDiagnostics::CountBySeverity(Report, Error), 2);
	EXPECT_EQ(FQVMapDiagnostics::CountBySeverity(Report, Warning), 1);
	EXPECT_EQ(FQVMapDiagnostics::CountBySeverity(Report, Info), 2);
	EXPECT_EQ(FQVMapDiagnostics::CountBySeverity(Report, Pass), 1);
	const auto Ids = [&Report](EQVDiagCategory Category)
	{
		std::string Text;
		for (const FQVDiagnosticFinding* Each : FQVMapDiagnostics::WorstFirst(Report, Category))
		{
			Text += Each->Id.ToString();
		}
		return Text;
	};
	EXPECT_EQ(Ids(Environment), "61");
	EXPECT_EQ(Ids(ModContent), "2453");
	EXPECT_EQ(Ids(LastExport), "");
}

TEST_F(FDiagnostics, GroupsInOrderWithTheirProgress)
{
	Project.AddMod("Cave", {"Maps/Hall"});
	Scan();
	FQVDiagnosticOptions Options = FQVDiagnosticOptions::Everything();
	Options.ModName = "Cave";
	const FQVDiagnosticReport Report = FQVMapDiagnostics::RunDiagnostics(Options);
	EXPECT_EQ(Groups(Report), "Env Content Ref Export ");
	EXPECT_EQ(Report.ModName, "Cave");
	EXPECT_EQ(Report.Timestamp, Clock.Now());
	EXPECT_FALSE(Report.bCancelled);
	EXPECT_EQ(Tasks.Told, "begin 4 Running: QVMap: running diagnostics...\n"
						  "dialog 1 0\n"
						  "1 FrameEnv: Checking engine and base release...\n"
						  "1 FrameContent: Checking map content...\n"
						  "1 FrameRefs: Tracing asset references...\n"
						  "1 FrameExport: Reading the last export...\n"
						  "end\n");
	EXPECT_EQ(Summary(), QVPrintf("QVMap: Diagnostics for 'Cave' -- %d error(s), %d warning(s), %d pass(es)\n",
							 FQVMapDiagnostics::CountBySeverity(Report, EQVDiagSeverity::Error),
							 FQVMapDiagnostics::CountBySeverity(Report, EQVDiagSeverity::Warning),
							 FQVMapDiagnostics::CountBySeverity(Report, EQVDiagSeverity::Pass)));
}

TEST_F(FDiagnostics, CancelTakesEffectBetweenGroups)
{
	FQVDiagnosticOptions Options = FQVDiagnosticOptions::Everything();
	Options.bShowDialog = false;
	Options.bContent = false;
	const struct
	{
		int CancelAfter;
		bool bCancelled;
		const char* Groups;
	} Cases[] = {{0, true, ""}, {1, true, "Env "}, {2, true, "Env "}, {3, false, "Env Export "}};
	for (const auto& Case : Cases)
	{
		Tasks.CancelAfter = Case.CancelAfter;
		const FQVDiagnosticReport Report = FQVMapDiagnostics::RunDiagnostics(Options);
		EXPECT_EQ(Report.bCancelled, Case.bCancelled) << Case.CancelAfter;
		EXPECT_EQ(Groups(Report), Case.Groups) << Case.CancelAfter;
		EXPECT_EQ(Summary().ends_with(" pass(es) (cancelled)\n"), Case.bCancelled);
	}
	EXPECT_EQ(Tasks.Told.find("dialog"), std::string::npos);
}

TEST_F(FDiagnostics, NothingToRunIsOneUnit)
{
	const FQVDiagnosticReport Report = FQVMapDiagnostics::RunDiagnostics({});
	EXPECT_TRUE(Report.Findings.empty());
	EXPECT_EQ(Tasks.Told, "begin 1 Running: QVMap: running diagnostics...\nend\n");
	EXPECT_EQ(Summary(), "QVMap: Diagnostics for '' -- 0 error(s), 0 warning(s), 0 pass(es)\n");
	Engine.Interfaces.SlowTasks = nullptr;
	EXPECT_FALSE(FQVMapDiagnostics::RunDiagnostics({}).bCancelled);
}

TEST_F(FDiagnostics, TakesTheOpenMapWhereNoneIsGiven)
{
	Project.AddMod("Cave", {"Maps/Hall"});
	Scan();
	QVTest::FBareWorld World;
	Editor.World = &World;
	FQVDiagnosticOptions Options;
	Options.bContent = true;
	FQVDiagnosticReport Report = FQVMapDiagnostics::RunDiagnostics(Options);
	EXPECT_EQ(Report.ModName, "Cave");
	EXPECT_EQ(Describe(Report.Findings, "Content.MapSaved"), "") << "the editor's world was not asked for";
	Options.bUseEditorWorld = true;
	Report = FQVMapDiagnostics::RunDiagnostics(Options);
	EXPECT_NE(Describe(Report.Findings, "Content.MapSaved"), "");
	World.Path = "/Game/Hall.Hall";
	Options.bEnvironment = true;
	Report = FQVMapDiagnostics::RunDiagnostics(Options);
	EXPECT_EQ(Report.ModName, "");
	EXPECT_EQ(Groups(Report), "Env Content ");
}

TEST_F(FDiagnostics, BelongsToTheGameThread)
{
	GTEST_FLAG_SET(death_test_style, "threadsafe");
	EXPECT_DEATH(std::thread([] { FQVMapDiagnostics::RunDiagnostics({}); }).join(), "IsInGameThread\\(\\)");
}
