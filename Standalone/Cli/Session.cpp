// SPDX-License-Identifier: MIT
#include "Standalone/Cli/Session.h"

#include "Core/QVPath.h"
#include "Export/QVMapImportRestore.h"
#include "Standalone/Cli/TypedPath.h"
#include "Standalone/Engine/EngineLocator.h"
#include "Standalone/Engine/Environment.h"
#include "Standalone/Engine/ExecutablePath.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/ProjectLocator.h"

namespace QVCli
{
using namespace QVStandalone;

namespace
{
FEngineLocation LocateEngine(const FGlobalOptions& Options, const std::string& ProjectFile)
{
	FEngineSearch Search;
	Search.Named = FullPath(Options.Engine);
	Search.FromEnvironment = FullPath(EnvironmentValue("QVMAP_ENGINE_DIR"));
	Search.ProjectFile = ProjectFile;
	Search.Bundled = FQVPath::Combine(FQVPath::GetPath(ExecutablePath()), "Engine");
	return FindEngine(Search);
}
} // namespace

std::unique_ptr<FSession> FSession::Open(FCommandLine& Line, ERecovery Recovery)
{
	const FProjectLocation Project = Line.Options.Project.empty() ? FindProjectAbove(FullPath("."))
																  : FindNamedProject(FullPath(Line.Options.Project));
	if (Project.ProjectFile.empty())
	{
		Line.Console.Fail(Project.Error);
		return nullptr;
	}
	const FEngineLocation Engine = LocateEngine(Line.Options, Project.ProjectFile);
	for (const FEngineAttempt& Attempt : Engine.Tried)
	{
		if (Line.Options.bVerbose)
		{
			Line.Console.Say(QVPrintf("engine: %s: %s", Attempt.Where, Attempt.Outcome));
		}
	}
	if (!Engine.Error.empty())
	{
		Line.Console.Fail(Engine.Error);
		return nullptr;
	}
	std::unique_ptr<FSession> Session(
		new FSession(Line.Console, Project.ProjectFile, Engine.EngineDir, Engine.bBundled));
	if (Recovery == ERecovery::First)
	{
		std::vector<std::string> Recovered; // told in the log
		FQVMapImportRestore::RecoverInterruptedImports(Recovered);
	}
	return Session;
}

FSession::FSession(FConsole& InConsole, const std::string& ProjectFile, const std::string& EngineDir, bool bBundled)
	: Console(InConsole)
	, bBundledEngine(bBundled)
	, Engine(ProjectFile, EngineDir)
	, ToolOutput(*Engine.Interfaces.Processes)
	, Log(&InConsole)
{
	Engine.Interfaces.Processes = &ToolOutput;
	Log.SetPath(ToOsPath(FQVPath::Combine(FQVPath::GetPath(ProjectFile), "Saved/Logs/QVMap.log")));
	FQVLog::SetSink(&Log);
}

void FSession::TellFailure(std::string_view Message)
{
	if (FInterrupt::IsRaised())
	{
		return;
	}
	// of a tool that ended well, only what it did not leave behind is a failure
	const bool bOfTool = ToolOutput.LastCode() != 0 || Message.find("completed but") != std::string_view::npos;
	Console.Fail(Message, bOfTool ? ToolOutput.LastLines() : std::vector<std::string>());
}

FSession::~FSession()
{
	FQVLog::SetSink(nullptr);
}
} // namespace QVCli
