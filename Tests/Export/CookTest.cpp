// SPDX-License-Identifier: MIT
#include "Export/QVMapCooker.h"

#include "Engine/QVEditor.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Support/TestPrograms.h"
#include "Tests/Support/ToolkitTest.h"

using namespace QVTest;

namespace
{
const std::string CookRoot = "Saved/Cooked/Windows/MapWork";
const std::string Rule = "QVMap DEBUG: ========================================\n";

class FCookTest : public FToolkitTest
{
protected:
	FProgressRecord Progress;

	FCookTest() { UseScriptedChildren(); }

	/** The child leaves a folder of the project. */
	void CookInto(const std::string& Place)
	{
		Children.Work = [this, Place] { Project.MakeFolder(Place); };
	}
	FQVCookResult Cook(const std::string& Mod = "Cave")
	{
		return FQVMapCooker::CookDLC(Mod, {"/Cave/Maps/Attic", "/Cave/Maps/Hall"}, Progress.Bind());
	}
};

class FWatchingEditor : public QVStandalone::FEditor
{
public:
	std::function<void()> OnFinish;

	void FinishAllCompilation() override { OnFinish(); }
};

std::string Lines(int First, int Last)
{
	std::string Text;
	for (int Line = First; Line <= Last; ++Line)
	{
		Text += QVPrintf("line %d\n", Line);
	}
	return Text;
}
} // namespace

TEST_F(FCookTest, TellsTheWholeStoryInTheLog)
{
	CookInto(CookRoot + "/Plugins/Cave/Content");
	Children.Chunks = {"cooking\n", "done"};
	const FQVCookResult Result = Cook();
	EXPECT_TRUE(Result.bSuccess);
	EXPECT_EQ(Result.ErrorMessage, "");
	EXPECT_EQ(Result.Output, "cooking\ndone");
	const std::string Command =
		"<Engine>/Binaries/Win64/UnrealEditor-Cmd.exe \"<Project>/MapWork.uproject\" -run=cook -targetplatform=Windows "
		"-basedonreleaseversion=1.0 -dlcname=Cave -map=/Cave/Maps/Attic+/Cave/Maps/Hall -diff -stdout -UTF8Output "
		"-NoLogTimes";
	ASSERT_EQ(Children.Commands.size(), 1u);
	EXPECT_EQ(Project.Mask(Children.Commands[0]), Command);
	const std::string CookedDir = "<Project>/Saved/Cooked/Windows/MapWork/Plugins/Cave/Content\n";
	EXPECT_EQ(Logged(), Rule + "QVMap DEBUG: COOK COMMAND DETAILS\n" + Rule +
							"QVMap DEBUG: Plugin: Cave\n"
							"QVMap DEBUG: Maps count: 2\n"
							"QVMap DEBUG:   Map[0]: /Cave/Maps/Attic\n"
							"QVMap DEBUG:   Map[1]: /Cave/Maps/Hall\n"
							"QVMap DEBUG: Final -map= string: /Cave/Maps/Attic+/Cave/Maps/Hall\n"
							"QVMap DEBUG: Full command: " +
							Command + "\n" + Rule +
							"QVMap DEBUG: Cook return code: 0\n"
							"QVMap DEBUG: Cook output (last 500 chars): ...cooking\ndone\n"
							"QVMap: Found cooked plugin dir at: " +
							CookedDir + "QVMap DEBUG: Looking for cooked dir at: " + CookedDir +
							"QVMap DEBUG: Staged root resolved to: <Project>/Saved/Cooked/Windows/MapWork\n"
							"QVMap: Cook successful. Output: " +
							CookedDir);
	EXPECT_EQ(Progress.Reports,
		(std::vector<std::string>{"cooking 0 Starting cook...", "cooking 0.0001 cooking", "cooking 1 Cook completed"}));
}

