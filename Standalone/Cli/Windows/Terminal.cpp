// SPDX-License-Identifier: MIT
#include "Standalone/Cli/Terminal.h"

#include "Standalone/Formats/Windows/Win32.h"

#include <algorithm>
#include <cstdlib>

namespace QVCli
{
namespace
{
UINT OldCodePage = 0;

HANDLE ErrorHandle()
{
	return ::GetStdHandle(STD_ERROR_HANDLE);
}

/** The console behind a stream; null if it is a file or a pipe. */
HANDLE ConsoleOf(std::FILE* Stream)
{
	const HANDLE Handle = ::GetStdHandle(Stream == stderr ? STD_ERROR_HANDLE : STD_OUTPUT_HANDLE);
	DWORD Mode = 0;
	return ::GetConsoleMode(Handle, &Mode) ? Handle : nullptr;
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
} // namespace QVCli
