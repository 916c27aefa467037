// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVClock.h"

namespace QVStandalone
{
/** The machine's clock and random numbers. */
class FClock : public IQVClock
{
public:
	FQVDateTime Now() const override;
	FQVDateTime UtcNow() const override;
	FQVGuid NewGuid() override;
};
} // namespace QVStandalone