TEST_F(FCookTest, FindsEachCookedPlace)
{
	const std::string Places[] = {"Plugins/Cave/Saved/Cooked/Windows/MapWork/Plugins/Cave/Content",
		CookRoot + "/Plugins/Cave/Content", CookRoot + "/Content/Mods/Cave", CookRoot + "/Cave",
		"Saved/Cooked/Windows/NoEditor/MapWork/Plugins/Cave/Content"};
	const std::string StagedRoots[] = {"Plugins/Cave/Saved/Cooked/Windows/MapWork", CookRoot, CookRoot, CookRoot,
		"Saved/Cooked/Windows/NoEditor/MapWork"};
	for (std::size_t Index = 0; Index < std::size(Places); ++Index)
	{
		SCOPED_TRACE(Places[Index]);
		Project.Remove("Saved/Cooked");
		CookInto(Places[Index]);
		const FQVCookResult Result = Cook();
		EXPECT_EQ(Result.CookedDir, Project.At(Places[Index]));
		EXPECT_EQ(Result.StagedRoot, Project.At(StagedRoots[Index]));
		std::string Search;
		for (std::size_t Tried = 0; Index > 2 && Tried <= Index; ++Tried)
		{
			Search += "QVMap DEBUG: Checking alternative location: <Project>/" + Places[Tried] + "\n";
		}
		Search += Index > 2 ? "QVMap DEBUG: Found cooked files at: <Project>/" + Places[Index] + "\n" : "";
		const std::string Looking =
			"QVMap DEBUG: Looking for cooked dir at: <Project>/" + Places[Index > 2 ? 0 : Index] + "\n";
		const std::string Log = Logged();
		EXPECT_NE(Log.find(Looking + Search + "QVMap DEBUG: Staged root resolved to: "), std::string::npos) << Log;
	}

	CookInto(CookRoot + "/Plugins/MapWork/Content");
	EXPECT_EQ(Cook("MapWork").StagedRoot, Project.At(CookRoot + "/Plugins/MapWork")) << "a mod named as the project";
}

TEST_F(FCookTest, EachFailureHasItsMessage)
{
	const std::string Long = std::string(100, 'a') + FQVString::ReplaceAll(std::string(500, 'x'), "x", "ö");
	const struct
	{
		const char* What;
		const char* Mod;
		bool bStarts;
		std::optional<int> Code;
		std::string Error;
		int Children;
	} Cases[] = {
		{"a bad name", "a b", true, 0,
			"Plugin name 'a b' contains invalid character ' '. Allowed: letters, numbers, underscore, hyphen.", 0},
		{"no start", "Cave", false, 0, "Failed to launch UnrealEditor-Cmd.exe", 1},
		{"a bad code", "Cave", true, 3, "Cook failed with return code 3", 1},
		{"no code", "Cave", true, {}, "Cook failed with return code -1", 1},
		{"no folder", "Cave", true, 0,
			"Cook completed but cooked directory not found. Tried: "
			"<Project>/Plugins/Cave/Saved/Cooked/Windows/MapWork/Plugins/Cave/Content",
			1},
	};
	Children.Chunks = {"x\n", Long};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.What);
		Children.Commands.clear();
		Children.bStarts = Case.bStarts;
		Children.Code = Case.Code;
		const FQVCookResult Result = Cook(Case.Mod);
		EXPECT_FALSE(Result.bSuccess);
		EXPECT_EQ(Project.Mask(Result.ErrorMessage), Case.Error);
		EXPECT_EQ(Result.Output, Case.bStarts && Case.Children == 1 ? "x\n" + Long : "");
		EXPECT_EQ(Result.CookedDir + Result.StagedRoot, "");
		EXPECT_EQ(Children.Commands.size(), static_cast<std::size_t>(Case.Children));
		EXPECT_EQ(Children.OpenPipes + Children.OpenHandles, 0);
		const std::string Log = Logged();
		EXPECT_TRUE(Log.ends_with("Error: QVMap: " + Case.Error + "\n")) << Log;
		const bool bEnded = !Result.Output.empty();
		EXPECT_EQ(Log.find("(last 500 chars): ..." + Long.substr(100) + "\n") != std::string::npos, bEnded) << Log;
	}
}

