// SPDX-License-Identifier: MIT
#include "Standalone/Engine/GameThread.h"

#include "Core/QVCheck.h"

#include <algorithm>
#include <atomic>

namespace QVStandalone
{
namespace
{
/** How long the game thread sleeps when it has nothing to wait for but its own caller's condition. */
constexpr std::chrono::milliseconds IdleWait{20};
} // namespace

FGameThread::FGameThread()
	: GameThreadId(std::this_thread::get_id())
{
}

FGameThread::~FGameThread()
{
	RunUntil([this] { return !HasDedicated(); });
}

bool FGameThread::HasDedicated()
{
	JoinEnded();
	const std::lock_guard Guard(Lock);
	return !Dedicated.empty() || !Posted.empty();
}

/** Each is waited for as soon as it has ended: a long session starts many, and must not keep them. */
void FGameThread::JoinEnded()
{
	std::list<FDedicated> Ended;
	{
		const std::lock_guard Guard(Lock);
		for (auto Each = Dedicated.begin(); Each != Dedicated.end();)
		{
			const auto Current = Each++;
			if (Current->bEnded)
			{
				Ended.splice(Ended.end(), Dedicated, Current);
			}
		}
	}
	for (FDedicated& Each : Ended)
	{
		Each.Thread.join();
	}
}

bool FGameThread::IsInGameThread() const
{
	return std::this_thread::get_id() == GameThreadId;
}

void FGameThread::Post(std::function<void()> Work)
{
	{
		const std::lock_guard Guard(Lock);
		Posted.push_back(std::move(Work));
	}
	Wake.notify_all();
}

void FGameThread::RunOnGameThreadAndWait(const std::function<void()>& Work)
{
	if (IsInGameThread())
	{
		Work();
		return;
	}
	std::mutex DoneLock;
	std::condition_variable DoneSignal;
	bool bDone = false;
	Post(
		[&]
		{
			Work();
			const std::lock_guard Guard(DoneLock);
			bDone = true;
			DoneSignal.notify_all();
		});
	std::unique_lock Guard(DoneLock);
	DoneSignal.wait(Guard, [&bDone] { return bDone; });
}

void FGameThread::AddTicker(double Period, std::function<bool()> Tick)
{
	QV_CHECK(IsInGameThread());
	const std::chrono::duration<double> Each(Period);
	const FTime First = std::chrono::steady_clock::now() + std::chrono::duration_cast<FTime::duration>(Each);
	Tickers.push_back({Each, First, std::move(Tick)});
}

void FGameThread::RunOnDedicatedThread(std::function<void()> Work)
{
	QV_CHECK(IsInGameThread());
	JoinEnded();
	const std::lock_guard Guard(Lock);
	FDedicated& Own = Dedicated.emplace_back();
	Own.Thread = std::thread(
		[this, &Own, Work = std::move(Work)]
		{
			Work();
			const std::lock_guard EndGuard(Lock);
			Own.bEnded = true;
			Wake.notify_all();
		});
}

bool FGameThread::RunOnePosted()
{
	std::function<void()> Work;
	{
		const std::lock_guard Guard(Lock);
		if (Posted.empty())
		{
			return false;
		}
		Work = std::move(Posted.front());
		Posted.pop_front();
	}
	Work();
	return true;
}

bool FGameThread::TakeDueTicker(FTime Now, FTicker& Out)
{
	const auto Due =
		std::find_if(Tickers.begin(), Tickers.end(), [Now](const FTicker& Ticker) { return Ticker.Next <= Now; });
	if (Due == Tickers.end())
	{
		return false;
	}
	Out = std::move(*Due);
	Tickers.erase(Due);
	return true;
}

void FGameThread::RunDueTickers()
{
	const FTime Now = std::chrono::steady_clock::now();
	// a tick may add tickers, or wait on the game thread and so come back here: it is out of the list while it runs
	for (FTicker Ticker; TakeDueTicker(Now, Ticker);)
	{
		if (Ticker.Tick())
		{
			const auto Period = std::chrono::duration_cast<FTime::duration>(Ticker.Period);
			Ticker.Next = Now + std::max(Period, FTime::duration(1));
			Tickers.push_back(std::move(Ticker));
		}
	}
}

FGameThread::FTime FGameThread::NextTick() const
{
	FTime Next = std::chrono::steady_clock::now() + IdleWait;
	for (const FTicker& Ticker : Tickers)
	{
		Next = std::min(Next, Ticker.Next);
	}
	return Next;
}

void FGameThread::RunUntil(const std::function<bool()>& Done)
{
	QV_CHECK(IsInGameThread());
	while (!Done())
	{
		RunDueTickers();
		if (RunOnePosted())
		{
			continue;
		}
		std::unique_lock Guard(Lock);
		if (Posted.empty())
		{
			Wake.wait_until(Guard, NextTick());
		}
	}
}

void FGameThread::RunDedicatedUntilDone(std::function<void()> Work)
{
	std::atomic<bool> bDone{false};
	RunOnDedicatedThread(
		[this, &bDone, Work = std::move(Work)]
		{
			Work();
			bDone.store(true);
			Post([] {}); // wakes the game thread at once
		});
	RunUntil([&bDone] { return bDone.load(); });
}

void FGameThread::RunUntilIdle()
{
	RunUntil([this] { return Tickers.empty() && !HasDedicated(); });
}
} // namespace QVStandalone
