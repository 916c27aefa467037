// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVProcesses.h"

#include <string>
#include <vector>

namespace QVCli
{
/** Stands in front of the engine's processes and remembers what the last child wrote, for the user to read if it fails.
 */
class FToolOutput : public IQVProcesses
{
public:
	explicit FToolOutput(IQVProcesses& InInner)
		: Inner(InInner)
	{
	}

	/** The newest lines of the last child, the oldest of them first. */
	std::vector<std::string> LastLines() const;
	/** What the last child ended with; 0 while there was none. */
	int LastCode() const { return Code; }

	/** The program that was last started to live on without us; empty if none was. */
	const std::string& GetDetached() const { return Detached; }

	FQVPipe CreatePipe() override { return Inner.CreatePipe(); }
	FQVProcHandle CreateProc(std::string_view Program, std::string_view Arguments, const FQVPipe& Output) override;
	FQVProcHandle CreateDetachedProc(
		std::string_view Program, std::string_view Arguments, std::string_view WorkingDirectory) override;
	bool IsProcRunning(FQVProcHandle& Process) override { return Inner.IsProcRunning(Process); }
	std::string ReadPipe(FQVPipe& Pipe) override;
	bool GetProcReturnCode(FQVProcHandle& Process, int& OutCode) override;
	void CloseProc(FQVProcHandle& Process) override { Inner.CloseProc(Process); }
	void ClosePipe(FQVPipe& Pipe) override { Inner.ClosePipe(Pipe); }
	void Sleep(double Seconds) override { Inner.Sleep(Seconds); }

private:
	IQVProcesses& Inner;
	std::string Tail;
	std::string Detached;
	int Code = 0;
};
} // namespace QVCli