TEST_F(FCookTest, AMissingEditorStopsBeforeAnythingIsDeleted)
{
	Project.MakeFolder(CookRoot + "/Plugins/Cave");
	std::filesystem::remove(QVStandalone::ToOsPath(Project.EngineDir() + "/Binaries/Win64/UnrealEditor-Cmd.exe"));
	EXPECT_EQ(Project.Mask(Cook().ErrorMessage),
		"UnrealEditor-Cmd.exe not found: <Engine>/Binaries/Win64/UnrealEditor-Cmd.exe");
	EXPECT_EQ(Logged(), "Error: QVMap: UnrealEditor-Cmd.exe not found: <Engine>/Binaries/Win64/UnrealEditor-Cmd.exe\n");
	EXPECT_TRUE(Project.Exists(CookRoot + "/Plugins/Cave"));
}

TEST_F(FCookTest, DeletesWhatAnEarlierCookLeftAndFlushesTheCompilerBeforeTheChildStarts)
{
	Project.Write("Plugins/Cave/Saved/Cooked/Windows/old.uasset", "");
	Project.Write(CookRoot + "/Plugins/Cave/Content/Deep/old.uasset", "");
	Project.Write(CookRoot + "/Plugins/Cavern/Content/other.uasset", "");
	std::string Story;
	FWatchingEditor Editor;
	Editor.OnFinish = [&]
	{
		Story += Engine.Interfaces.GameThread->IsInGameThread() ? "flushed on the game thread" : "flushed elsewhere";
		Story += Project.Exists("Plugins/Cave/Saved/Cooked") ? ", not clean" : ", clean";
	};
	Engine.Interfaces.Editor = &Editor;
	Children.Work = [&]
	{
		Story += ", child started";
		EXPECT_EQ(Project.FilesIn(CookRoot), (std::vector<std::string>{"Plugins/Cavern/Content/other.uasset"}));
		Project.MakeFolder(CookRoot + "/Cave");
	};
	bool bSuccess = false;
	Engine.GetGameThread().RunDedicatedUntilDone([&] { bSuccess = Cook().bSuccess; });
	EXPECT_TRUE(bSuccess);
	EXPECT_EQ(Story, "flushed on the game thread, clean, child started");
	const std::string Cleaned = "QVMap: Cleaned stale cooked files: <Project>/";
	EXPECT_TRUE(Logged().starts_with(
		Cleaned + "Plugins/Cave/Saved/Cooked\n" + Cleaned + "Saved/Cooked/Windows/MapWork/Plugins/Cave\n" + Rule));

	// what cannot be deleted stops nobody
	Children.Work = nullptr;
	Project.Write(CookRoot + "/Plugins/Cave/Content/old.uasset", "");
	Files.Refuse = [](std::string_view Operation, std::string_view) { return Operation == "delete"; };
	EXPECT_TRUE(Cook().bSuccess);
	EXPECT_TRUE(Logged().starts_with(Cleaned + "Saved/Cooked/Windows/MapWork/Plugins/Cave\n"));
}

