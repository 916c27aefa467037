// SPDX-License-Identifier: MIT
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Core/QVUnicode.h"
#include "Standalone/Cli/CheckReport.h"

#include <algorithm>

namespace QVCli
{
namespace
{
/** GitHub shows no more of one kind for a step. */
constexpr std::size_t MostOfAKind = 10;

std::string EscapeData(std::string_view Text)
{
	std::string Result = FQVString::ReplaceAll(FQVUnicode::Repair(Text), "%", "%25");
	Result = FQVString::ReplaceAll(Result, "\r", "%0D");
	return FQVString::ReplaceAll(Result, "\n", "%0A");
}

std::string EscapeProperty(std::string_view Text)
{
	const std::string Result = FQVString::ReplaceAll(EscapeData(Text), ":", "%3A");
	return FQVString::ReplaceAll(Result, ",", "%2C");
}

std::string Annotation(const FCheckProblem& Problem)
{
	const std::string File = Problem.File.empty() ? "" : "file=" + EscapeProperty(Problem.File) + ",";
	return QVPrintf("::%s %stitle=%s::%s\n", SeverityWord(Problem.Severity), File, EscapeProperty(Problem.Title),
		EscapeData(Problem.Message));
}

std::string LeftOut(std::size_t Count, std::string_view Kind)
{
	return Count > MostOfAKind ? QVPrintf(", %d %s not annotated", Count - MostOfAKind,
									 std::string(Kind) + (Count - MostOfAKind == 1 ? "" : "s"))
							   : std::string();
}
} // namespace

std::string ToGithub(const FCheckReport& Report)
{
	std::string Text;
	std::size_t Errors = 0;
	std::size_t Warnings = 0;
	for (const FCheckProblem& Problem : ListProblems(Report))
	{
		std::size_t& Count = Problem.Severity == EQVDiagSeverity::Error ? Errors : Warnings;
		Text += ++Count <= MostOfAKind ? Annotation(Problem) : std::string();
	}
	return Text + QVPrintf("%s%s%s\n", FCheckCounts(Report.Report).ToString(), LeftOut(Errors, "error"),
					  LeftOut(Warnings, "warning"));
}
} // namespace QVCli
