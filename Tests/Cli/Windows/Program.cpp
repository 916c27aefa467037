// SPDX-License-Identifier: MIT
#include "Tests/Cli/Program.h"

#include "Standalone/Formats/Windows/Win32.h"

#include <chrono>
#include <stdexcept>
#include <thread>

namespace QVTest
{
using namespace QVFormats;

namespace
{
constexpr std::chrono::minutes MostTime{2};
constexpr std::chrono::seconds MostTimeToTidy{10};

/** One word of a command line, so that it is taken apart as it was. */
std::wstring Quoted(const std::wstring& Word)
{
	std::wstring Result = L"\"";
	std::size_t Backslashes = 0;
	for (const wchar_t Letter : Word)
	{
		if (Letter == L'"')
		{
			Result.append(Backslashes + 1, L'\\');
		}
		Backslashes = Letter == L'\\' ? Backslashes + 1 : 0;
		Result.push_back(Letter);
	}
	return Result.append(Backslashes, L'\\').append(L"\"");
}

std::wstring CommandLine(const FProgramStart& Start)
{
	std::wstring Line = Quoted(WidePath(Start.File));
	for (const std::string& Word : Start.Words)
	{
		Line += L" " + Quoted(ToWide(Word));
	}
	return Line;
}

/** Ours with the changes, as a block of the system's. */
std::wstring EnvironmentBlock(const std::map<std::string, std::string>& Changes)
{
	std::map<std::wstring, std::wstring> Values;
	wchar_t* const Ours = ::GetEnvironmentStringsW();
	for (const wchar_t* Each = Ours; *Each != L'\0'; Each += std::wstring_view(Each).size() + 1)
	{
		const std::wstring_view Line = Each;
		const std::size_t Equals = Line.find(L'=', 1);
		Values[std::wstring(Line.substr(0, Equals))] = Line.substr(std::min(Equals, Line.size() - 1) + 1);
	}
	::FreeEnvironmentStringsW(Ours);
	Values.erase(L"QVMAP_ENGINE_DIR");
	for (const auto& [Name, Value] : Changes)
	{
		Values[ToWide(Name)] = ToWide(Value);
	}
	std::wstring Block;
	for (const auto& [Name, Value] : Values)
	{
		Block.append(Name).append(L"=").append(Value).push_back(L'\0');
	}
	Block.push_back(L'\0');
	return Block;
}

struct FPipeEnds
{
	FWinHandle Read;
	FWinHandle Write;
};

FPipeEnds MakePipe()
{
	HANDLE Read = nullptr;
	HANDLE Write = nullptr;
	if (!::CreatePipe(&Read, &Write, nullptr, 0))
	{
		throw std::runtime_error("no pipe: " + LastWinError().message());
	}
	::SetHandleInformation(Write, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
	return {FWinHandle(Read), FWinHandle(Write)};
}

void ReadAll(HANDLE End, std::string& Text)
{
	char Buffer[16 * 1024];
	for (DWORD Count = 0; ::ReadFile(End, Buffer, sizeof(Buffer), &Count, nullptr) && Count > 0;)
	{
		Text.append(Buffer, Count);
	}
}

DWORD ProcessesIn(HANDLE Job)
{
	JOBOBJECT_BASIC_ACCOUNTING_INFORMATION Info = {};
	::QueryInformationJobObject(Job, JobObjectBasicAccountingInformation, &Info, sizeof(Info), nullptr);
	return Info.ActiveProcesses;
}
} // namespace

struct FProgram::FRunning
{
	FWinHandle Process;
	FWinHandle Family;
	DWORD Id = 0;
	FProgramEnd End;
	std::thread OutReader;
	std::thread ErrReader;

	void Kill() { ::TerminateJobObject(Family.Get(), 1); }
	~FRunning()
	{
		Kill();
		if (OutReader.joinable())
		{
			OutReader.join();
			ErrReader.join();
		}
	}
};

FProgram::FProgram(const FProgramStart& Start)
	: Running(std::make_unique<FRunning>())
{
	if (Start.MostFileBytes || Start.TerminalColumns != 0)
	{
		throw std::runtime_error("neither full disks nor terminals are played here");
	}
	FPipeEnds Out = MakePipe();
	FPipeEnds Err = MakePipe();
	STARTUPINFOW Info = {};
	Info.cb = sizeof(Info);
	Info.dwFlags = STARTF_USESTDHANDLES;
	Info.hStdOutput = Out.Write.Get();
	Info.hStdError = Err.Write.Get();
	std::wstring Line = CommandLine(Start);
	std::wstring Environment = EnvironmentBlock(Start.Environment);
	PROCESS_INFORMATION Started = {};
	if (!::CreateProcessW(WidePath(Start.File).c_str(), Line.data(), nullptr, nullptr, TRUE,
			CREATE_SUSPENDED | CREATE_UNICODE_ENVIRONMENT | CREATE_NEW_PROCESS_GROUP, Environment.data(),
			WidePath(Start.Folder).c_str(), &Info, &Started))
	{
		throw std::runtime_error("not started: " + LastWinError().message());
	}
	Running->Process = FWinHandle(Started.hProcess);
	Running->Id = Started.dwProcessId;
	Running->Family = FWinHandle(::CreateJobObjectW(nullptr, nullptr));
	::AssignProcessToJobObject(Running->Family.Get(), Started.hProcess);
	const FWinHandle Thread(Started.hThread);
	Running->OutReader = std::thread([this, End = std::move(Out.Read)] { ReadAll(End.Get(), Running->End.Out); });
	Running->ErrReader = std::thread([this, End = std::move(Err.Read)] { ReadAll(End.Get(), Running->End.Err); });
	::ResumeThread(Thread.Get());
}

FProgram::~FProgram() = default;

bool FProgram::CanSignal()
{
	return ::GetConsoleCP() != 0;
}

void FProgram::Signal(int /*Number*/) const
{
	::GenerateConsoleCtrlEvent(CTRL_BREAK_EVENT, Running->Id);
}

void FProgram::Kill() const
{
	::TerminateProcess(Running->Process.Get(), static_cast<UINT>(Killed));
}

bool FProgram::AwaitOnTerminal(std::string_view /*Text*/)
{
	throw std::runtime_error("no terminals are played here");
}

void FProgram::Type(std::string_view /*Keys*/) const
{
	throw std::runtime_error("no terminals are played here");
}

FProgramEnd FProgram::Wait()
{
	const auto Milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(MostTime).count();
	const bool bEnded =
		::WaitForSingleObject(Running->Process.Get(), static_cast<DWORD>(Milliseconds)) == WAIT_OBJECT_0;
	const auto TidyUntil = std::chrono::steady_clock::now() + MostTimeToTidy;
	while (bEnded && ProcessesIn(Running->Family.Get()) > 0 && std::chrono::steady_clock::now() < TidyUntil)
	{
		std::this_thread::sleep_for(std::chrono::milliseconds(10));
	}
	Running->End.bNothingLeft = bEnded && ProcessesIn(Running->Family.Get()) == 0;
	DWORD Code = 0;
	::GetExitCodeProcess(Running->Process.Get(), &Code);
	Running->Kill();
	Running->OutReader.join();
	Running->ErrReader.join();
	Running->End.Err += bEnded ? "" : "\nkilled: it did not end in time\n";
	Running->End.Code = static_cast<int>(Code);
	return Running->End;
}
} // namespace QVTest
