// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

/** A date and time of day without a zone: ticks of 100 nanoseconds since the first day of the year 1. */
class FQVDateTime
{
public:
	static constexpr std::int64_t TicksPerSecond = 10'000'000;
	/** 1970-01-01 in ticks. */
	static constexpr std::int64_t UnixEpochTicks = 621'355'968'000'000'000;

	FQVDateTime() = default;
	explicit FQVDateTime(std::int64_t InTicks)
		: Ticks(InTicks)
	{
	}
	static FQVDateTime FromUnixSeconds(std::int64_t Seconds, std::int64_t Nanoseconds = 0);

	std::int64_t GetTicks() const { return Ticks; }

	/** `2026.11.21-17.05.09` */
	std::string ToString() const;
	/** `2026-11-21T17:05:09.123Z`; the Z is there whatever the value's zone was. */
	std::string ToIso8601() const;
	/** `20261121_170509`, for file names. */
	std::string ToFileStamp() const;
	/** `Nov 21, 2026, 5:05:09 PM`, the English default style. */
	std::string ToDisplayText() const;

	/** Takes ToIso8601's form back, with or without fraction and zone; a zone other than Z is turned into UTC. */
	static bool ParseIso8601(std::string_view Text, FQVDateTime& Out);

	friend auto operator<=>(const FQVDateTime&, const FQVDateTime&) = default;

private:
	std::int64_t Ticks = 0;
};
