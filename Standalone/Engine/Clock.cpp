// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Clock.h"

#include "Standalone/Engine/LocalTime.h"

#include <chrono>
#include <random>

namespace QVStandalone
{
FQVDateTime FClock::UtcNow() const
{
	const auto SinceEpoch = std::chrono::system_clock::now().time_since_epoch();
	return FQVDateTime::FromUnixSeconds(0, std::chrono::duration_cast<std::chrono::nanoseconds>(SinceEpoch).count());
}

FQVDateTime FClock::Now() const
{
	const FQVDateTime Utc = UtcNow();
	const std::int64_t UnixSeconds = (Utc.GetTicks() - FQVDateTime::UnixEpochTicks) / FQVDateTime::TicksPerSecond;
	return FQVDateTime(Utc.GetTicks() + SecondsAheadOfUtc(UnixSeconds) * FQVDateTime::TicksPerSecond);
}

FQVGuid FClock::NewGuid()
{
	std::random_device Source;
	FQVGuid Guid;
	for (std::uint32_t& Part : Guid.Parts)
	{
		Part = Source();
	}
	return Guid;
}
} // namespace QVStandalone
