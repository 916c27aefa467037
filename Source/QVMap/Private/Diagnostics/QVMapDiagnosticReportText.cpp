// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapDiagnosticReportText.h"

#include "Core/QVString.h"

namespace
{
constexpr std::size_t WordColumns = 9;

std::string_view ShownWord(EQVDiagSeverity Severity)
{
	constexpr std::string_view Words[] = {"ok", "note", "warning", "error"};
	return Words[static_cast<std::size_t>(Severity)];
}

/** Empty if there is no such text. */
std::string Behind(std::string_view Word, const std::string& Text)
{
	return Text.empty() ? Text : std::string(Word) + Text;
}
} // namespace

std::string FQVDiagnosticReportText::Clean(std::string_view Line) const
{
	return CleanLine ? CleanLine(Line) : std::string(Line);
}

/** A text's lines, each behind so many blanks. */
std::string FQVDiagnosticReportText::Indented(std::string_view Text, std::size_t Blanks) const
{
	std::string Result;
	for (const std::string_view Line : FQVString::NonEmptyLines(Text))
	{
		Result += std::string(Blanks, ' ') + Clean(Line) + "\n";
	}
	return Result;
}

std::string FQVDiagnosticReportText::Heading(EQVDiagCategory Category)
{
	return "\n" + FQVDiagnosticModel::GetCategoryText(Category).ToString() + "\n";
}

std::string FQVDiagnosticReportText::Line(const FQVDiagnosticFinding& Finding, std::size_t Depth) const
{
	const std::size_t Blanks = 2 + Depth * WordColumns;
	const std::size_t Inner = Blanks + WordColumns;
	const std::string_view Word = ShownWord(Finding.Severity);
	const std::string_view Advice = Finding.Severity >= EQVDiagSeverity::Warning ? "fix: " : "hint: ";
	const std::string Command = CommandFor ? CommandFor(Finding) : std::string();
	return std::string(Blanks, ' ') + std::string(Word) + std::string(WordColumns - Word.size(), ' ') +
		   Clean(Finding.Title.ToString()) + "\n" + Indented(Finding.Detail.ToString(), Inner) +
		   Indented(Behind(Advice, Finding.Remedy.ToString()), Inner) + Indented(Behind("run: ", Command), Inner);
}

std::string FQVDiagnosticReportText::Tree(const FQVDiagnosticFinding& Finding, std::size_t Depth) const
{
	std::string Text = Line(Finding, Depth);
	for (const FQVDiagnosticFinding& Child : Finding.Children)
	{
		Text += Tree(Child, Depth + 1);
	}
	return Text;
}
