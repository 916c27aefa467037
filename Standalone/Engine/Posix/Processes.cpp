// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Processes.h"

#include "Core/QVUnicode.h"
#include "Standalone/Engine/ArgumentString.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/Posix/Spawn.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace QVStandalone
{
namespace
{
constexpr std::size_t MostPerRead = std::size_t{1} << 20;
constexpr int PipeBytes = 1 << 20; // polled a hundred times a second, a pipe of the usual 64 KiB would hold a child up
constexpr std::chrono::seconds KillAfter{3};

void CloseFile(int& File)
{
	if (File >= 0)
	{
		::close(File);
		File = -1;
	}
}

/** Both ends, and the bytes of a character that is not complete yet. */
struct FPipe
{
	int ReadEnd = -1;
	int WriteEnd = -1;
	std::string Tail;

	FPipe() = default;
	FPipe(const FPipe&) = delete;
	FPipe& operator=(const FPipe&) = delete;
	~FPipe()
	{
		CloseFile(ReadEnd);
		CloseFile(WriteEnd);
	}
};

struct FChild
{
	pid_t Id = -1;
	std::string Name;
	bool bRunning = true;
	int Code = 0;
	int SignalsSent = 0;
	std::chrono::steady_clock::time_point AskedToEnd;
};

FPipe& PipeOf(const FQVPipe& Pipe)
{
	return *static_cast<FPipe*>(Pipe.Impl.get());
}

FChild& ChildOf(const FQVProcHandle& Process)
{
	return *static_cast<FChild*>(Process.Impl.get());
}

/** Asks the child's whole group to end; insists when it was asked before. */
void EndInterruptedChild(FChild& Child)
{
	const auto Now = std::chrono::steady_clock::now();
	if (Child.SignalsSent == 0)
	{
		::kill(-Child.Id, SIGTERM);
		Child.SignalsSent = 1;
		Child.AskedToEnd = Now;
	}
	else if (Child.SignalsSent == 1 && (FInterrupt::Count() > 1 || Now - Child.AskedToEnd > KillAfter))
	{
		::kill(-Child.Id, SIGKILL);
		Child.SignalsSent = 2;
	}
}

void RecordEnd(FChild& Child, int Status)
{
	Child.bRunning = false;
	Child.Code = ExitCodeOf(Status);
	if (WIFSIGNALED(Status))
	{
		LogEngine(EQVLogVerbosity::Warning, "%s was ended by signal %d (%s)", Child.Name, WTERMSIG(Status),
			::strsignal(WTERMSIG(Status)));
	}
}

/** The child, or null and the reason in the log. */
std::shared_ptr<FChild> StartChild(const std::string& File, std::string_view Arguments, const FSpawnOptions& Options)
{
	if (FInterrupt::IsRaised())
	{
		LogEngine(EQVLogVerbosity::Warning, "%s was not started: interrupted", File);
		return nullptr;
	}
	auto Child = std::make_shared<FChild>();
	Child->Name = File;
	const int Error = Spawn(Child->Id, File, SplitArguments(Arguments), Options);
	if (Error != 0)
	{
		LogEngine(EQVLogVerbosity::Warning, "%s could not be started: %s", File, ErrorText(Error));
		return nullptr;
	}
	return Child;
}
} // namespace

FQVPipe FProcesses::CreatePipe()
{
	auto Pipe = std::make_shared<FPipe>();
	int Ends[2] = {-1, -1};
	if (::pipe2(Ends, O_CLOEXEC) != 0)
	{
		LogEngine(EQVLogVerbosity::Warning, "a pipe could not be made: %s", ErrorText(errno));
		return {Pipe};
	}
	Pipe->ReadEnd = Ends[0];
	Pipe->WriteEnd = Ends[1];
	::fcntl(Pipe->ReadEnd, F_SETFL, O_NONBLOCK);
#ifdef F_SETPIPE_SZ
	::fcntl(Pipe->WriteEnd, F_SETPIPE_SZ, PipeBytes);
#endif
	return {Pipe};
}

FQVProcHandle FProcesses::CreateProc(std::string_view Program, std::string_view Arguments, const FQVPipe& Output)
{
	FPipe& Pipe = PipeOf(Output);
	FSpawnOptions Options;
	Options.Output = Pipe.WriteEnd;
	std::shared_ptr<FChild> Child = StartChild(std::string(Program), Arguments, Options);
	if (Child != nullptr)
	{
		CloseFile(Pipe.WriteEnd); // the child has its own; without ours, the pipe ends when the child does
	}
	return {std::move(Child)};
}

FQVProcHandle FProcesses::CreateDetachedProc(
	std::string_view Program, std::string_view Arguments, std::string_view WorkingDirectory)
{
	std::error_code Ignored;
	FSpawnOptions Options;
	Options.bOwnSession = true;
	Options.WorkingFolder = WorkingDirectory;
	// as seen from our folder, not from the child's
	const std::string File = FromOsPath(std::filesystem::absolute(ToOsPath(Program), Ignored));
	std::shared_ptr<FChild> Child = StartChild(File, Arguments, Options);
	if (Child != nullptr)
	{
		ReapInBackground(Child->Id);
	}
	return {std::move(Child)};
}

bool FProcesses::IsProcRunning(FQVProcHandle& Process)
{
	FChild& Child = ChildOf(Process);
	if (!Child.bRunning)
	{
		return false;
	}
	int Status = 0;
	const pid_t Ended = ::waitpid(Child.Id, &Status, WNOHANG);
	if (Ended == Child.Id)
	{
		RecordEnd(Child, Status);
	}
	else if (Ended < 0 && errno != EINTR)
	{
		Child.bRunning = false;
		Child.Code = -1;
	}
	else if (FInterrupt::IsRaised())
	{
		EndInterruptedChild(Child);
	}
	return Child.bRunning;
}

std::string FProcesses::ReadPipe(FQVPipe& Handle)
{
	FPipe& Pipe = PipeOf(Handle);
	std::string Text = std::move(Pipe.Tail);
	Pipe.Tail.clear();
	char Buffer[16 * 1024];
	bool bEnded = Pipe.ReadEnd < 0;
	while (!bEnded && Text.size() < MostPerRead)
	{
		const ssize_t Length = ::read(Pipe.ReadEnd, Buffer, sizeof(Buffer));
		if (Length < 0 && errno == EINTR)
		{
			continue;
		}
		if (Length < 0)
		{
			break; // nothing is waiting
		}
		bEnded = Length == 0;
		Text.append(Buffer, static_cast<std::size_t>(Length));
	}
	if (!bEnded)
	{
		const std::size_t Keep = FQVUnicode::IncompleteTail(Text);
		Pipe.Tail = Text.substr(Text.size() - Keep);
		Text.resize(Text.size() - Keep);
	}
	return FQVUnicode::Repair(Text);
}

bool FProcesses::GetProcReturnCode(FQVProcHandle& Process, int& OutCode)
{
	if (IsProcRunning(Process))
	{
		return false;
	}
	OutCode = ChildOf(Process).Code;
	return true;
}

void FProcesses::CloseProc(FQVProcHandle& Process)
{
	Process.Impl.reset();
}

void FProcesses::ClosePipe(FQVPipe& Pipe)
{
	Pipe.Impl.reset();
}

void FProcesses::Sleep(double Seconds)
{
	std::this_thread::sleep_for(std::chrono::duration<double>(Seconds));
}
} // namespace QVStandalone
