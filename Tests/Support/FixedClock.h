// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVClock.h"

namespace QVTest
{
/** Stands at 2026-11-21 17:05:09.123 UTC, one hour later where we are; identifiers begin with "ABCDEF12". */
class FFixedClock : public IQVClock
{
public:
	FQVDateTime Now() const override { return FQVDateTime(UtcNow().GetTicks() + 3600 * FQVDateTime::TicksPerSecond); }
	FQVDateTime UtcNow() const override { return FQVDateTime::FromUnixSeconds(1'795'280'709, 123'000'000); }
	FQVGuid NewGuid() override { return {{0xABCDEF12, 0x34567890, 0, 1}}; }
};
} // namespace QVTest
