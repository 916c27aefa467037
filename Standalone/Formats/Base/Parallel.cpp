// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/Parallel.h"

#include <algorithm>
#include <system_error>
#include <thread>
#include <vector>

namespace QVFormats
{
unsigned ThreadCount(unsigned Wanted, std::size_t Jobs)
{
	const std::size_t Threads = Wanted > 0 ? Wanted : std::max(1U, std::thread::hardware_concurrency());
	return static_cast<unsigned>(std::max<std::size_t>(1, std::min(Threads, Jobs)));
}

void RunOnThreads(unsigned Count, const std::function<void(unsigned Worker)>& Body)
{
	std::vector<std::thread> Threads;
	Threads.reserve(Count);
	try
	{
		for (unsigned Worker = 1; Worker < Count; ++Worker)
		{
			Threads.emplace_back([&Body, Worker] { Body(Worker); });
		}
	}
	catch (const std::system_error&)
	{
		// Fewer threads than wanted: slower, not wrong.
	}
	Body(0);
	for (std::thread& Thread : Threads)
	{
		Thread.join();
	}
}
} // namespace QVFormats
