// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Cli/CommandLine.h"
#include "Standalone/Cli/ToolOutput.h"
#include "Standalone/Engine/LogFile.h"
#include "Standalone/Engine/StandaloneEngine.h"

#include <memory>

namespace QVCli
{
/** A verb's hold on a mapping project: the engine over it, its log file, and the tools' last words. */
class FSession
{
public:
	enum class ERecovery
	{
		/** What an interrupted pack left is put back first, and told. */
		First,
		None
	};

	/** Finds project and engine. Null, with the error told, if one of them is not there. */
	static std::unique_ptr<FSession> Open(FCommandLine& Line, ERecovery Recovery = ERecovery::First);
	~FSession();

	/** Runs work that blocks on a thread of its own, while this one is the game thread. */
	void RunBlocking(std::function<void()> Work) { Engine.GetGameThread().RunDedicatedUntilDone(std::move(Work)); }

	/** The failure of an operation, with the tool's last lines if it was the tool that failed. Silent after an
	 * interrupt: then everything fails, and that it was interrupted is all there is to say. */
	void TellFailure(std::string_view Message);

	FConsole& Console;
	/** The engine is our own folder of stand-ins. */
	const bool bBundledEngine;
	QVStandalone::FStandaloneEngine Engine;
	FToolOutput ToolOutput;

private:
	FSession(FConsole& InConsole, const std::string& ProjectFile, const std::string& EngineDir, bool bBundled);

	QVStandalone::FLogFile Log;
};
} // namespace QVCli
