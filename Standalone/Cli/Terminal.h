// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace QVCli
{
/** Whether standard error is a terminal that understands cursor movements. */
bool IsTerminal();
/** Columns of that terminal. */
std::size_t TerminalWidth();
} // namespace QVCli
