// SPDX-License-Identifier: MIT
#include "Core/QVLog.h"

#include <atomic>

namespace
{
std::atomic<IQVLogSink*> CurrentSink{nullptr};
}

IQVLogSink* FQVLog::SetSink(IQVLogSink* Sink)
{
	return CurrentSink.exchange(Sink);
}

bool FQVLog::HasSink()
{
	return CurrentSink.load(std::memory_order_relaxed) != nullptr;
}

void FQVLog::WriteAs(std::string_view LineCategory, EQVLogVerbosity Verbosity, std::string_view Text)
{
	if (IQVLogSink* Sink = CurrentSink.load())
	{
		Sink->Write(LineCategory, Verbosity, Text);
	}
}

std::string_view FQVLog::Word(EQVLogVerbosity Verbosity)
{
	constexpr std::string_view Words[] = {"Error", "Warning", "Log", "Verbose"};
	return Words[static_cast<int>(Verbosity)];
}
