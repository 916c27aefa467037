// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"

#include "Core/QVString.h"

#include <algorithm>
#include <clocale>
#include <cwchar>

using namespace QVTest;

namespace
{
constexpr std::string_view EraseLine = "\r\x1b[K";

class FTerminal : public FScriptedToolsTest
{
protected:
	FTerminal()
	{
		Environment["LC_ALL"] = "C.UTF-8";
		std::setlocale(LC_CTYPE, "C.UTF-8");
	}

	FProgramEnd RunOnTerminal(const FWords& Words, unsigned Columns) const
	{
		FProgram Program(StartOnTerminal(Words, Columns));
		return FinishOnTerminal(Program);
	}

	/** What was written between one erasing of the line and the next. */
	static FWords SplitAtErasing(std::string_view Text)
	{
		FWords Parts;
		for (std::size_t At = Text.find(EraseLine); At != std::string_view::npos; At = Text.find(EraseLine))
		{
			Parts.emplace_back(Text.substr(0, At));
			Text.remove_prefix(At + EraseLine.size());
		}
		Parts.emplace_back(Text);
		return Parts;
	}

	static bool IsShortenedCook(const std::string& Part)
	{
		return Part.starts_with("[------------------------]   0% cooking  鍾") && Part.find("...") != std::string::npos;
	}

	static int Columns(const std::string& Text)
	{
		std::wstring Wide(Text.size(), L'\0');
		const std::size_t Length = std::mbstowcs(Wide.data(), Text.c_str(), Wide.size());
		return Length == static_cast<std::size_t>(-1) ? -1 : ::wcswidth(Wide.c_str(), Length);
	}
};
} // namespace

TEST_F(FTerminal, ProgressIsOneLineThatIsWrittenOver)
{
	const std::string Long = FQVString::Join(FWords(30, "鍾乳洞 Höhle "), "");
	Project.ScriptEditorCmd({"print " + Long + "e\u0301e\u0301\t\x1b[31m", "write " + Project.At("printed") + "|",
		"wait " + Project.At("go on"), "remove " + Project.At("go on"), CookHall});
	for (const unsigned Width : {60u, 200u, 20u, 2u})
	{
		SCOPED_TRACE(Width);
		Project.Remove("printed");
		FProgram Program(StartOnTerminal({"pack", "Cave"}, Width));
		WaitUntil([this] { return Project.Exists("printed"); });
		for (int Line = 0; Line < 10; ++Line)
		{
			ASSERT_TRUE(Program.AwaitOnTerminal(EraseLine));
		}
		Project.Write("go on", "");
		const FProgramEnd End = FinishOnTerminal(Program);
		EXPECT_EQ(End.Code, 0);
		FWords Parts = SplitAtErasing(End.Out);
		EXPECT_EQ(Parts.front(), "");
		EXPECT_EQ(Parts.back(), "pak  <Project>/Saved/QVPak/Output/Cave_<Id>.pak\n     3 file(s) packed, 0.00 MB.\n"
								"log  <Project>/Saved/QVPak/Logs/Cave_<Time>.log\n");
		Parts.pop_back();
		for (const std::string& Part : Parts)
		{
			EXPECT_EQ(Part.find_first_of("\r\n\t\x1b"), std::string::npos) << Part;
			EXPECT_LT(Columns(Part), static_cast<int>(Width)) << Part;
			EXPECT_GE(Columns(Part), 0) << Part;
		}
		EXPECT_TRUE(Width != 60 || std::any_of(Parts.begin(), Parts.end(), IsShortenedCook)) << End.Out;
	}
	Project.ScriptEditorCmd({"print oh no", "exit 3"});
	EXPECT_EQ(SplitAtErasing(RunOnTerminal({"pack", "Cave"}, 60).Out).back(),
		"error: Failed to pack Cave: Cook failed: Cook failed with return code 3\n  the tool's last lines:\n    oh "
		"no\n");
}

TEST_F(FTerminal, WithoutCursorMovementsThereArePlainLines)
{
	Environment["TERM"] = "dumb";
	const FProgramEnd End = RunOnTerminal({"base-release", "build"}, 60);
	EXPECT_EQ(End.Out.find(EraseLine), std::string::npos);
	EXPECT_TRUE(End.Out.starts_with("[cooking 0%] Building base release...\n")) << End.Out;
}
