// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace QVStandalone
{
/** How far the machine's zone is ahead of UTC at that moment. Any thread. */
std::int64_t SecondsAheadOfUtc(std::int64_t UnixSeconds);
} // namespace QVStandalone
