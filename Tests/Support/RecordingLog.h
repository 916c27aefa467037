// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVLog.h"

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace QVTest
{
struct FLogLine
{
	std::string Category;
	EQVLogVerbosity Verbosity = EQVLogVerbosity::Log;
	std::string Text;
};

/** Installed as the log's sink as long as it lives; keeps every line. Any thread. */
class FRecordingLog : public IQVLogSink
{
public:
	FRecordingLog()
		: Previous(FQVLog::SetSink(this))
	{
	}
	FRecordingLog(const FRecordingLog&) = delete;
	FRecordingLog& operator=(const FRecordingLog&) = delete;
	~FRecordingLog() override { FQVLog::SetSink(Previous); }

	void Write(std::string_view Category, EQVLogVerbosity Verbosity, std::string_view Text) override
	{
		const std::lock_guard Guard(Lock);
		Lines.push_back({std::string(Category), Verbosity, std::string(Text)});
	}

	/** All lines since the last call. */
	std::vector<FLogLine> Take()
	{
		const std::lock_guard Guard(Lock);
		return std::exchange(Lines, {});
	}

private:
	IQVLogSink* Previous;
	std::mutex Lock;
	std::vector<FLogLine> Lines;
};
} // namespace QVTest
