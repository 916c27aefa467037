// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Environment.h"

#include <cstdlib>

namespace QVStandalone
{
std::string EnvironmentValue(const char* Name)
{
	const char* Value = std::getenv(Name);
	return Value != nullptr ? Value : "";
}

std::vector<std::string> BeginProgram(int Count, char** Words)
{
	return {Words + (Count > 0 ? 1 : 0), Words + Count};
}
} // namespace QVStandalone