TEST_F(FCookTest, CountsTheLinesOfEachChunk)
{
	CookInto(CookRoot + "/Cave");
	Children.Chunks = {"a\r\nb\r\n", "", "\n\r\n", "c", "d\n\n", Lines(1, 9494), Lines(9495, 9495), Lines(9496, 20'000),
		"the last words\n"};
	EXPECT_EQ(Cook().Output, FQVString::Join(Children.Chunks, ""));
	EXPECT_EQ(
		Progress.Reports, (std::vector<std::string>{"cooking 0 Starting cook...", "cooking 0.0002 b", "cooking 0.0002 ",
							  "cooking 0.0003 c", "cooking 0.0004 d", "cooking 0.9498 line 9494",
							  "cooking 0.9499 line 9495", "cooking 0.95 line 20000", "cooking 1 Cook completed"}));

	auto Target = std::make_shared<int>();
	int Reports = 0;
	const FQVCookProgress Bound(Target, [&Reports](std::string_view, float, std::string_view) { ++Reports; });
	Children.Work = nullptr;
	FQVMapCooker::CookDLC("Cave", {"/Cave/A"}, Bound);
	EXPECT_EQ(Reports, 9);
	Target.reset();
	EXPECT_TRUE(FQVMapCooker::CookDLC("Cave", {"/Cave/A"}, Bound).bSuccess);
	EXPECT_TRUE(FQVMapCooker::CookDLC("Cave", {"/Cave/A"}, {}).bSuccess);
	EXPECT_EQ(Reports, 9) << "the target is gone";
}

/** Not scripted: a program that runs. */
using FRealCookTest = FToolkitTest;

TEST_F(FRealCookTest, HandsTheChildItsArgumentsAndTakesAllItsOutput)
{
	Project.ScriptEditorCmd({"arguments " + Project.At("arguments.txt"), "lines 20000", "print all of them", "raw e282",
		"wait " + Project.At("go"), "raw ac0a", "write " + Project.At(CookRoot + "/Cave/Höhle.uasset") + "|x",
		"print the last words"});
	FProgressRecord Progress;
	Progress.OnMessage = [this](std::string_view Message)
	{
		if (Message == "all of them")
		{
			Project.Write("go", "");
		}
	};
	const FQVCookResult Result = FQVMapCooker::CookDLC("Cave", {"/Cave/Höhle", "/Cave/B"}, Progress.Bind());
	EXPECT_EQ(Result.ErrorMessage, "");
	EXPECT_EQ(Result.Output, Lines(1, 20'000) + "all of them\n€\nthe last words\n");
	EXPECT_EQ(Project.Mask(Project.Read("arguments.txt")),
		"<Project>/MapWork.uproject\n-run=cook\n-targetplatform=Windows\n-basedonreleaseversion=1.0\n-dlcname=Cave\n"
		"-map=/Cave/Höhle+/Cave/B\n-diff\n-stdout\n-UTF8Output\n-NoLogTimes\n");
	ASSERT_GE(Progress.Reports.size(), 3u);
	EXPECT_EQ(std::count(Progress.Reports.begin(), Progress.Reports.end(), "cooking 0.95 all of them"), 1);
	EXPECT_EQ(Progress.Reports.back(), "cooking 1 Cook completed");
}

TEST_F(FRealCookTest, JudgesAChildByItsReturnCodeAlone)
{
	const struct
	{
		std::vector<std::string> Script;
		std::string Error;
		const char* Output;
	} Cases[] = {
		{{"print LogCook: Error: all is lost"}, "", "LogCook: Error: all is lost\n"},
		{{"print fine", "exit 3"}, "Cook failed with return code 3", "fine\n"},
		{{"print oh", "abort"}, "Cook failed with return code " + std::to_string(AbortCode), "oh\n"},
		{{"signal 9"}, "Cook failed with return code " + std::to_string(SignalCode(9)), ""},
		{{"print a", "close-output", "sleep 30"}, "", "a\n"},
		{{"raw 61e282"}, "", "a\uFFFD\uFFFD"},
		{{"print a", "grandchild 3000"}, "", "a\n"},
	};
	for (const auto& Case : Cases)
	{
		std::vector<std::string> Script = Case.Script;
		Script.insert(Script.begin(), "write " + Project.At(CookRoot + "/Cave/a.uasset") + "|");
		Project.ScriptEditorCmd(Script);
		const FQVCookResult Result = FQVMapCooker::CookDLC("Cave", {"/Cave/A"}, {});
		EXPECT_EQ(Result.ErrorMessage, Case.Error);
		EXPECT_EQ(Result.Output, Case.Output);
	}
}
