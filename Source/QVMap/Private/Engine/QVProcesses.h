// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>

/** A pipe that a child writes its output into. Owned by whoever asked for it, ended by ClosePipe. */
struct FQVPipe
{
	std::shared_ptr<void> Impl;
};

/** A child process; invalid when it could not be started. Given back by CloseProc, which does not end the child. */
struct FQVProcHandle
{
	std::shared_ptr<void> Impl;

	bool IsValid() const { return Impl != nullptr; }
};

/** Child processes, polled. Any thread; one child is watched by one thread. */
class IQVProcesses
{
public:
	virtual ~IQVProcesses() = default;

	virtual FQVPipe CreatePipe() = 0;
	/**
	 * Starts a program without a window and without a shell, its output into the pipe, nothing on its input. Arguments
	 * is one string in Windows form: blanks separate, quotes group, \" is a quote.
	 */
	virtual FQVProcHandle CreateProc(std::string_view Program, std::string_view Arguments, const FQVPipe& Output) = 0;
	/**
	 * Starts a program with its windows that goes on when we end. Its handle is good for CloseProc alone. An empty
	 * working directory is ours.
	 */
	virtual FQVProcHandle CreateDetachedProc(
		std::string_view Program, std::string_view Arguments, std::string_view WorkingDirectory) = 0;
	virtual bool IsProcRunning(FQVProcHandle& Process) = 0;
	/** What is waiting, without blocking; never ends inside a UTF-8 character unless the child has ended. */
	virtual std::string ReadPipe(FQVPipe& Pipe) = 0;
	/** False, and OutCode untouched, while the child runs or when its code cannot be had. */
	virtual bool GetProcReturnCode(FQVProcHandle& Process, int& OutCode) = 0;
	virtual void CloseProc(FQVProcHandle& Process) = 0;
	virtual void ClosePipe(FQVPipe& Pipe) = 0;
	virtual void Sleep(double Seconds) = 0;
};
