// SPDX-License-Identifier: MIT
#include "Tests/Support/TestChildSystem.h"

#include "Standalone/Engine/Environment.h"
#include "Standalone/Engine/ExecutablePath.h"
#include "Standalone/Engine/Windows/Spawn.h"

#include <cstdio>
#include <stdexcept>

namespace QVTest
{
using namespace QVFormats;

namespace
{
FWinHandle Listener;
} // namespace

std::vector<std::string> ProgramWords(int Count, char** Words)
{
	std::vector<std::string> All = QVStandalone::BeginProgram(Count, Words);
	All.insert(All.begin(), QVStandalone::ExecutablePath());
	return All;
}

void Listen(const std::string& Path)
{
	Listener = FWinHandle(::CreateNamedPipeW(
		ToWide(Path).c_str(), PIPE_ACCESS_INBOUND, PIPE_TYPE_BYTE | PIPE_WAIT, 1, 4096, 4096, 0, nullptr));
	if (!Listener.IsValid())
	{
		throw std::runtime_error("cannot listen at " + Path + ": " + LastWinError().message());
	}
}

std::string ReceiveMessage()
{
	if (!::ConnectNamedPipe(Listener.Get(), nullptr) && ::GetLastError() != ERROR_PIPE_CONNECTED &&
		::GetLastError() != ERROR_NO_DATA)
	{
		throw std::runtime_error("nobody came: " + LastWinError().message());
	}
	std::string Message;
	char Buffer[256];
	for (DWORD Count = 0; ::ReadFile(Listener.Get(), Buffer, sizeof(Buffer), &Count, nullptr) && Count > 0;)
	{
		Message.append(Buffer, Count);
	}
	::DisconnectNamedPipe(Listener.Get());
	return Message;
}

void CloseOutput()
{
	std::fclose(stdout);
	std::fclose(stderr);
}

void StartGrandchild(int Milliseconds)
{
	QVStandalone::FSpawned Grandchild;
	QVStandalone::FSpawnOptions Options;
	Options.Output = ::GetStdHandle(STD_OUTPUT_HANDLE);
	const std::error_code Error = QVStandalone::Spawn(
		Grandchild, QVStandalone::ExecutablePath(), "--sleep " + std::to_string(Milliseconds), Options);
	if (Error)
	{
		throw std::runtime_error("no grandchild: " + Error.message());
	}
}

void RaiseSignal(int Number)
{
	::TerminateProcess(::GetCurrentProcess(), static_cast<DWORD>(Number));
}

void Abort()
{
	::SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
	::TerminateProcess(::GetCurrentProcess(), 0xC0000005);
}
} // namespace QVTest
