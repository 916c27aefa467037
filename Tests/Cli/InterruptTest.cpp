// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"

#include "Standalone/Engine/OsPath.h"

#include <csignal>

using namespace QVTest;
namespace fs = std::filesystem;

namespace
{
class FInterrupted : public FScriptedToolsTest
{
protected:
	const fs::path Started = Temp.Path() / "started";
	const fs::path Finished = Temp.Path() / "finished";
	const FWords LongWork = {
		"write " + Started.string() + "|", "print at work", "sleep 30000", "write " + Finished.string() + "|"};

	FProgramEnd Interrupt(const FWords& Words, int Signal)
	{
		fs::remove(Started);
		FProgram Program(Start(Words));
		WaitUntil([this] { return fs::exists(Started); });
		Program.Signal(Signal);
		return Finish(Program);
	}

	static std::string Told(const std::string& Tool, const std::string& Failure)
	{
		return "error: interrupted\n  cause: <Engine>/Binaries/Win64/" + Tool +
			   " was ended by signal 15 (Terminated)\n  cause: " + Failure + "\n";
	}
};
} // namespace

TEST_F(FInterrupted, TheToolIsEndedAndTheProjectIsAsItWas)
{
	Project.Write("Saved/QVPak/Output/Cave_0badcafe.pak", "old");
	const FTree Before = Snapshot(Folder);
	Project.ScriptEditorCmd(LongWork);
	for (const int Signal : {SIGINT, SIGTERM, SIGHUP})
	{
		const FProgramEnd End = Interrupt({"base-release", "build"}, Signal);
		EXPECT_EQ(End.Code, 130);
		EXPECT_EQ(End.Out, "");
		EXPECT_EQ(
			WithoutProgress(End.Err), Told("UnrealEditor-Cmd.exe", "Base release cook failed with return code 143"));
		ExpectSameFiles(Before, Snapshot(Folder));
	}
	const FProgramEnd Cook = Interrupt({"pack", "Cave"}, SIGINT);
	EXPECT_EQ(Cook.Code, 130);
	EXPECT_EQ(WithoutProgress(Cook.Err), Told("UnrealEditor-Cmd.exe", "Cook failed with return code 143"));
	ExpectSameFiles(Before, Snapshot(Folder));

	Project.ScriptEditorCmd({CookHall});
	Project.ScriptUnrealPak(LongWork);
	const FProgramEnd Pack = Interrupt({"pack", "Cave"}, SIGINT);
	EXPECT_EQ(Pack.Code, 130);
	EXPECT_EQ(WithoutProgress(Pack.Err), Told("UnrealPak.exe", "UnrealPak failed with return code 143"));
	EXPECT_TRUE(Paks().empty());
	EXPECT_FALSE(fs::exists(Finished));
}

TEST_F(FInterrupted, AToolThatWillNotEndIsKilledAtTheSecondRequest)
{
	const fs::path Tool = QVStandalone::ToOsPath(Project.EngineDir()) / "Binaries/Win64/UnrealEditor-Cmd.exe";
	fs::remove(Tool);
	Put(Tool, "#!/bin/sh\ntrap ': > \"$0.asked\"' TERM\n: > \"$0.started\"\nwhile :; do sleep 0.1; done\n");
	fs::permissions(Tool, fs::perms::owner_all);
	const FTree Before = Snapshot(Folder);
	FProgram Program(Start({"base-release", "build"}));
	WaitUntil([&Tool] { return fs::exists(Tool.string() + ".started"); });
	Program.Signal(SIGINT);
	WaitUntil([&Tool] { return fs::exists(Tool.string() + ".asked"); });
	Program.Signal(SIGINT);
	const FProgramEnd End = Finish(Program);
	EXPECT_EQ(End.Code, 130);
	EXPECT_EQ(WithoutProgress(End.Err),
		"error: interrupted\n  cause: <Engine>/Binaries/Win64/UnrealEditor-Cmd.exe was ended by signal 9 (Killed)\n"
		"  cause: Base release cook failed with return code 137\n");
	ExpectSameFiles(Before, Snapshot(Folder));
}

TEST_F(FInterrupted, APakThatIsBeingWrittenDisappears)
{
	const fs::path Bin = QVMAP_TEST_BIN;
	Put("Huge/Huge.uexp", "");
	fs::resize_file(Folder / "Huge/Huge.uexp", std::uintmax_t{1} << 36); // no disk is used for it, only time
	Put("Huge/list.txt", "\"" + Project.At("Huge/Huge.uexp") + "\" \"../../../Cave/Content/Huge.uexp\"\n");
	const struct
	{
		fs::path File;
		FWords Words;
		int Code;
		const char* Out;
	} Cases[] = {
		{Bin / "qvmap", {"pak", "create", "Paks/Huge.pak", "Huge", "--compress"}, 130, ""},
		{Bin / "Engine/Binaries/Win64/UnrealPak.exe", {"Paks/Huge.pak", "-create=Huge/list.txt", "-compress"}, 1,
			"LogPakFile: Error: the work was stopped before the pak was done\n"},
	};
	fs::create_directory(Folder / "Paks");
	for (const auto& Case : Cases)
	{
		FProgramStart How = Start(Case.Words);
		How.File = Case.File;
		FProgram Program(How);
		WaitUntil([this] { return !fs::is_empty(Folder / "Paks"); });
		Program.Signal(SIGTERM);
		const FProgramEnd End = Finish(Program);
		EXPECT_EQ(End.Code, Case.Code) << End.Out << End.Err;
		EXPECT_TRUE(End.Out.ends_with(Case.Out)) << End.Out;
		EXPECT_TRUE(fs::is_empty(Folder / "Paks"));
	}
}
