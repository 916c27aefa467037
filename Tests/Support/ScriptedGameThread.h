// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVGameThread.h"

#include <list>
#include <utility>
#include <vector>

namespace QVTest
{
/** Its time goes on only when a test says so; all is on the test's own thread. */
class FScriptedGameThread : public IQVGameThread
{
public:
	bool bInGameThread = true;
	/** Work for threads of its own waits for RunHeld; else it is run at once. */
	bool bHoldsDedicated = false;

	bool IsInGameThread() const override { return bInGameThread; }
	void RunOnGameThreadAndWait(const std::function<void()>& Work) override { Work(); }
	void AddTicker(double Period, std::function<bool()> Tick) override
	{
		Tickers.push_back({Period, Now + Period, std::move(Tick)});
	}
	void RunOnDedicatedThread(std::function<void()> Work) override
	{
		Held.push_back(std::move(Work));
		if (!bHoldsDedicated)
		{
			RunHeld();
		}
	}
	void RunHeld()
	{
		for (const std::function<void()>& Work : std::exchange(Held, {}))
		{
			Work();
		}
	}

	/** Runs what is due within so many seconds, in its order. */
	void Advance(double Seconds)
	{
		const double End = Now + Seconds;
		for (FTicker* Next = FindNext(End); Next != nullptr; Next = FindNext(End))
		{
			Now = Next->Due;
			Next->Due += Next->Period;
			const bool bAgain = Next->Tick();
			Tickers.remove_if([&](const FTicker& Each) { return &Each == Next && !bAgain; });
		}
		Now = End;
	}
	std::size_t NumTickers() const { return Tickers.size(); }

private:
	struct FTicker
	{
		double Period = 0;
		double Due = 0;
		std::function<bool()> Tick;
	};

	std::list<FTicker> Tickers;
	std::vector<std::function<void()>> Held;
	double Now = 0;

	FTicker* FindNext(double End)
	{
		// what is due at the end is due, however the seconds added up
		constexpr double Rounding = 1e-6;
		FTicker* Next = nullptr;
		for (FTicker& Each : Tickers)
		{
			const bool bDue = Each.Due <= End + Rounding;
			Next = bDue && (Next == nullptr || Each.Due < Next->Due) ? &Each : Next;
		}
		return Next;
	}
};
} // namespace QVTest
