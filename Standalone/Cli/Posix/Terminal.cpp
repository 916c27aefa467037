// SPDX-License-Identifier: MIT
#include "Standalone/Cli/Terminal.h"

#include "Core/QVString.h"
#include "Standalone/Engine/Interrupt.h"

#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace QVCli
{
namespace
{
/** False after an interrupt. */
bool WaitForInput()
{
	constexpr int Milliseconds = 200; // an interrupt that comes before the wait must not be waited out
	pollfd Input{STDIN_FILENO, POLLIN, 0};
	while (!QVStandalone::FInterrupt::IsRaised())
	{
		if (::poll(&Input, 1, Milliseconds) > 0)
		{
			return true;
		}
	}
	return false;
}
} // namespace

void PrepareTerminal() {}

bool IsTerminal()
{
	const char* Kind = std::getenv("TERM");
	return ::isatty(STDERR_FILENO) == 1 && Kind != nullptr && std::string_view(Kind) != "dumb";
}

std::size_t TerminalWidth()
{
	winsize Size = {};
	const bool bKnown = ::ioctl(STDERR_FILENO, TIOCGWINSZ, &Size) == 0 && Size.ws_col > 0;
	return bKnown ? Size.ws_col : 80;
}

void PutText(std::FILE* Stream, std::string_view Text)
{
	std::fwrite(Text.data(), 1, Text.size(), Stream);
	std::fflush(Stream);
}

bool CanAsk()
{
	return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDERR_FILENO) == 1;
}

std::optional<std::string> AskLine(std::string_view Prompt)
{
	PutText(stderr, Prompt);
	std::string Line;
	for (char Letter = 0; WaitForInput() && ::read(STDIN_FILENO, &Letter, 1) == 1;)
	{
		if (Letter == '\n')
		{
			return std::string(FQVString::Trim(Line));
		}
		Line.push_back(Letter);
	}
	PutText(stderr, "\n"); // nobody has pressed Return
	return std::nullopt;
}
} // namespace QVCli
