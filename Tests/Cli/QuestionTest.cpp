// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/RedirectorPackage.h"
#include "Standalone/Formats/Package/SamplePackages.h"
#include "Tests/Cli/QuestionSupport.h"
#include "Tests/Support/TestPrograms.h"

#include <csignal>
#include <ostream>

using namespace QVTest;

namespace
{
using FQuestions = FQuestionTest;

struct FSituation
{
	const char* Key;
	const char* Title;
	/** What is there to answer with beside the safe way. */
	const char* Ways;
	const char* SafeWay;
	/** What must be answered before it comes. */
	FWords Before;
	bool bPakStays = false;
};

void PrintTo(const FSituation& Situation, std::ostream* Out)
{
	*Out << Situation.Key;
}

class FEachQuestion : public FQuestions, public testing::WithParamInterface<FSituation>
{
};

const FSituation Situations[] = {
	{"BaseReleaseMissingTitle", "Base Release Required", "--answer BaseReleaseMissingTitle=Yes, or --yes", "No", {}},
	{"BaseReleaseStaleTitle", "Base Release Out Of Date", "--answer BaseReleaseStaleTitle=Yes, or --yes", "No", {}},
	{"MapUnreadableTitle", "Map Not Readable", "--answer MapUnreadableTitle=PackAnyway, or --yes", "Cancel and Fix",
		{}},
	{"PreflightTitle", "Map Check",
		"--answer PreflightTitle=PackAnyway, or --answer PreflightTitle=OpenDiagnostics, or --yes", "Cancel and Fix",
		{}},
	{"UnsupportedContentTitle", "Unsupported Content", "--answer UnsupportedContentTitle=StripAndExport", "Cancel",
		{"PreflightTitle=PackAnyway"}},
	{"EmptyPakTitle", "Check This Map Before Using It", "--answer EmptyPakTitle=EmptyPakContinue, or --yes", "Stop", {},
		true},
};
} // namespace

TEST_P(FEachQuestion, UnansweredItStopsThePackAndTellsHowToAnswer)
{
	const FSituation& Each = GetParam();
	Prepare(Each.Key);
	const FTree Before = Snapshot(Folder);
	const FProgramEnd End = PackAnswering(Each.Before);
	ExpectStopped(End, std::string("question: ") + Each.Title + "\n");
	EXPECT_TRUE(End.Err.ends_with(std::string("\n  answer: ") + Each.SafeWay +
								  ", as there is nobody to ask\n  to answer otherwise: " + Each.Ways + "\n"))
		<< End.Err;
	EXPECT_EQ(End.Err.find("error: "), std::string::npos) << End.Err;
	EXPECT_EQ(End.Out.empty(), !Each.bPakStays) << End.Out;
	EXPECT_EQ(Paks().size(), Each.bPakStays ? 1U : 0U);
	if (!Each.bPakStays)
	{
		ExpectSameFiles(Before, Snapshot(Folder));
	}

	const FJson Json = FJson::parse(PackAnswering(Each.Before, {"--format", "json"}).Out);
	EXPECT_EQ(Json["stopped_at"], Each.Key);
	EXPECT_EQ(Json["success"], false);
	EXPECT_EQ(Json["error"], "");
	EXPECT_EQ(Json["map"], "/Cave/Maps/Hall");
	EXPECT_EQ(Json["project_put_back"], true);
	EXPECT_EQ(Json["pak"] != "", Each.bPakStays) << Json;
}

TEST_P(FEachQuestion, YesGoesOnButNeverChangesAMap)
{
	const FSituation& Each = GetParam();
	Prepare(Each.Key);
	const std::string Map = Get(HallFile);
	const FProgramEnd End = Pack({"--yes", "--format", "json"});
	const FJson Json = FJson::parse(End.Out);
	const bool bStrip = std::string_view(Each.Key) == "UnsupportedContentTitle";
	EXPECT_EQ(End.Code, bStrip ? 3 : 0) << End.Err;
	EXPECT_EQ(Json["success"], !bStrip);
	EXPECT_EQ(Json["stopped_at"], bStrip ? Each.Key : "");
	EXPECT_EQ(Paks().size(), bStrip ? 0U : 1U);
	EXPECT_EQ(Get(HallFile), Map);
	EXPECT_EQ(Get("Releases/1.0/QVMapToolchain.json").find("1.3"), std::string::npos) << "that was built anew";
}

INSTANTIATE_TEST_SUITE_P(
	All, FEachQuestion, testing::ValuesIn(Situations), [](const auto& Each) { return std::string(Each.param.Key); });

