// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Processes.h"

#include "Core/QVUnicode.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/Windows/Spawn.h"

#include <thread>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
constexpr std::size_t MostPerRead = 1 << 20;
constexpr DWORD PipeBytes = 1 << 20; // polled a hundred times a second, a small pipe would hold a child up
/** The code of a program that Ctrl-C has ended. */
constexpr DWORD EndedByControl = 0xC000013A;
/** Codes from here on are those of exceptions that nobody caught. */
constexpr DWORD FirstException = 0xC0000000;

/** Both ends, and the bytes of a character that is not complete yet. */
struct FPipe
{
	FWinHandle ReadEnd;
	FWinHandle WriteEnd;
	std::string Tail;
	/** What comes now is the last, whoever else may hold the pipe open. */
	bool bChildEnded = false;
};

struct FChild
{
	std::weak_ptr<FPipe> Output;
	FSpawned Process;
	std::string Name;
	bool bRunning = true;
	DWORD Code = 0;
	bool bEndedByUs = false;
};

FPipe& PipeOf(const FQVPipe& Pipe)
{
	return *static_cast<FPipe*>(Pipe.Impl.get());
}

FChild& ChildOf(const FQVProcHandle& Process)
{
	return *static_cast<FChild*>(Process.Impl.get());
}

void RecordEnd(FChild& Child)
{
	Child.bRunning = false;
	if (const std::shared_ptr<FPipe> Output = Child.Output.lock())
	{
		Output->bChildEnded = true;
	}
	::GetExitCodeProcess(Child.Process.Process.Get(), &Child.Code);
	if (Child.bEndedByUs)
	{
		LogEngine(EQVLogVerbosity::Warning, "%s was ended: interrupted", Child.Name);
	}
	else if (Child.Code >= FirstException)
	{
		LogEngine(EQVLogVerbosity::Warning, "%s was ended by exception 0x%08X", Child.Name, Child.Code);
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
	const std::error_code Error = Spawn(Child->Process, File, Arguments, Options);
	if (Error)
	{
		LogEngine(EQVLogVerbosity::Warning, "%s could not be started: %s", File, Error.message());
		return nullptr;
	}
	return Child;
}

/** What is waiting; false when the other end is closed. */
bool ReadSome(HANDLE End, std::string& Text)
{
	char Buffer[16 * 1024];
	DWORD Waiting = 0;
	while (Text.size() < MostPerRead)
	{
		if (!::PeekNamedPipe(End, nullptr, 0, nullptr, &Waiting, nullptr))
		{
			return false;
		}
		DWORD Count = 0;
		if (Waiting == 0)
		{
			break;
		}
		if (!::ReadFile(End, Buffer, sizeof(Buffer), &Count, nullptr))
		{
			return false;
		}
		Text.append(Buffer, Count);
	}
	return true;
}
} // namespace

FQVPipe FProcesses::CreatePipe()
{
	auto Pipe = std::make_shared<FPipe>();
	HANDLE Read = nullptr;
	HANDLE Write = nullptr;
	if (!::CreatePipe(&Read, &Write, nullptr, PipeBytes))
	{
		LogEngine(EQVLogVerbosity::Warning, "a pipe could not be made: %s", LastWinError().message());
		return {Pipe};
	}
	Pipe->ReadEnd = FWinHandle(Read);
	Pipe->WriteEnd = FWinHandle(Write);
	return {Pipe};
}

FQVProcHandle FProcesses::CreateProc(std::string_view Program, std::string_view Arguments, const FQVPipe& Output)
{
	FPipe& Pipe = PipeOf(Output);
	FSpawnOptions Options;
	Options.Output = Pipe.WriteEnd.Get();
	std::shared_ptr<FChild> Child = StartChild(std::string(Program), Arguments, Options);
	if (Child != nullptr)
	{
		Child->Output = std::static_pointer_cast<FPipe>(Output.Impl);
		Pipe.WriteEnd.Close(); // the child has its own; without ours, the pipe ends when the child does
	}
	return {std::move(Child)};
}

FQVProcHandle FProcesses::CreateDetachedProc(
	std::string_view Program, std::string_view Arguments, std::string_view WorkingDirectory)
{
	FSpawnOptions Options;
	Options.bDetached = true;
	Options.WorkingFolder = WorkingDirectory;
	return {StartChild(std::string(Program), Arguments, Options)};
}

bool FProcesses::IsProcRunning(FQVProcHandle& Process)
{
	FChild& Child = ChildOf(Process);
	if (Child.bRunning && ::WaitForSingleObject(Child.Process.Process.Get(), 0) != WAIT_TIMEOUT)
	{
		RecordEnd(Child);
	}
	else if (Child.bRunning && FInterrupt::IsRaised() && !Child.bEndedByUs)
	{
		// a program without a window and without our console cannot be asked
		Child.bEndedByUs = true;
		::TerminateJobObject(Child.Process.Family.Get(), EndedByControl);
	}
	return Child.bRunning;
}

std::string FProcesses::ReadPipe(FQVPipe& Handle)
{
	FPipe& Pipe = PipeOf(Handle);
	std::string Text = std::move(Pipe.Tail);
	Pipe.Tail.clear();
	if (Pipe.ReadEnd.IsValid() && ReadSome(Pipe.ReadEnd.Get(), Text) && !Pipe.bChildEnded)
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
	OutCode = static_cast<int>(ChildOf(Process).Code); // 32 bits as they are, which is how the engine shows them
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
