// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVPrintf.h"
#include "Engine/QVProcesses.h"

#include <functional>
#include <optional>
#include <vector>

namespace QVTest
{
/**
 * Children that never run: one gives a chunk of output each time it is polled and has ended when it has given all but
 * the last, which then still lies in the pipe. What a real child does between two polls is up to chance; this is not.
 */
class FScriptedProcesses : public IQVProcesses
{
public:
	bool bStarts = true;
	/** Nothing: the code cannot be had. */
	std::optional<int> Code = 0;
	std::vector<std::string> Chunks;
	/** What the child does besides. */
	std::function<void()> Work;

	/** Program, a blank, the arguments. */
	std::vector<std::string> Commands;
	int OpenPipes = 0;
	int OpenHandles = 0;

	FQVPipe CreatePipe() override
	{
		++OpenPipes;
		return {};
	}
	FQVProcHandle CreateProc(std::string_view Program, std::string_view Arguments, const FQVPipe&) override
	{
		Commands.push_back(std::string(Program) + " " + std::string(Arguments));
		Next = 0;
		if (!bStarts)
		{
			return {};
		}
		if (Work)
		{
			Work();
		}
		++OpenHandles;
		return {std::make_shared<int>()};
	}
	FQVProcHandle CreateDetachedProc(
		std::string_view Program, std::string_view Arguments, std::string_view WorkingDirectory) override
	{
		Commands.push_back(QVPrintf("in %s: %s %s", WorkingDirectory, Program, Arguments));
		OpenHandles += bStarts ? 1 : 0;
		return {bStarts ? std::make_shared<int>() : nullptr};
	}
	bool IsProcRunning(FQVProcHandle&) override { return Next + 1 < Chunks.size(); }
	std::string ReadPipe(FQVPipe&) override { return Next < Chunks.size() ? Chunks[Next++] : std::string(); }
	bool GetProcReturnCode(FQVProcHandle&, int& OutCode) override
	{
		OutCode = Code.value_or(OutCode);
		return Code.has_value();
	}
	void CloseProc(FQVProcHandle&) override { --OpenHandles; }
	void ClosePipe(FQVPipe&) override { --OpenPipes; }
	void Sleep(double) override {}

private:
	std::size_t Next = 0;
};
} // namespace QVTest
