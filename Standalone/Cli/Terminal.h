// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace QVCli
{
/** Once, before anything is printed: UTF-8 is shown as such. */
void PrepareTerminal();
/** Whether standard error is a terminal that understands cursor movements. */
bool IsTerminal();
/** Columns of that terminal. */
std::size_t TerminalWidth();
/** UTF-8 to standard output or standard error, at once. */
void PutText(std::FILE* Stream, std::string_view Text);
/** Whether somebody is there to answer: standard input and standard error are terminals. */
bool CanAsk();
/** Shows the prompt on standard error and waits for a line, given without its end and without blanks around it. Nothing
 * at the end of the input, and after an interrupt. */
std::optional<std::string> AskLine(std::string_view Prompt);
} // namespace QVCli
