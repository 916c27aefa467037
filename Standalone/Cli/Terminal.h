// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdio>
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
} // namespace QVCli
