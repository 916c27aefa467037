// SPDX-License-Identifier: MIT
#pragma once

#include <future>
#include <string>
#include <sys/types.h>
#include <vector>

namespace QVStandalone
{
/** How a child starts: without input, none of our signals ignored or blocked, and by default in a group of its own. */
struct FSpawnOptions
{
	/** Where its output and its complaints go; -1: nowhere. */
	int Output = -1;
	/** No terminal's end and no Ctrl-C reaches it. */
	bool bOwnSession = false;
	/** A name without a slash is looked for in PATH. */
	bool bSearchPath = false;
	/** Empty: ours. */
	std::string WorkingFolder;
};

/** 0, or the error number. Words are the arguments, the program's own name not among them. */
int Spawn(pid_t& OutId, const std::string& Program, std::vector<std::string> Words, const FSpawnOptions& Options);

/** The exit code, or 128 and the signal, as shells tell it. */
int ExitCodeOf(int WaitStatus);

/** Takes the child's exit code whenever it comes, so that no zombie stays. Nobody else waits for that child. */
std::future<int> ReapInBackground(pid_t Child);

std::string ErrorText(int Error);
} // namespace QVStandalone
