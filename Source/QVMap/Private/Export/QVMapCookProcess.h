// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapChildProcess.h"

#include <string>
#include <string_view>

/** What a DLC cook and a base release cook do alike. */
struct FQVMapCookProcess
{
	static constexpr std::string_view Stage = "cooking";

	/** False with the message in OutError if the editor's command program is missing. */
	static bool FindEditorCmd(std::string& OutProgram, std::string& OutError);
	/** Waits, on the game thread, for all asset compilation; any thread may call it. */
	static void FinishCompilation();
	static FQVChildRun Run(const std::string& EditorCmd, const std::string& Arguments, const FQVCookProgress& Progress);
};
