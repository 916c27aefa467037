// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapProgress.h"

#include <string>
#include <string_view>

/** How one of the engine's tools ended. */
struct FQVChildRun
{
	bool bStarted = false;
	/** -1 if it could not be had. */
	int ReturnCode = -1;
	std::string Output;
};

/** Runs one of the engine's tools as a hidden child and watches it to its end: no time limit, no cancel, no kill. */
struct FQVMapChildProcess
{
	/**
	 * Blocks the calling thread. The output's lines are counted: each brings the fraction forward by FractionPerLine,
	 * to 0.95 at most, and the newest one is the message.
	 */
	static FQVChildRun Run(std::string_view Program, std::string_view Arguments, std::string_view Stage,
		float FractionPerLine, const FQVCookProgress& Progress);
};
