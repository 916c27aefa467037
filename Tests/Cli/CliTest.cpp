// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"

#include "Core/QVString.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Formats/TestContent.h"
#include "Tests/Support/TestPrograms.h"

#include <chrono>
#include <fstream>
#include <regex>
#include <thread>

namespace fs = std::filesystem;

namespace QVTest
{
FProgramStart FCliTest::Start(const FWords& Words) const
{
	return {BuiltProgram("qvmap"), Words, Folder, Environment, MostFileBytes, 0};
}

FProgramEnd FCliTest::Finish(const FProgramStart& Start) const
{
	FProgram Program(Start);
	return Finish(Program);
}

FProgramEnd FCliTest::Finish(FProgram& Program) const
{
	FProgramEnd End = Program.Wait();
	End.Out = Mask(End.Out);
	End.Err = Mask(End.Err);
	EXPECT_TRUE(End.bNothingLeft);
	return End;
}

FProgramStart FCliTest::StartOnTerminal(const FWords& Words, unsigned Columns) const
{
	FProgramStart How = Start(Words);
	How.TerminalColumns = static_cast<unsigned short>(Columns);
	return How;
}

FProgramEnd FCliTest::FinishOnTerminal(FProgram& Program) const
{
	FProgramEnd End = Finish(Program);
	End.Out = FQVString::ReplaceAll(End.Out, "\r\n", "\n");
	return End;
}

void FCliTest::Expect(const FWords& Words, int Code, std::string_view Out, std::string_view Err) const
{
	SCOPED_TRACE("qvmap " + FQVString::Join(Words, " "));
	const FProgramEnd End = Run(Words);
	EXPECT_EQ(End.Code, Code);
	EXPECT_EQ(End.Out, Out);
	EXPECT_EQ(End.Err, Err);
}

void FCliTest::ExpectFailure(const FWords& Words, std::string_view Err) const
{
	SCOPED_TRACE("qvmap " + FQVString::Join(Words, " "));
	const FProgramEnd End = Run(Words);
	EXPECT_EQ(End.Code, 1);
	EXPECT_EQ(End.Out, "");
	EXPECT_EQ(WithoutProgress(End.Err), Err);
}

void FCliTest::EnterSample()
{
	ASSERT_EQ(Run({"sample", "Пример 1"}).Code, 0);
	Folder /= fs::path(u8"Пример 1");
}

void FCliTest::BuildRelease() const
{
	const FProgramEnd End = Run({"-q", "base-release", "build"});
	ASSERT_EQ(End.Code, 0) << End.Err;
}

std::vector<fs::path> FCliTest::Paks() const
{
	std::vector<fs::path> Found;
	std::error_code Missing;
	for (const fs::directory_entry& Entry : fs::directory_iterator(Folder / "Saved/QVPak/Output", Missing))
	{
		Found.push_back(Entry.path());
	}
	return Found;
}

std::string FCliTest::Mask(std::string Text) const
{
	static const std::pair<std::regex, const char*> Changing[] = {
		{std::regex("_[0-9a-f]{8}\\.pak"), "_<Id>.pak"},
		{std::regex("_[0-9]{8}_[0-9]{6}\\.log"), "_<Time>.log"},
		{std::regex("[0-9a-f]{40}"), "<Hash>"},
		{std::regex("[A-Z][a-z]{2} [0-9]{1,2}, [0-9]{4}, [0-9:]+ [AP]M"), "<Date>"},
	};
	Text = FQVString::ReplaceAll(Text, QVStandalone::FromOsPath(fs::canonical(Temp.Path())), "<T>");
	Text = FQVString::ReplaceAll(Text, QVMAP_TEST_BIN, "<Bin>");
	for (const auto& [Pattern, Name] : Changing)
	{
		Text = std::regex_replace(Text, Pattern, Name);
	}
	return Text;
}

void FCliTest::Put(const fs::path& Path, std::string_view Text) const
{
	fs::create_directories((Folder / Path).parent_path());
	std::ofstream(Folder / Path, std::ios::binary) << Text;
}

std::string FCliTest::Get(const fs::path& Path) const
{
	return ReadText(Folder / Path);
}

FTree ReadFiles(const fs::path& Folder)
{
	FTree Files;
	for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Folder))
	{
		if (Entry.is_regular_file())
		{
			Files[QVStandalone::FromOsPath(Entry.path().lexically_relative(Folder))] = ReadText(Entry.path());
		}
	}
	return Files;
}

std::string WithoutProgress(std::string_view Text)
{
	static const std::regex Progress("\\[[a-z]+ +[0-9]+%\\] .*\n");
	return std::regex_replace(std::string(Text), Progress, "");
}

FTree Snapshot(const fs::path& Project)
{
	FTree Files = ReadFiles(Project);
	std::erase_if(Files,
		[](const auto& File)
		{
			const std::string& Name = File.first;
			const auto Holds = [&Name](std::string_view Part) { return Name.find(Part) != std::string::npos; };
			return Holds("Saved/Logs/") || Holds("Saved/QVPak/Logs/") || Holds("Saved/QVPak/Temp/") ||
				   Holds("Saved/Cooked/") || Holds("Saved/QVMapRegistry.cache");
		});
	return Files;
}

void ExpectSameFiles(const FTree& Was, const FTree& Is)
{
	const auto Names = [](const FTree& Tree)
	{
		FWords Result;
		for (const auto& [Name, Content] : Tree)
		{
			Result.push_back(Name);
		}
		return Result;
	};
	ASSERT_EQ(Names(Was), Names(Is));
	for (const auto& [Name, Content] : Was)
	{
		EXPECT_TRUE(Is.at(Name) == Content) << Name << " is not as it was";
	}
}

void WaitUntil(const std::function<bool()>& IsSo)
{
	for (int Round = 0; Round < 6000 && !IsSo(); ++Round)
	{
		std::this_thread::sleep_for(std::chrono::milliseconds(10));
	}
	ASSERT_TRUE(IsSo());
}

FScriptedToolsTest::FScriptedToolsTest()
{
	Folder = QVStandalone::ToOsPath(Project.ProjectDir());
	Environment["QVMAP_ENGINE_DIR"] = Project.EngineDir();
	Project.AddTemplate();
	Project.AddMod("Cave", {"Maps/Hall"});
	Project.AddBaseRelease();
	Project.ScriptEditorCmd({CookHall});
	Project.ScriptUnrealPak({"write {1}|packed"});
}

std::string FScriptedToolsTest::Mask(std::string Text) const
{
	return FCliTest::Mask(Project.Mask(std::move(Text)));
}
} // namespace QVTest
