// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Formats/Windows/Win32.h"
#include "Tests/Standalone/ChildRun.h"
#include "Tests/Standalone/TestFiles.h"
#include "Tests/Support/TestPrograms.h"

#include <gtest/gtest.h>

using namespace QVStandalone;

namespace
{
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
			QVTest::PlaceTestChild(Files.OsPath(Name));
		}
		return Files(Name);
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

TEST_F(Processes, ExitCodesAreTheirThirtyTwoBitsAndExceptionsAreTold)
{
	const struct
	{
		const char* Script;
		unsigned Code;
		FLines Log;
	} Cases[] = {
		{"", 0, {}},
		{"exit 3", 3, {}},
		{"exit 259", 259, {}}, // the system's word for a program that still runs
		{"exit -1", 0xFFFFFFFF, {"Unreal tool.exe was ended by exception 0xFFFFFFFF"}},
		{"abort", 0xC0000005, {"Unreal tool.exe was ended by exception 0xC0000005"}},
	};
	for (const auto& Case : Cases)
	{
		const FChildEnd End = Watch(Start(MakeChild("print before\n" + std::string(Case.Script))));
		EXPECT_EQ(static_cast<unsigned>(End.Code), Case.Code) << Case.Script;
		EXPECT_EQ(End.Output, "before\n") << Case.Script;
		EXPECT_EQ(Files.Logged(Log), Case.Log) << Case.Script;
	}
}

TEST_F(Processes, ALongOutputArrivesWholeAndLettersUndamaged)
{
	std::string Expected;
	for (int Line = 1; Line <= 20'000; ++Line)
	{
		Expected += "line " + std::to_string(Line) + "\n";
	}
	const FChildEnd Long = Watch(Start(MakeChild("lines 20000\nprint last\nexit 7")));
	EXPECT_TRUE(Long.Output == Expected + "last\n") << Long.Output.size() << " bytes, of " << Expected.size() + 5;
	EXPECT_EQ(Long.Code, 7);

	FQVProcHandle Process = Start(MakeChild("raw 61E282\nwait " + Files("go") + "\nraw AC62FF0AE282"));
	std::string Output;
	ReadUntil(Output, "a");
	EXPECT_EQ(Real.ReadPipe(Pipe), "") << "a cut letter stays back";
	Files.Put("go", "");
	Output += Watch(Process).Output;
	EXPECT_EQ(Output, "a€b\uFFFD\n\uFFFD\uFFFD") << "the child ended within a letter";
}

TEST_F(Processes, ArgumentsArriveAsTheyAreWrittenWhateverTheirLetters)
{
	const std::string Program = MakeChild("arguments " + Files("seen.txt"));
	EXPECT_EQ(Watch(Start(Program, R"("%PATH% /*" ; \"q\" "" "Zoë 東京" C:\Maps\ "D:\a b\\")")).Code, 0);
	EXPECT_EQ(Files.Get("seen.txt"), "%PATH% /*\n;\n\"q\"\n\nZoë 東京\nC:\\Maps\\\nD:\\a b\\\n");
}

TEST_F(Processes, AProgramThatCannotStartGivesNoHandleAndAReason)
{
	Files.Put("plain.txt", "no program");
	for (const char* Program : {"gone.exe", "plain.txt", "plain.txt/tool.exe"})
	{
		EXPECT_FALSE(Start(Files(Program), "-x").IsValid()) << Program;
	}
	EXPECT_EQ(Files.Logged(Log), (FLines{"gone.exe could not be started: No such file or directory",
									 "plain.txt could not be started: Exec format error",
									 "plain.txt/tool.exe could not be started: Not a directory"}));
}

TEST_F(Processes, AnInterruptEndsTheChildWithAllThatItStartedAndStartsNoOther)
{
	FQVProcHandle Process = Start(MakeChild("grandchild 300000\nprint ready\nsleep 300000"));
	ASSERT_TRUE(Process.IsValid()) << FQVString::Join(Files.Logged(Log), "\n");
	std::string Output;
	ReadUntil(Output, "ready\n");
	EXPECT_TRUE(Real.IsProcRunning(Process));
	FInterrupt::Raise();
	const FChildEnd End = Watch(Process); // the grandchild holds the pipe as long as it lives
	EXPECT_EQ(static_cast<unsigned>(End.Code), 0xC000013A);
	EXPECT_FALSE(Start(MakeChild("exit 1")).IsValid());
	EXPECT_EQ(Files.Logged(Log),
		(FLines{"Unreal tool.exe was ended: interrupted", "Unreal tool.exe was not started: interrupted"}));
}

TEST_F(Processes, NothingOfOursIsInheritedButThePipe)
{
	Files.Put("held.txt", "");
	const FQVPipe Unrelated = Real.CreatePipe();
	SECURITY_ATTRIBUTES Inheritable = {sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
	QVFormats::FWinHandle Held(::CreateFileW(QVFormats::WidePath(Files.OsPath("held.txt")).c_str(), GENERIC_READ, 0,
		&Inheritable, OPEN_EXISTING, 0, nullptr));
	ASSERT_TRUE(Held.IsValid());
	FQVProcHandle Process = Start(MakeChild("print ready\nwait " + Files("go")));
	std::string Output;
	ReadUntil(Output, "ready\n");
	Held.Close();
	// shared with nobody: it opens only if the child does not hold it
	const QVFormats::FWinHandle Again(::CreateFileW(
		QVFormats::WidePath(Files.OsPath("held.txt")).c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
	EXPECT_TRUE(Again.IsValid());
	Files.Put("go", "");
	EXPECT_EQ(Watch(Process).Code, 0);
}

TEST_F(Processes, ADetachedProgramStartsInTheFolderThatIsNamed)
{
	const std::string Game = MakeChild("arguments seen\nwrite done|");
	FQVProcHandle Process = Real.CreateDetachedProc(Game, R"(-pak="a b" -log)", Files(""));
	ASSERT_TRUE(Process.IsValid());
	Real.CloseProc(Process);
	for (int Round = 0; Round < 3000 && !Files.Has("done"); ++Round)
	{
		Real.Sleep(0.01);
	}
	EXPECT_EQ(Files.Get("seen"), "-pak=a b\n-log\n");
}
