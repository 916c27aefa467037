// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"

#include "Core/QVString.h"

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
		FProgramStart How = Start(Words);
		How.TerminalColumns = static_cast<unsigned short>(Columns);
		FProgramEnd End = Finish(How);
		End.Out = FQVString::ReplaceAll(End.Out, "\r\n", "\n");
		return End;
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
	const FWords Tool = {
		"print " + Long, "sleep 50", "print short", "sleep 50", "print e\u0301e\u0301 " + Long + "\t\x1b[31m"};
	FWords Cook = Tool;
	Cook.push_back(CookHall);
	for (const unsigned Width : {60u, 200u, 20u, 2u})
	{
		SCOPED_TRACE(Width);
		Project.ScriptEditorCmd(Cook);
		const FProgramEnd End = RunOnTerminal({"pack", "Cave"}, Width);
		EXPECT_EQ(End.Code, 0);
		FWords Parts = SplitAtErasing(End.Out);
		ASSERT_GE(Parts.size(), 10);
		EXPECT_EQ(Parts.front(), "");
		EXPECT_TRUE(
			Parts.back().ends_with("\npak  <Project>/Saved/QVPak/Output/Cave_<Id>.pak\n     2 file(s) packed, 0.00 "
								   "MB.\nlog  <Project>/Saved/QVPak/Logs/Cave_<Time>.log\n"))
			<< Parts.back();
		EXPECT_TRUE(Parts.back().starts_with("warning: ")) << Parts.back();
		Parts.pop_back();
		for (const std::string& Part : Parts)
		{
			EXPECT_EQ(Part.find_first_of("\r\n\t\x1b"), std::string::npos) << Part;
			EXPECT_LT(Columns(Part), static_cast<int>(Width)) << Part;
			EXPECT_GE(Columns(Part), 0) << Part;
		}
		EXPECT_TRUE(Width != 60 || Parts.at(1) == "[------------------------]   0% validating  Checki...gin...")
			<< Parts.at(1);

		Project.ScriptEditorCmd({"print oh no", "exit 3"});
		EXPECT_EQ(SplitAtErasing(RunOnTerminal({"pack", "Cave"}, Width).Out).back(),
			"error: Cook failed: Cook failed with return code 3\n  the tool's last lines:\n    oh no\n");
	}
}

TEST_F(FTerminal, WithoutCursorMovementsThereArePlainLines)
{
	Environment["TERM"] = "dumb";
	const FProgramEnd End = RunOnTerminal({"base-release", "build"}, 60);
	EXPECT_EQ(End.Out.find(EraseLine), std::string::npos);
	EXPECT_TRUE(End.Out.starts_with("[cooking 0%] Building base release...\n")) << End.Out;
}
