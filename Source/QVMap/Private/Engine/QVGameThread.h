// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

/**
 * The one thread that may touch the editor's objects, and the ways to and from it. RunOnGameThreadAndWait and
 * IsInGameThread may be called anywhere.
 */
class IQVGameThread
{
public:
	virtual ~IQVGameThread() = default;

	virtual bool IsInGameThread() const = 0;
	/** Posts the work and waits for it, without a time limit; runs it at once on the game thread itself. */
	virtual void RunOnGameThreadAndWait(const std::function<void()>& Work) = 0;
	/** Game thread. Calls Tick every Period seconds on the game thread until it gives false. */
	virtual void AddTicker(double Period, std::function<bool()> Tick) = 0;
	/** Game thread. Runs the work on a thread made for it. The engine waits for it before it goes. */
	virtual void RunOnDedicatedThread(std::function<void()> Work) = 0;
};
