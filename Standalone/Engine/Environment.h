// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <string>

namespace QVStandalone
{
/** Empty if the variable is not set. */
inline std::string EnvironmentValue(const char* Name)
{
	const char* Value = std::getenv(Name);
	return Value != nullptr ? Value : "";
}
} // namespace QVStandalone
