// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace QVStandalone
{
/** Empty if the variable is not set. */
std::string EnvironmentValue(const char* Name);

/**
 * Once, at the start of main, with what that was given: the arguments in UTF-8, the program's own name not among them.
 * From then on the standard streams take bytes as they are.
 */
std::vector<std::string> BeginProgram(int Count, char** Words);
} // namespace QVStandalone
