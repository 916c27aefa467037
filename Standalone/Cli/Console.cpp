// SPDX-License-Identifier: MIT
#include "Standalone/Cli/Console.h"

#include "Core/QVString.h"
#include "Standalone/Cli/Terminal.h"
#include "Standalone/Cli/TextColumns.h"

#include <algorithm>
#include <cstdio>

namespace QVCli
{
namespace
{
constexpr std::size_t MostCauses = 6;
constexpr std::string_view EraseLine = "\r\x1b[K";

/** A log line as a person reads it. What is also shown has another heading there. */
std::string_view WithoutPrefix(std::string_view Text)
{
	constexpr std::string_view Prefixes[] = {
		"QVMap: ", "Export failed: ", "Could not bring outside content in: ", "Base release build failed: "};
	for (const std::string_view Prefix : Prefixes)
	{
		Text.remove_prefix(Text.starts_with(Prefix) ? Prefix.size() : 0);
	}
	return Text;
}

std::string JoinParagraphs(std::string_view Text)
{
	return FQVString::ReplaceAll(Text, "\n\n", " ");
}

/** What holds all of another message says it, too. */
bool IsTold(const std::string& Cause, const std::vector<std::string>& Shown)
{
	return std::any_of(Shown.begin(), Shown.end(),
		[&Cause](const std::string& Before)
		{ return Before.find(Cause) != std::string::npos || Cause.find(Before) != std::string::npos; });
}

std::string OneLine(std::string_view Text)
{
	std::string Result(Text);
	std::replace_if(
		Result.begin(), Result.end(), [](char Letter) { return static_cast<unsigned char>(Letter) < 0x20; }, ' ');
	return Result;
}
} // namespace

FConsole::FConsole()
	: bTerminal(IsTerminal())
{
}

void FConsole::Line(std::string_view Text)
{
	ClearProgress();
	PutText(stderr, std::string(Text) + "\n");
}

void FConsole::ClearProgress()
{
	if (bProgressShown)
	{
		PutText(stderr, EraseLine);
		bProgressShown = false;
	}
}

void FConsole::WarnOnce(std::string_view Text)
{
	if (Chatter != EChatter::Quiet && Warned.emplace(Text).second)
	{
		Line("warning: " + std::string(Text));
	}
}

void FConsole::Write(std::string_view Category, EQVLogVerbosity Verbosity, std::string_view Text)
{
	const std::lock_guard Guard(Lock);
	if (Chatter == EChatter::Verbose)
	{
		Line(QVPrintf("%s: %s: %s", Category, FQVLog::Word(Verbosity), Text));
		return;
	}
	const bool bOfEngine = Category != FQVLog::Category;
	if (Verbosity == EQVLogVerbosity::Error || (bOfEngine && Verbosity == EQVLogVerbosity::Warning))
	{
		KeptBack.emplace_back(WithoutPrefix(Text));
	}
	else if (Verbosity == EQVLogVerbosity::Warning)
	{
		WarnOnce(WithoutPrefix(Text));
	}
}

void FConsole::Result(std::string_view Text)
{
	const std::lock_guard Guard(Lock);
	ClearProgress();
	PutText(stdout, std::string(Text) + "\n");
}

void FConsole::Document(const FQVJson& Json)
{
	bDocumentShown = true;
	Result(FQVString::ReplaceAll(Json.ToPrettyString(), "\r\n", "\n"));
}

void FConsole::EnsureDocument()
{
	if (!bDocumentShown)
	{
		Document(FQVJson::Object().Set("schema_version", 1).Set("error", FirstFailure));
	}
}

void FConsole::Say(std::string_view Text)
{
	const std::lock_guard Guard(Lock);
	if (Chatter != EChatter::Quiet)
	{
		Line(Text);
	}
}

void FConsole::Tell(std::string_view Text)
{
	const std::lock_guard Guard(Lock);
	Line(Text);
}

void FConsole::Warn(std::string_view Text)
{
	const std::lock_guard Guard(Lock);
	WarnOnce(Text);
}

void FConsole::Fail(std::string_view Message, const std::vector<std::string>& ToolLines)
{
	const std::lock_guard Guard(Lock);
	const std::string Told = JoinParagraphs(Message);
	FirstFailure = FirstFailure.empty() ? Told : FirstFailure;
	Line("error: " + Told);
	std::vector<std::string> Shown = {Told};
	for (const std::string& Each : KeptBack)
	{
		const std::string Cause = JoinParagraphs(Each);
		if (!IsTold(Cause, Shown) && Shown.size() <= MostCauses)
		{
			Line("  cause: " + Cause);
			Shown.push_back(Cause);
		}
	}
	KeptBack.clear();
	if (!ToolLines.empty())
	{
		Line("  the tool's last lines:");
	}
	for (const std::string& Each : ToolLines)
	{
		Line("    " + Each);
	}
}

void FConsole::Succeed()
{
	const std::lock_guard Guard(Lock);
	ClearProgress();
	for (const std::string& Text : KeptBack)
	{
		WarnOnce(Text);
	}
	KeptBack.clear();
}

void FConsole::Progress(std::string_view Stage, float Fraction, std::string_view Message)
{
	const std::lock_guard Guard(Lock);
	if (Chatter == EChatter::Quiet)
	{
		return;
	}
	if (bTerminal)
	{
		ShowBar(Stage, Fraction, Message);
		return;
	}
	const int Tenth = static_cast<int>(Fraction * 10.0f);
	if (Stage != LastStage || Tenth != LastTenth)
	{
		LastStage = Stage;
		LastTenth = Tenth;
		Line(QVPrintf("[%s %.0f%%] %s", Stage, Fraction * 100.0f, OneLine(Message)));
	}
}

void FConsole::ShowBar(std::string_view Stage, float Fraction, std::string_view Message)
{
	constexpr std::size_t BarWidth = 24;
	const auto Filled = static_cast<std::size_t>(std::clamp(Fraction, 0.0f, 1.0f) * static_cast<float>(BarWidth));
	const std::string Head = QVPrintf(
		"[%s%s] %3.0f%% %s  ", std::string(Filled, '#'), std::string(BarWidth - Filled, '-'), Fraction * 100.0f, Stage);
	// a line that reaches the last column would go on in the next, where nothing writes over it
	const std::size_t Width = std::max<std::size_t>(TerminalWidth(), 1) - 1;
	const std::size_t Room = Width > Head.size() ? Width - Head.size() : 0;
	PutText(stderr, std::string(EraseLine) + FitColumns(Head + FitColumns(OneLine(Message), Room), Width));
	bProgressShown = true;
}
} // namespace QVCli
