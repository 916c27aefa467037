// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVGameThread.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

namespace QVStandalone
{
/** The thread that made it is the game thread. It lives while RunUntil is on it: that runs posted work and tickers. */
class FGameThread final : public IQVGameThread
{
public:
	FGameThread();
	FGameThread(const FGameThread&) = delete;
	FGameThread& operator=(const FGameThread&) = delete;
	/** Waits for the dedicated threads; work that they post meanwhile is run. */
	~FGameThread() override;

	bool IsInGameThread() const override;
	void RunOnGameThreadAndWait(const std::function<void()>& Work) override;
	void AddTicker(double Period, std::function<bool()> Tick) override;
	void RunOnDedicatedThread(std::function<void()> Work) override;

	/** Game thread. Runs posted work and tickers until Done gives true; it is asked after each piece of work. */
	void RunUntil(const std::function<bool()>& Done);
	/** Game thread. Runs the work on a dedicated thread, and posted work and tickers here until it has ended. */
	void RunDedicatedUntilDone(std::function<void()> Work);
	/** Game thread. Until there is nothing left that could happen: no ticker, no posted work, no dedicated thread. */
	void RunUntilIdle();

private:
	using FTime = std::chrono::steady_clock::time_point;

	struct FTicker
	{
		std::chrono::duration<double> Period{};
		FTime Next;
		std::function<bool()> Tick;
	};

	struct FDedicated
	{
		std::thread Thread;
		/** It does nothing more that the lock guards. */
		bool bEnded = false;
	};

	const std::thread::id GameThreadId;
	std::mutex Lock;
	std::condition_variable Wake;
	std::deque<std::function<void()>> Posted;
	std::list<FDedicated> Dedicated;
	std::vector<FTicker> Tickers; // touched by the game thread only

	void Post(std::function<void()> Work);
	void JoinEnded();
	bool HasDedicated();
	bool RunOnePosted();
	bool TakeDueTicker(FTime Now, FTicker& Out);
	void RunDueTickers();
	FTime NextTick() const;
};
} // namespace QVStandalone
