// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Interrupt.h"
#include "Tests/Standalone/ChildRun.h"
#include "Tests/Standalone/TestFiles.h"

#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>

using namespace QVStandalone;
namespace fs = std::filesystem;

namespace
{
/** A process that ended counts as dead also while nobody has asked for its code. */
bool IsAlive(int Process)
{
	std::string Status;
	std::getline(std::ifstream("/proc/" + std::to_string(Process) + "/stat"), Status);
	return !Status.empty() && Status.find(") Z") == std::string::npos;
}

class Processes : public testing::Test
{
protected:
	FTestFiles Files;
	FProcesses Real;
	FQVPipe Pipe;
	QVTest::FRecordingLog Log;

	void TearDown() override { FInterrupt::Reset(); }

	/** The full path of a program that does what the script says. */
	std::string MakeChild(std::string_view Script)
	{
		const char* Name = "Unreal tool.exe";
		Files.Put(std::string(Name) + ".script", Script);
		if (!Files.Has(Name))
		{
			fs::create_symlink(fs::path(QVMAP_TEST_BIN) / "qvmap-test-child", Files.OsPath(Name));
		}
		return Files(Name);
	}

	std::string MakeShellScript(std::string_view Commands)
	{
		const std::string Program = Files.Put("script.sh", std::string("#!/bin/sh\n").append(Commands));
		fs::permissions(Files.OsPath("script.sh"), fs::perms::owner_all);
		return Program;
	}

	FQVProcHandle Start(const std::string& Program, std::string_view Arguments = "")
	{
		Pipe = Real.CreatePipe();
		return Real.CreateProc(Program, Arguments, Pipe);
	}

	void ReadUntil(std::string& Output, std::string_view Awaited)
	{
		for (int Round = 0; Round < 3000 && !Output.ends_with(Awaited); ++Round)
		{
			Output += Real.ReadPipe(Pipe);
			Real.Sleep(0.01);
		}
		ASSERT_TRUE(Output.ends_with(Awaited)) << Output;
	}

	FChildEnd Watch(FQVProcHandle Process) { return WatchChild(Real, std::move(Process), std::move(Pipe)); }
};
} // namespace

TEST_F(Processes, ExitCodesAndDeathsAreTold)
{
	const struct
	{
		const char* Script;
		int Code;
		FLines Log;
	} Cases[] = {
		{"", 0, {}},
		{"exit 3", 3, {}},
		{"exit 255", 255, {}},
		{"abort", 134, {"Unreal tool.exe was ended by signal 6 (Aborted)"}},
		{"signal 9", 137, {"Unreal tool.exe was ended by signal 9 (Killed)"}},
		{"signal 15", 143, {"Unreal tool.exe was ended by signal 15 (Terminated)"}},
	};
	for (const auto& Case : Cases)
	{
		const FChildEnd End = Watch(Start(MakeChild("print before\n" + std::string(Case.Script))));
		EXPECT_EQ(End.Code, Case.Code) << Case.Script;
		EXPECT_EQ(End.Output, "before\n") << Case.Script;
		EXPECT_EQ(Files.Logged(Log), Case.Log) << Case.Script;
	}
}

