// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace QVStandalone
{
/** Full path of the running program. */
std::string ExecutablePath();
} // namespace QVStandalone
