// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/EngineTools/ToolLog.h"

#include <string>
#include <vector>

namespace QVEngineTools
{
/** A cook's command line, as far as the stand-in understands it. */
struct FCookCommand
{
	std::string ProjectFile;
	/** `-createreleaseversion`, or empty. */
	std::string CreateRelease;
	/** `-basedonreleaseversion`, or empty. */
	std::string BasedOnRelease;
	/** `-dlcname`, or empty. */
	std::string DlcName;
	/** `-map`, split at its plus signs. */
	std::vector<std::string> Maps;
	bool bIterate = false;
	/** What is wrong with the command line; empty if nothing is. */
	std::string Error;
};

/** Arguments are those behind the program's name. */
FCookCommand ParseCookCommand(const std::vector<std::string>& Arguments);

/** Runs the cook; the engine's folder tells which engine content there is. The exit code: 0, or 1 after any error. */
int RunCook(const FCookCommand& Command, const std::string& EngineDir, FToolLog& Log);
} // namespace QVEngineTools