TEST_F(FQuestions, AnAnswerIsAKeyOrTheWordsOfAButton)
{
	Prepare("PreflightTitle");
	for (const char* Answer : {"PreflightTitle=PackAnyway", "preflighttitle=packanyway", "PreflightTitle=Pack Anyway",
			 "PreflightTitle=pack", "PreflightTitle=P"})
	{
		EXPECT_EQ(PackAnswering({Answer}).Code, 0) << Answer;
	}
	EXPECT_EQ(Run({"pack", "Hall", "--answer", "PreflightTitle=CancelAndFix", "--yes"}).Code, 3)
		<< "what was said of the question goes before what was said of all";
	EXPECT_EQ(PackAnswering({"Other=Yes", "PreflightTitle=PackAnyway"}).Code, 0);

	const FTree Before = Snapshot(Folder);
	for (const std::string Choice : {"Perhaps", "", "PackAnyways"})
	{
		ExpectStopped(PackAnswering({"PreflightTitle=" + Choice}),
			"error: '" + Choice +
				"' does not answer PreflightTitle, which takes CancelAndFix, PackAnyway, OpenDiagnostics\n");
	}
	for (const char* Malformed : {"PreflightTitle", "=PackAnyway", ""})
	{
		EXPECT_EQ(PackAnswering({Malformed}).Code, 2) << Malformed;
	}
	const FProgramEnd Report = PackAnswering({"PreflightTitle=OpenDiagnostics"});
	ExpectStopped(Report, "\nMap Content\n  error    A PlayerStart in the level\n");
	const FJson Json =
		FJson::parse(Run({"pack", "Hall", "--answer", "PreflightTitle=OpenDiagnostics", "--format", "json"}).Out);
	EXPECT_EQ(Json["stopped_at"], "PreflightTitle");
	ExpectSameFiles(Before, Snapshot(Folder));
}

TEST_F(FQuestions, LeftoverRedirectorsAreFixedWhereThatIsTheAnswer)
{
	Put("Saved/QVPak/config.json", R"({"import_external_assets": false})"); // it would bring the redirector along
	WriteBytes(Folder / "Plugins/Cave/Content/Rock.uasset",
		QVFormats::BuildAssetPackage({"/Cave/Rock", "/Script/Engine.StaticMesh", {}, {}, 700, 0}));
	WriteBytes(Folder / "Content/Old.uasset",
		QVFormats::BuildRedirectorPackage({"/Game/Old", "/Cave/Rock", "/Script/Engine", "StaticMesh"}));
	PutHall({.PackageName = {}, .Actors = QVFormats::PlayableActors(), .Meshes = {"/Game/Old"}});
	const FTree Before = Snapshot(Folder);
	EXPECT_NE(PackAnswering({}).Err.find("--answer PreflightTitle=FixRedirectors"), std::string::npos);
	ExpectSameFiles(Before, Snapshot(Folder));
	EXPECT_EQ(PackAnswering({"PreflightTitle=FixRedirectors"}).Code, 0);
	EXPECT_FALSE(Project.Exists("Content/Old.uasset"));
	EXPECT_NE(Get(HallFile), Before.at(HallFile));
	EXPECT_EQ(Pack().Code, 0) << "nothing is left to ask about";
}

TEST_F(FQuestions, OnATerminalTheUserTypes)
{
	QV_SKIP_ON_WINDOWS("no terminal is played here");
	Prepare("PreflightTitle");
	const struct
	{
		const char* Typed;
		int Code;
	} Cases[] = {{"2\n", 0}, {"pack\n", 0}, {" Pack Anyway \n", 0}, {"1\n", 3}, {"\n", 3}, {"\x04", 3},
		{"perhaps\n0\n4\n2\n", 0}, {"C\n", 3}, {"open\n", 3}};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.Typed);
		FProgram Program(StartOnTerminal({"-q", "pack", "Hall"}));
		ASSERT_TRUE(Program.AwaitOnTerminal("  your choice [1]: "));
		Program.Type(Case.Typed);
		const FProgramEnd End = FinishOnTerminal(Program);
		EXPECT_EQ(End.Code, Case.Code) << End.Out;
		EXPECT_EQ(End.Out.find("question: Map Check\n"), 0) << End.Out;
		EXPECT_NE(End.Out.find("\n  1) Cancel and Fix\n  2) Pack Anyway\n  3) Open Diagnostics\n"), std::string::npos);
		EXPECT_EQ(End.Out.find("nobody to ask"), std::string::npos);
		EXPECT_EQ(End.Out.find("  '4' is none of them\n") != std::string::npos,
			std::string_view(Case.Typed).find('4') != std::string_view::npos)
			<< End.Out;
		EXPECT_TRUE(End.Out.ends_with('\n')) << End.Out;
	}
}

TEST_F(FQuestions, AnInterruptAtThePromptLeavesAllAsItWas)
{
	QV_SKIP_ON_WINDOWS("no terminal is played here");
	Prepare("PreflightTitle");
	const FTree Before = Snapshot(Folder);
	for (const int Signal : {SIGINT, SIGTERM})
	{
		FProgram Program(StartOnTerminal({"-q", "pack", "Hall"}));
		ASSERT_TRUE(Program.AwaitOnTerminal("  your choice [1]: "));
		Program.Signal(Signal);
		const FProgramEnd End = FinishOnTerminal(Program);
		EXPECT_EQ(End.Code, 130);
		EXPECT_TRUE(End.Out.ends_with("  your choice [1]: \nerror: interrupted\n")) << End.Out;
		ExpectSameFiles(Before, Snapshot(Folder));
	}
}
