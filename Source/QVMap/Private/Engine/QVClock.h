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
};
