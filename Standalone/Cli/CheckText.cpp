// SPDX-License-Identifier: MIT
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Standalone/Cli/CheckReport.h"
#include "Standalone/Cli/InspectReport.h"

namespace QVCli
{
namespace
{
constexpr std::size_t WordColumns = 9;

std::string_view ShownWord(EQVDiagSeverity Severity)
{
	constexpr std::string_view Words[] = {"ok", "note", "warning", "error"};
	return Words[static_cast<std::size_t>(Severity)];
}

/** A text's lines, each behind so many blanks. */
std::string Indented(const FQVText& Text, std::size_t Blanks, std::string_view Before = {})
{
	const std::string Source = Text.ToString();
	const std::string Whole = Source.empty() ? Source : std::string(Before) + Source;
	std::string Result;
	for (const std::string_view Line : FQVString::NonEmptyLines(Whole))
	{
		Result += std::string(Blanks, ' ') + EscapeControls(Line) + "\n";
	}
	return Result;
}

std::string FindingText(const FQVDiagnosticFinding& Finding, std::size_t Depth, const std::string& Mod)
{
	const std::size_t Blanks = 2 + Depth * WordColumns;
	const std::size_t Inner = Blanks + WordColumns;
	const std::string_view Word = ShownWord(Finding.Severity);
	std::string Text = std::string(Blanks, ' ') + std::string(Word) + std::string(WordColumns - Word.size(), ' ') +
					   EscapeControls(Finding.Title.ToString()) + "\n";
	Text += Indented(Finding.Detail, Inner) +
			Indented(Finding.Remedy, Inner, Finding.Severity >= EQVDiagSeverity::Warning ? "fix: " : "hint: ");
	const std::string Command = CommandFor(Finding, Mod);
	Text += Command.empty() ? "" : std::string(Inner, ' ') + "run: " + Command + "\n";
	for (const FQVDiagnosticFinding& Child : Finding.Children)
	{
		Text += FindingText(Child, Depth + 1, Mod);
	}
	return Text;
}

std::string HeadLine(const FCheckReport& Report)
{
	const std::string& Mod = Report.Report.ModName;
	if (Mod.empty())
	{
		return "no map\n";
	}
	return EscapeControls(Report.Map.empty() ? Mod : Mod + "  " + Report.Map) + "\n";
}
} // namespace

std::string ToText(const FCheckReport& Report)
{
	std::string Text = HeadLine(Report);
	const FQVDiagnosticFinding* Last = nullptr;
	for (const FQVDiagnosticFinding* Finding : InShownOrder(Report.Report))
	{
		if (Last == nullptr || Last->Category != Finding->Category)
		{
			Text += QVPrintf("\n%s\n", FQVDiagnosticModel::GetCategoryText(Finding->Category).ToString());
		}
		Text += FindingText(*Finding, 0, Report.Report.ModName);
		Last = Finding;
	}
	return Text +
		   QVPrintf("\n%s%s\n", FCheckCounts(Report.Report).ToString(), Report.Report.bCancelled ? " (cancelled)" : "");
}
} // namespace QVCli
