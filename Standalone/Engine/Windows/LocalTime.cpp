// SPDX-License-Identifier: MIT
#include "Standalone/Engine/LocalTime.h"

#include "Standalone/Formats/Windows/Win32.h"

namespace QVStandalone
{
namespace
{
constexpr std::int64_t TicksPerSecond = 10'000'000;
constexpr std::int64_t SecondsFrom1601To1970 = 11'644'473'600;

std::int64_t ToSeconds(const SYSTEMTIME& Time)
{
	FILETIME Ticks = {};
	::SystemTimeToFileTime(&Time, &Ticks);
	return ((static_cast<std::int64_t>(Ticks.dwHighDateTime) << 32) | Ticks.dwLowDateTime) / TicksPerSecond;
}
} // namespace

std::int64_t SecondsAheadOfUtc(std::int64_t UnixSeconds)
{
	const std::int64_t Ticks = (UnixSeconds + SecondsFrom1601To1970) * TicksPerSecond;
	const FILETIME File = {static_cast<DWORD>(Ticks), static_cast<DWORD>(Ticks >> 32)};
	SYSTEMTIME Utc = {};
	SYSTEMTIME Local = {};
	const bool bKnown = ::FileTimeToSystemTime(&File, &Utc) && ::SystemTimeToTzSpecificLocalTime(nullptr, &Utc, &Local);
	return bKnown ? ToSeconds(Local) - ToSeconds(Utc) : 0;
}
} // namespace QVStandalone
