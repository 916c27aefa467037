// SPDX-License-Identifier: MIT
#include "Tests/Cli/Program.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace QVTest
{
namespace
{
using FClock = std::chrono::steady_clock;

constexpr std::chrono::minutes MostTime{2};
constexpr std::chrono::seconds MostTimeToTidy{10};

struct FPipeEnds
{
	int Read = -1;
	int Write = -1;
};

/** Neither end outlives an exec, except where it is made a standard stream or is to be inherited. */
FPipeEnds MakePipe(int Flags = O_CLOEXEC)
{
	int Ends[2] = {-1, -1};
	if (::pipe2(Ends, Flags) != 0)
	{
		throw std::runtime_error(std::strerror(errno));
	}
	::fcntl(Ends[0], F_SETFD, FD_CLOEXEC);
	return {Ends[0], Ends[1]};
}

FPipeEnds MakeTerminal(unsigned short Columns)
{
	FPipeEnds Ends;
	const winsize Size{24, Columns, 0, 0};
	if (::openpty(&Ends.Read, &Ends.Write, nullptr, nullptr, &Size) != 0)
	{
		throw std::runtime_error(std::strerror(errno));
	}
	::fcntl(Ends.Read, F_SETFD, FD_CLOEXEC);
	::fcntl(Ends.Write, F_SETFD, FD_CLOEXEC);
	return Ends;
}

void CloseEnd(int& End)
{
	if (End >= 0)
	{
		::close(End);
		End = -1;
	}
}

/** What is waiting; false at the end of the stream. The master of a terminal that nobody has open gives an error. */
bool ReadSome(int End, std::string& Text)
{
	char Buffer[16 * 1024];
	const ssize_t Count = ::read(End, Buffer, sizeof(Buffer));
	Text.append(Buffer, Count > 0 ? static_cast<std::size_t>(Count) : 0);
	return Count > 0 || (Count < 0 && errno == EINTR);
}

/** Reads all streams to their ends; false if time ran out before. */
bool ReadAll(std::vector<std::pair<int*, std::string*>> Streams, std::chrono::milliseconds Most)
{
	const auto Deadline = FClock::now() + Most;
	while (std::erase_if(Streams, [](const auto& Stream) { return *Stream.first < 0; }), !Streams.empty())
	{
		std::vector<pollfd> Polled;
		for (const auto& Stream : Streams)
		{
			Polled.push_back({*Stream.first, POLLIN, 0});
		}
		const auto Left = std::chrono::duration_cast<std::chrono::milliseconds>(Deadline - FClock::now()).count();
		if (Left <= 0 || ::poll(Polled.data(), Polled.size(), static_cast<int>(Left)) == 0)
		{
			return false;
		}
		for (std::size_t Index = 0; Index < Polled.size(); ++Index)
		{
			if (Polled[Index].revents != 0 && !ReadSome(*Streams[Index].first, *Streams[Index].second))
			{
				CloseEnd(*Streams[Index].first);
			}
		}
	}
	return true;
}
} // namespace

FProgram::FProgram(const FProgramStart& Start)
{
	const bool bTerminal = Start.TerminalColumns != 0;
	FPipeEnds OutEnds = bTerminal ? MakeTerminal(Start.TerminalColumns) : MakePipe();
	FPipeEnds ErrEnds = bTerminal ? FPipeEnds() : MakePipe();
	FPipeEnds LifelineEnds = MakePipe(0);
	Id = ::fork();
	if (Id == 0)
	{
		RunChild(Start, OutEnds.Write, bTerminal ? OutEnds.Write : ErrEnds.Write);
	}
	CloseEnd(OutEnds.Write);
	CloseEnd(ErrEnds.Write);
	CloseEnd(LifelineEnds.Write);
	Out = OutEnds.Read;
	Err = ErrEnds.Read;
	Lifeline = LifelineEnds.Read;
}

FProgram::~FProgram()
{
	if (Id > 0)
	{
		::kill(Id, SIGKILL);
		::waitpid(Id, nullptr, 0);
	}
	CloseEnd(Out);
	CloseEnd(Err);
	CloseEnd(Lifeline);
}

void FProgram::RunChild(const FProgramStart& Start, int OutEnd, int ErrEnd) const
{
	::setsid();
	::dup2(Start.TerminalColumns != 0 ? OutEnd : ::open("/dev/null", O_RDONLY), STDIN_FILENO);
	::dup2(OutEnd, STDOUT_FILENO);
	::dup2(ErrEnd, STDERR_FILENO);
	for (const char* Name : {"QVMAP_ENGINE_DIR", "HOME", "XDG_CONFIG_HOME"})
	{
		::unsetenv(Name);
	}
	for (const auto& [Name, Value] : Start.Environment)
	{
		::setenv(Name.c_str(), Value.c_str(), 1);
	}
	const rlimit Limit{Start.MostFileBytes.value_or(RLIM_INFINITY), RLIM_INFINITY};
	std::vector<char*> Words{const_cast<char*>(Start.File.c_str())};
	for (const std::string& Word : Start.Words)
	{
		Words.push_back(const_cast<char*>(Word.c_str()));
	}
	Words.push_back(nullptr);
	if (::setrlimit(RLIMIT_FSIZE, &Limit) == 0 && ::chdir(Start.Folder.c_str()) == 0)
	{
		::execv(Start.File.c_str(), Words.data());
	}
	::_exit(126);
}

bool FProgram::CanSignal()
{
	return true;
}

void FProgram::Signal(int Number) const
{
	::kill(Id, Number);
}

void FProgram::Kill() const
{
	static_assert(Killed == -SIGKILL);
	Signal(SIGKILL);
}

bool FProgram::AwaitOnTerminal(std::string_view Text)
{
	const auto Deadline = FClock::now() + MostTime;
	for (std::size_t Found = Seen.find(Text, Awaited); Found == std::string::npos; Found = Seen.find(Text, Awaited))
	{
		pollfd Polled{Out, POLLIN, 0};
		if (FClock::now() > Deadline || (::poll(&Polled, 1, 100) > 0 && !ReadSome(Out, Seen)))
		{
			return false;
		}
	}
	Awaited = Seen.find(Text, Awaited) + Text.size();
	return true;
}

void FProgram::Type(std::string_view Keys) const
{
	if (::write(Out, Keys.data(), Keys.size()) != static_cast<ssize_t>(Keys.size()))
	{
		throw std::runtime_error(std::strerror(errno));
	}
}

FProgramEnd FProgram::Wait()
{
	FProgramEnd End;
	End.Out = Seen;
	if (!ReadAll({{&Out, &End.Out}, {&Err, &End.Err}}, MostTime))
	{
		::kill(Id, SIGKILL);
		End.Err += "\nkilled: it did not end in time\n";
	}
	int Status = 0;
	::waitpid(Id, &Status, 0);
	Id = -1;
	End.Code = WIFSIGNALED(Status) ? -WTERMSIG(Status) : WEXITSTATUS(Status);
	std::string Nothing;
	End.bNothingLeft = ReadAll({{&Lifeline, &Nothing}}, MostTimeToTidy);
	return End;
}
} // namespace QVTest