TEST_F(Processes, ALongOutputArrivesWhole)
{
	std::string Expected;
	for (int Line = 1; Line <= 20'000; ++Line)
	{
		Expected += "line " + std::to_string(Line) + "\n";
	}
	const FChildEnd End = Watch(Start(MakeChild("lines 20000\nprint last\nexit 7")));
	EXPECT_TRUE(End.Output == Expected + "last\n") << End.Output.size() << " bytes, of " << Expected.size() + 5;
	EXPECT_EQ(End.Code, 7);
}

TEST_F(Processes, WhatWasWrittenBeforeTheEndIsReadAfterIt)
{
	FQVProcHandle Process = Start(MakeChild("lines 1000\nexit 2"));
	int Code = -1;
	while (!Real.GetProcReturnCode(Process, Code))
	{
		EXPECT_EQ(Code, -1) << "the code is touched while the child runs";
		Real.Sleep(0.001);
	}
	EXPECT_EQ(Code, 2);
	const std::string Output = Real.ReadPipe(Pipe);
	EXPECT_EQ(FQVString::NonEmptyLines(Output).size(), 1000);
	EXPECT_TRUE(Output.ends_with("line 1000\n"));
	EXPECT_EQ(Real.ReadPipe(Pipe), "");
}

TEST_F(Processes, LettersAreNotDamagedAndBadBytesReplaced)
{
	FQVProcHandle Process = Start(MakeChild("raw 61E282\nwait " + Files("go") + "\nraw AC62FF0AE282"));
	std::string Output;
	ReadUntil(Output, "a");
	EXPECT_EQ(Real.ReadPipe(Pipe), "") << "a cut letter stays back";
	Files.Put("go", "");
	Output += Watch(Process).Output;
	EXPECT_EQ(Output, "a€b\uFFFD\n\uFFFD\uFFFD") << "the child ended within a letter";
}

TEST_F(Processes, AGrandchildThatKeepsThePipeHoldsNobodyUp)
{
	const FChildEnd End = Watch(Start(MakeShellScript("sleep 300 &\necho $!\nexit 4\n")));
	EXPECT_EQ(End.Code, 4);
	const int Grandchild = std::atoi(End.Output.c_str());
	ASSERT_GT(Grandchild, 0) << End.Output;
	EXPECT_TRUE(IsAlive(Grandchild)) << "the run lasted as long as the grandchild";
	::kill(Grandchild, SIGKILL);
}

TEST_F(Processes, AProgramThatCannotStartGivesNoHandleAndAReason)
{
	Files.Put("plain.txt", "no program");
	Files.Put("windows.exe", "MZ");
	fs::permissions(Files.OsPath("plain.txt"), fs::perms::owner_read | fs::perms::owner_write);
	fs::permissions(Files.OsPath("windows.exe"), fs::perms::owner_all);
	for (const char* Program : {"gone.exe", "plain.txt", "windows.exe", "plain.txt/tool.exe"})
	{
		EXPECT_FALSE(Start(Files(Program), "-x").IsValid()) << Program;
	}
	EXPECT_EQ(Files.Logged(Log),
		(FLines{"gone.exe could not be started: No such file or directory",
			"plain.txt could not be started: Permission denied", "windows.exe could not be started: Exec format error",
			"plain.txt/tool.exe could not be started: Not a directory"}));
}

TEST_F(Processes, NoShellStandsBetween)
{
	const std::string Program = MakeChild("arguments " + Files("seen.txt"));
	EXPECT_EQ(
		Watch(Start(Program, R"("$HOME /*" ; * 'x `a` && | >out %PATH% ~ \"q\" "" "Höhle 洞" C:\Maps\ )")).Code, 0);
	EXPECT_EQ(
		Files.Get("seen.txt"), "$HOME /*\n;\n*\n'x\n`a`\n&&\n|\n>out\n%PATH%\n~\n\"q\"\n\nHöhle 洞\nC:\\Maps\\\n");
	EXPECT_FALSE(Files.Has("out"));
}

TEST_F(Processes, AChildHasNoInputAndItsComplaintsComeWithItsOutput)
{
	const FChildEnd End = Watch(Start(MakeShellScript("read Line || echo nothing to read\necho complaint >&2\n")));
	EXPECT_EQ(End.Output, "nothing to read\ncomplaint\n");
}

TEST_F(Processes, AnInterruptEndsTheChildAndStartsNoOther)
{
	FQVProcHandle Process = Start(MakeChild("print ready\nsleep 300000"));
	std::string Output;
	ReadUntil(Output, "ready\n");
	EXPECT_TRUE(Real.IsProcRunning(Process));
	FInterrupt::Raise();
	EXPECT_EQ(Watch(Process).Code, 143);
	EXPECT_FALSE(Start(MakeChild("exit 1")).IsValid());
	EXPECT_EQ(Files.Logged(Log), (FLines{"Unreal tool.exe was ended by signal 15 (Terminated)",
									 "Unreal tool.exe was not started: interrupted"}));
	FInterrupt::Reset();
	EXPECT_EQ(Watch(Start(MakeChild("exit 1"))).Code, 1);
}

TEST_F(Processes, ASecondInterruptKillsWithAllThatTheChildStarted)
{
	FQVProcHandle Process = Start(MakeShellScript("trap '' TERM\nsleep 300 &\necho $! ready\nwait\nsleep 300\n"));
	std::string Output;
	ReadUntil(Output, "ready\n");
	FInterrupt::Raise();
	EXPECT_TRUE(Real.IsProcRunning(Process));
	EXPECT_TRUE(Real.IsProcRunning(Process)) << "it was to ignore the first request";
	FInterrupt::Raise();
	Real.IsProcRunning(Process);
	siginfo_t Info = {};
	EXPECT_EQ(::waitid(P_ALL, 0, &Info, WEXITED | WNOWAIT), 0) << "no poll but the one above may kill it";
	EXPECT_EQ(Watch(Process).Code, 137);
	const int Grandchild = std::atoi(Output.c_str());
	ASSERT_GT(Grandchild, 0) << Output;
	for (int Round = 0; Round < 3000 && IsAlive(Grandchild); ++Round)
	{
		Real.Sleep(0.01);
	}
	EXPECT_FALSE(IsAlive(Grandchild));
}

TEST_F(Processes, SignalsAreCountedAsInterrupts)
{
	EXPECT_FALSE(FInterrupt::IsRaised());
	const int Signals[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ};
	std::vector<struct sigaction> Old;
	for (const int Signal : Signals)
	{
		::sigaction(Signal, nullptr, &Old.emplace_back());
	}
	FInterrupt::Install();
	for (const int Signal : Signals)
	{
		std::raise(Signal);
	}
	EXPECT_EQ(FInterrupt::Count(), 3) << "SIGPIPE and SIGXFSZ are no wish of the user's";
	FInterrupt::Reset();
	EXPECT_EQ(Watch(Start(MakeChild("signal 13"))).Code, 141) << "what we ignore must not be ignored by children";
	for (std::size_t Index = 0; Index < std::size(Signals); ++Index)
	{
		::sigaction(Signals[Index], &Old[Index], nullptr);
	}
}

TEST_F(Processes, ManyRunsLeaveNoFileOpenAndNoZombie)
{
	const auto CountOpenFiles = []
	{ return std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator()); };
	const std::string Program = MakeChild("print x");
	const std::ptrdiff_t Before = CountOpenFiles();
	for (int Round = 0; Round < 30; ++Round)
	{
		EXPECT_EQ(Watch(Start(Program)).Output, "x\n");
		Start(Files("gone.exe"));
		Real.ClosePipe(Pipe);
	}
	EXPECT_EQ(CountOpenFiles(), Before);
	EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
	EXPECT_EQ(errno, ECHILD);
}
