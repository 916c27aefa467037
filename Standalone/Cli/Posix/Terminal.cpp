// SPDX-License-Identifier: MIT
#include "Standalone/Cli/Terminal.h"

#include <cstdlib>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace QVCli
{
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
} // namespace QVCli
