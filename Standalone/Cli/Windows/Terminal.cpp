// SPDX-License-Identifier: MIT
#include "Standalone/Cli/Terminal.h"

#include "Core/QVString.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Formats/Windows/Win32.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace QVCli
{
namespace
{
UINT OldCodePage = 0;

HANDLE ErrorHandle()
{
	return ::GetStdHandle(STD_ERROR_HANDLE);
}

bool IsConsole(HANDLE Handle)
{
	DWORD Mode = 0;
	return ::GetConsoleMode(Handle, &Mode);
}

/** The console behind a stream; null if it is a file or a pipe. */
HANDLE ConsoleOf(std::FILE* Stream)
{
	const HANDLE Handle = ::GetStdHandle(Stream == stderr ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
	return IsConsole(Handle) ? Handle : nullptr;
}

/** What is typed up to Return, or some of a long line; false at the end of the input and after an interrupt. */
bool ReadTyped(std::wstring& Line)
{
	wchar_t Typed[512];
	DWORD Count = 0;
	const HANDLE Input = ::GetStdHandle(STD_INPUT_HANDLE);
	const bool bRead = ::ReadConsoleW(Input, Typed, static_cast<DWORD>(std::size(Typed)), &Count, nullptr) && Count > 0;
	Line.append(Typed, Count);
	return bRead && !QVStandalone::FInterrupt::IsRaised();
}
} // namespace

void PrepareTerminal()
{
	OldCodePage = ::GetConsoleOutputCP();
	if (OldCodePage != 0 && ::SetConsoleOutputCP(CP_UTF8))
	{
		std::atexit([] { ::SetConsoleOutputCP(OldCodePage); });
	}
}

bool IsTerminal()
{
	DWORD Mode = 0;
	return ::GetConsoleMode(ErrorHandle(), &Mode) &&
		   ::SetConsoleMode(ErrorHandle(), Mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

std::size_t TerminalWidth()
{
	CONSOLE_SCREEN_BUFFER_INFO Info = {};
	const bool bKnown = ::GetConsoleScreenBufferInfo(ErrorHandle(), &Info) && Info.srWindow.Right > Info.srWindow.Left;
	return bKnown ? static_cast<std::size_t>(Info.srWindow.Right - Info.srWindow.Left + 1) : 80;
}

void PutText(std::FILE* Stream, std::string_view Text)
{
	const HANDLE Console = ConsoleOf(Stream);
	if (Console == nullptr)
	{
		std::fwrite(Text.data(), 1, Text.size(), Stream);
		std::fflush(Stream);
		return;
	}
	// older consoles take letters of several bytes apart
	constexpr std::size_t MostAtOnce = 8192;
	const std::wstring Wide = QVFormats::ToWide(Text);
	for (std::size_t Done = 0; Done < Wide.size(); Done += MostAtOnce)
	{
		DWORD Written = 0;
		const std::size_t Count = std::min(MostAtOnce, Wide.size() - Done);
		::WriteConsoleW(Console, Wide.data() + Done, static_cast<DWORD>(Count), &Written, nullptr);
	}
}

bool CanAsk()
{
	return IsConsole(::GetStdHandle(STD_INPUT_HANDLE)) && IsConsole(ErrorHandle());
}

std::optional<std::string> AskLine(std::string_view Prompt)
{
	constexpr wchar_t EndOfInput = 0x1A; // Ctrl-Z
	PutText(stderr, Prompt);
	std::wstring Line;
	while (ReadTyped(Line) && !Line.starts_with(EndOfInput))
	{
		if (Line.ends_with(L'\n'))
		{
			return std::string(FQVString::Trim(QVFormats::FromWide(Line)));
		}
	}
	PutText(stderr, "\n"); // the answer is not what Return would end
	return std::nullopt;
}
} // namespace QVCli
