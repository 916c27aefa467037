// SPDX-License-Identifier: MIT
#pragma once

#ifndef _WIN32
#include <csignal>
#include <sys/resource.h>
#endif

namespace QVTest
{
#ifdef _WIN32
constexpr bool bSmallDisks = false;
/** Nothing of that kind is there: tests with it are skipped. */
struct FSmallDisk
{
	explicit FSmallDisk(int /*Bytes*/) {}
};
#else
constexpr bool bSmallDisks = true;
/** As on a full disk: no file of this program may grow over this many bytes. */
class FSmallDisk
{
public:
	explicit FSmallDisk(rlim_t Bytes)
	{
		OldAction = std::signal(SIGXFSZ, SIG_IGN);
		::getrlimit(RLIMIT_FSIZE, &Old);
		const rlimit Small{Bytes, Old.rlim_max};
		::setrlimit(RLIMIT_FSIZE, &Small);
	}
	FSmallDisk(const FSmallDisk&) = delete;
	FSmallDisk& operator=(const FSmallDisk&) = delete;
	~FSmallDisk()
	{
		::setrlimit(RLIMIT_FSIZE, &Old);
		std::signal(SIGXFSZ, OldAction);
	}

private:
	rlimit Old = {};
	void (*OldAction)(int) = SIG_DFL;
};
#endif
} // namespace QVTest
