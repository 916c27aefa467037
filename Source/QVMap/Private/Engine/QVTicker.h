// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"

#include <memory>
#include <utility>

/** A tick that can be taken back: it comes to nothing once this is let go of. Game thread. */
class FQVTicker
{
public:
	FQVTicker() = default;
	/** Calls Tick every Period seconds until it gives false. */
	FQVTicker(double Period, std::function<bool()> Tick)
		: Held(std::make_shared<const bool>())
	{
		FQVEngine::Get().GameThread->AddTicker(Period,
			[Alive = std::weak_ptr<const bool>(Held), Tick = std::move(Tick)] { return !Alive.expired() && Tick(); });
	}

	void Reset() { Held.reset(); }
	/** Until it is reset, also when it ticks no more. */
	bool IsSet() const { return Held != nullptr; }

private:
	std::shared_ptr<const bool> Held;
};
