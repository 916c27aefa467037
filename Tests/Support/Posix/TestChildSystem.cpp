// SPDX-License-Identifier: MIT
#include "Tests/Support/TestChildSystem.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

namespace QVTest
{
namespace
{
constexpr timeval LongestWait{30, 0};

int Listener = -1;
} // namespace

std::vector<std::string> ProgramWords(int Count, char** Words)
{
	return {Words, Words + Count};
}

void Listen(const std::string& Path)
{
	sockaddr_un Address = {};
	Address.sun_family = AF_UNIX;
	Path.copy(Address.sun_path, sizeof(Address.sun_path) - 1);
	Listener = ::socket(AF_UNIX, SOCK_STREAM, 0);
	::setsockopt(Listener, SOL_SOCKET, SO_RCVTIMEO, &LongestWait, sizeof(LongestWait));
	if (::bind(Listener, reinterpret_cast<const sockaddr*>(&Address), sizeof(Address)) != 0 ||
		::listen(Listener, 4) != 0)
	{
		throw std::runtime_error("cannot listen at " + Path);
	}
}

std::string ReceiveMessage()
{
	const int Sender = ::accept(Listener, nullptr, nullptr);
	if (Sender < 0)
	{
		throw std::runtime_error("nobody came");
	}
	std::string Message;
	char Buffer[256];
	for (ssize_t Count = 0; (Count = ::read(Sender, Buffer, sizeof(Buffer))) > 0;)
	{
		Message.append(Buffer, static_cast<std::size_t>(Count));
	}
	::close(Sender);
	return Message;
}

void CloseOutput()
{
	::close(STDOUT_FILENO);
	::close(STDERR_FILENO);
}

void StartGrandchild(int Milliseconds)
{
	if (::fork() == 0)
	{
		std::this_thread::sleep_for(std::chrono::milliseconds(Milliseconds));
		std::_Exit(0);
	}
}

void RaiseSignal(int Number)
{
	const rlimit NoCore{0, 0};
	::setrlimit(RLIMIT_CORE, &NoCore);
	std::raise(Number);
	std::this_thread::sleep_for(std::chrono::seconds(30));
}

void Abort()
{
	RaiseSignal(SIGABRT);
}
} // namespace QVTest
