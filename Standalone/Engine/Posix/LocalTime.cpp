// SPDX-License-Identifier: MIT
#include "Standalone/Engine/LocalTime.h"

#include <ctime>

namespace QVStandalone
{
std::int64_t SecondsAheadOfUtc(std::int64_t UnixSeconds)
{
	const auto Moment = static_cast<std::time_t>(UnixSeconds);
	std::tm Local = {};
	return ::localtime_r(&Moment, &Local) != nullptr ? Local.tm_gmtoff : 0;
}
} // namespace QVStandalone
