// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace QVCli
{
/** Whether standard error is a terminal that understands cursor movements. */
bool IsTerminal();
/** Columns of that terminal. */
std::size_t TerminalWidth();
/** Whether somebody is there to answer: standard input and standard error are terminals. */
bool CanAsk();
/** Shows the prompt on standard error and waits for a line, given without its end and without blanks around it. Nothing
 * at the end of the input, and after an interrupt. */
std::optional<std::string> AskLine(std::string_view Prompt);
} // namespace QVCli
