// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Interrupt.h"

#include <atomic>
#include <csignal>

namespace QVStandalone
{
namespace
{
std::atomic<int> Requests{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may only touch lock-free atomics");

extern "C" void OnSignal(int)
{
	Requests.fetch_add(1);
}
} // namespace

void FInterrupt::Install()
{
	struct sigaction Action = {};
	Action.sa_handler = &OnSignal;
	Action.sa_flags = SA_RESTART;
	sigemptyset(&Action.sa_mask);
	for (const int Signal : {SIGINT, SIGTERM, SIGHUP})
	{
		::sigaction(Signal, &Action, nullptr);
	}
	// a full disk quota and a closed terminal are errors of the write, not reasons to die without cleaning up
	Action.sa_handler = SIG_IGN;
	for (const int Signal : {SIGPIPE, SIGXFSZ})
	{
		::sigaction(Signal, &Action, nullptr);
	}
}

int FInterrupt::Count()
{
	return Requests.load();
}

void FInterrupt::Raise()
{
	Requests.fetch_add(1);
}

void FInterrupt::Reset()
{
	Requests.store(0);
}
} // namespace QVStandalone
