// SPDX-License-Identifier: MIT
#pragma once

namespace QVCli
{
/** What qvmap ends with; the same for every verb. */
enum class EExitCode
{
	Done = 0,
	/** It failed, or there are findings. */
	Failed = 1,
	WrongUse = 2,
	/** A question stood in the way and nobody answered it. */
	StoppedAtQuestion = 3,
	Interrupted = 130
};

constexpr const char* ExitCodeHelp =
	"Exit codes: 0 done, 1 failed or findings, 2 wrong use, 3 stopped at a question, 130 interrupted.";
} // namespace QVCli
