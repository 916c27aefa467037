// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVProcesses.h"

namespace QVStandalone
{
/**
 * Child processes of the operating system. A child's error output goes into the pipe too: hidden programs have no other
 * place to complain. After an interrupt no child is started, and running ones are ended with all that they started.
 */
class FProcesses : public IQVProcesses
{
public:
	FQVPipe CreatePipe() override;
	FQVProcHandle CreateProc(std::string_view Program, std::string_view Arguments, const FQVPipe& Output) override;
	/** What it prints goes nowhere. */
	FQVProcHandle CreateDetachedProc(
		std::string_view Program, std::string_view Arguments, std::string_view WorkingDirectory) override;
	bool IsProcRunning(FQVProcHandle& Process) override;
	std::string ReadPipe(FQVPipe& Pipe) override;
	bool GetProcReturnCode(FQVProcHandle& Process, int& OutCode) override;
	void CloseProc(FQVProcHandle& Process) override;
	void ClosePipe(FQVPipe& Pipe) override;
	void Sleep(double Seconds) override;
};
} // namespace QVStandalone
