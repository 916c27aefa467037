// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVDateTime.h"
#include "Core/QVGuid.h"

/** What no two runs share: the time, and fresh identifiers. Any thread. */
class IQVClock
{
public:
	virtual ~IQVClock() = default;

	/** Local time. */
	virtual FQVDateTime Now() const = 0;
	virtual FQVDateTime UtcNow() const = 0;
	virtual FQVGuid NewGuid() = 0;

	/** Files' times are in UTC, people's are not. By the zone of this moment. */
	FQVDateTime ToLocalTime(std::int64_t UtcTicks) const
	{
		constexpr std::int64_t Minute = 60 * FQVDateTime::TicksPerSecond;
		const std::int64_t Ahead = Now().GetTicks() - UtcNow().GetTicks();
		const std::int64_t Zone = (Ahead + (Ahead < 0 ? -Minute : Minute) / 2) / Minute * Minute;
		return FQVDateTime(UtcTicks + Zone);
	}
};
