// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Cli/ConsoleDialogs.h"
#include "Standalone/Cli/MapChoice.h"

#include <functional>
#include <string>

namespace QVCli
{
/** How a run of the central flow ended; what there is to tell of a failure has been told. */
struct FFlowEnd
{
	/** The key of the question at which it was stopped; empty if it was not. */
	std::string StoppedAt;
	/** Empty if nothing failed. */
	std::string Failure;
	/** The project is as it was before; false only if the import could not be undone. */
	bool bPutBack = true;

	/** What the program ends with if the flow came to its good end, or not. */
	EExitCode Code(bool bCompleted) const;
};

/** Why the choice is none to pack; empty if it is one. */
std::string DescribeUnpackable(const FMapChoice& Map);

/**
 * Opens the map as the editor's world, calls Start on the game thread, which enters the flow, and returns when nothing
 * of it is left: no export, no build, nothing brought in from outside.
 */
FFlowEnd RunFlow(FSession& Session, const FMapChoice& Map, const FAnswers& Answers, const std::function<void()>& Start);
} // namespace QVCli
