// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Posix/Spawn.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace QVStandalone
{
namespace
{
constexpr int SignalledBase = 128;

class FSpawnSettings
{
public:
	explicit FSpawnSettings(const FSpawnOptions& Options)
	{
		::posix_spawn_file_actions_init(&Actions);
		::posix_spawn_file_actions_addopen(&Actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
		AddOutput(Options.Output);
		if (!Options.WorkingFolder.empty())
		{
			::posix_spawn_file_actions_addchdir_np(&Actions, Options.WorkingFolder.c_str());
		}
		::posix_spawnattr_init(&Attributes);
		const int Family = Options.bOwnSession ? POSIX_SPAWN_SETSID : POSIX_SPAWN_SETPGROUP;
		::posix_spawnattr_setflags(
			&Attributes, static_cast<short>(Family | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
		::posix_spawnattr_setpgroup(&Attributes, 0);
		SetSignals();
	}
	FSpawnSettings(const FSpawnSettings&) = delete;
	FSpawnSettings& operator=(const FSpawnSettings&) = delete;
	~FSpawnSettings()
	{
		::posix_spawnattr_destroy(&Attributes);
		::posix_spawn_file_actions_destroy(&Actions);
	}

	posix_spawn_file_actions_t Actions;
	posix_spawnattr_t Attributes;

private:
	void AddOutput(int Output)
	{
		if (Output >= 0)
		{
			::posix_spawn_file_actions_adddup2(&Actions, Output, STDOUT_FILENO);
		}
		else
		{
			::posix_spawn_file_actions_addopen(&Actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
		}
		::posix_spawn_file_actions_adddup2(&Actions, STDOUT_FILENO, STDERR_FILENO);
	}

	void SetSignals()
	{
		sigset_t Signals;
		sigemptyset(&Signals);
		::posix_spawnattr_setsigmask(&Attributes, &Signals);
		for (const int Signal : {SIGPIPE, SIGXFSZ, SIGINT, SIGTERM, SIGHUP})
		{
			sigaddset(&Signals, Signal);
		}
		::posix_spawnattr_setsigdefault(&Attributes, &Signals);
	}
};
} // namespace

int Spawn(pid_t& OutId, const std::string& Program, std::vector<std::string> Words, const FSpawnOptions& Options)
{
	Words.insert(Words.begin(), Program);
	std::vector<char*> Pointers;
	Pointers.reserve(Words.size() + 1);
	for (std::string& Word : Words)
	{
		Pointers.push_back(Word.data());
	}
	Pointers.push_back(nullptr);
	const FSpawnSettings Settings(Options);
	const auto Start = Options.bSearchPath ? ::posix_spawnp : ::posix_spawn;
	return Start(&OutId, Program.c_str(), &Settings.Actions, &Settings.Attributes, Pointers.data(), environ);
}

int ExitCodeOf(int WaitStatus)
{
	return WIFSIGNALED(WaitStatus) ? SignalledBase + WTERMSIG(WaitStatus) : WEXITSTATUS(WaitStatus);
}

std::future<int> ReapInBackground(pid_t Child)
{
	std::promise<int> Promise;
	std::future<int> Code = Promise.get_future();
	std::thread(
		[Child, Promise = std::move(Promise)]() mutable
		{
			int Status = 0;
			while (::waitpid(Child, &Status, 0) < 0 && errno == EINTR)
			{
			}
			Promise.set_value(ExitCodeOf(Status));
		})
		.detach();
	return Code;
}

std::string ErrorText(int Error)
{
	return std::generic_category().message(Error);
}
} // namespace QVStandalone
