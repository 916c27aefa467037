// SPDX-License-Identifier: MIT
#include "Standalone/Cli/Console.h"

#include "Core/QVString.h"
#include "Standalone/Cli/Terminal.h"

#include <algorithm>
#include <cstdio>

namespace QVCli
{
namespace
{
constexpr std::size_t MostCauses = 6;
constexpr std::string_view EraseLine = "\r\x1b[K";

void Put(std::FILE* Stream, std::string_view Text)
{
	std::fwrite(Text.data(), 1, Text.size(), Stream);
	std::fflush(Stream);
}

/** A log line as a person reads it. */
std::string_view WithoutPrefix(std::string_view Text)
{
	constexpr std::string_view Prefix = "QVMap: ";
	return Text.starts_with(Prefix) ? Text.substr(Prefix.size()) : Text;
}

std::size_t CountCharacters(std::string_view Text)
{
	return static_cast<std::size_t>(std::count_if(
		Text.begin(), Text.end(), [](char Letter) { return (static_cast<unsigned char>(Letter) & 0xC0) != 0x80; }));
}

/** The first Count characters. */
std::string_view FirstCharacters(std::string_view Text, std::size_t Count)
{
	std::size_t End = 0;
	while (End < Text.size() && (Count > 0 || (static_cast<unsigned char>(Text[End]) & 0xC0) == 0x80))
	{
		Count -= (static_cast<unsigned char>(Text[End]) & 0xC0) != 0x80 ? 1 : 0;
		++End;
	}
	return Text.substr(0, End);
}

/** Shortened in the middle: the ends of paths and messages tell the most. */
std::string Fit(std::string_view Text, std::size_t Width)
{
	const std::size_t Length = CountCharacters(Text);
	if (Length <= Width)
	{
		return std::string(Text);
	}
	const std::size_t Kept = Width > 3 ? Width - 3 : 0;
	return std::string(FirstCharacters(Text, Kept / 2)) + "..." +
		   std::string(FQVString::LastCharacters(Text, Kept - Kept / 2));
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
	Put(stderr, std::string(Text) + "\n");
}

void FConsole::ClearProgress()
{
	if (bProgressShown)
	{
		Put(stderr, EraseLine);
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
	Put(stdout, std::string(Text) + "\n");
}

void FConsole::Document(const FQVJson& Json)
{
	Result(FQVString::ReplaceAll(Json.ToPrettyString(), "\r\n", "\n"));
}

void FConsole::Say(std::string_view Text)
{
	const std::lock_guard Guard(Lock);
	if (Chatter != EChatter::Quiet)
	{
		Line(Text);
	}
}

void FConsole::Warn(std::string_view Text)
{
	const std::lock_guard Guard(Lock);
	WarnOnce(Text);
}

void FConsole::Fail(std::string_view Message, const std::vector<std::string>& ToolLines)
{
	const std::lock_guard Guard(Lock);
	Line("error: " + std::string(Message));
	std::size_t Shown = 0;
	for (const std::string& Cause : KeptBack)
	{
		if (Message.find(Cause) == std::string_view::npos && Shown++ < MostCauses)
		{
			Line("  cause: " + Cause);
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
	const std::size_t Width = TerminalWidth();
	const std::size_t Room = Width > Head.size() + 1 ? Width - Head.size() - 1 : 0;
	Put(stderr, std::string(EraseLine) + Head + Fit(OneLine(Message), Room));
	bProgressShown = true;
}
} // namespace QVCli
