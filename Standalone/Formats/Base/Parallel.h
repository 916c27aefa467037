// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <functional>

namespace QVFormats
{
/** Wanted threads, 0 meaning one for each core, but never more than there are jobs and never none. */
unsigned ThreadCount(unsigned Wanted, std::size_t Jobs);

/** Calls Body(0..Count-1), each on a thread of its own, the caller's among them. Where the system refuses a thread,
 * the others carry on without it: Body must take its work from a common source. */
void RunOnThreads(unsigned Count, const std::function<void(unsigned Worker)>& Body);

/** Calls Body(Worker, Index) for every index below Count; Worker is below Threads and never runs twice at once. */
template<class FBody>
void ParallelFor(unsigned Threads, std::size_t Count, const FBody& Body)
{
	std::atomic<std::size_t> Next{0};
	RunOnThreads(Threads,
		[&Next, &Body, Count](unsigned Worker)
		{
			for (std::size_t Index = Next++; Index < Count; Index = Next++)
			{
				Body(Worker, Index);
			}
		});
}
} // namespace QVFormats
