// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Parallel.h"

#include <condition_variable>
#include <mutex>
#include <vector>

namespace QVFormats
{
/**
 * Numbered jobs made on all threads and finished one after the other in the order of their numbers. At most as many
 * jobs as there are slots are under way, which bounds the memory whatever the input's size.
 */
template<class FSlot>
class TOrderedJobs
{
public:
	TOrderedJobs(unsigned InThreads, std::size_t SlotCount)
		: Threads(InThreads)
		, Slots(SlotCount)
		, Ready(SlotCount)
	{
	}

	/**
	 * Make(Worker, Job, Slot) runs on any thread; Finish(Job, Slot) on any thread too, but never twice at once. When
	 * Finish gives false, no further job is begun or finished, and Run returns once those under way have ended.
	 */
	template<class FMake, class FFinish>
	void Run(std::size_t First, std::size_t InEnd, const FMake& Make, const FFinish& Finish)
	{
		NextJob = NextFinish = First;
		End = InEnd;
		bStopped = bFinishing = false;
		Ready.assign(Ready.size(), false);
		RunOnThreads(Threads, [&](unsigned Worker) { Work(Worker, Make, Finish); });
	}

private:
	template<class FMake, class FFinish>
	void Work(unsigned Worker, const FMake& Make, const FFinish& Finish)
	{
		std::unique_lock Lock(Mutex);
		while (TakesAnother(Lock))
		{
			const std::size_t Job = NextJob++;
			Lock.unlock();
			Make(Worker, Job, Slots[Job % Slots.size()]);
			Lock.lock();
			Ready[Job % Slots.size()] = true;
			if (!bFinishing)
			{
				FinishReady(Lock, Finish);
			}
		}
	}

	bool TakesAnother(std::unique_lock<std::mutex>& Lock)
	{
		Room.wait(Lock, [this] { return bStopped || NextJob == End || NextJob < NextFinish + Slots.size(); });
		return !bStopped && NextJob < End;
	}

	template<class FFinish>
	void FinishReady(std::unique_lock<std::mutex>& Lock, const FFinish& Finish)
	{
		bFinishing = true;
		while (!bStopped && NextFinish < End && Ready[NextFinish % Slots.size()])
		{
			Lock.unlock();
			const bool bGoOn = Finish(NextFinish, Slots[NextFinish % Slots.size()]);
			Lock.lock();
			Ready[NextFinish % Slots.size()] = false;
			++NextFinish;
			bStopped = !bGoOn;
			Room.notify_all();
		}
		bFinishing = false;
	}

	unsigned Threads;
	std::vector<FSlot> Slots;
	std::vector<char> Ready;
	std::mutex Mutex;
	std::condition_variable Room;
	std::size_t NextJob = 0;
	std::size_t NextFinish = 0;
	std::size_t End = 0;
	bool bStopped = false;
	bool bFinishing = false;
};
} // namespace QVFormats
