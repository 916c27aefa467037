// SPDX-License-Identifier: MIT
#include "Standalone/Cli/LaunchWatch.h"

namespace QVCli
{
namespace
{
/** What a shell call gives at most when it failed. */
constexpr int LastShellError = 32;
} // namespace

FLaunchWatch::FLaunchWatch(FSession& InSession)
	: Session(InSession)
	, Inner(*InSession.Engine.Interfaces.Shell)
{
	Session.Engine.Interfaces.Shell = this;
}

FLaunchWatch::~FLaunchWatch()
{
	Session.Engine.Interfaces.Shell = &Inner;
}

std::string_view FLaunchWatch::GetWay() const
{
	if (bPipe)
	{
		return "pipe";
	}
	if (!Session.ToolOutput.GetDetached().empty())
	{
		return "executable";
	}
	return Opened.empty() ? "none" : Opened.starts_with("steam:") ? "steam" : "deep link";
}

bool FLaunchWatch::Tell() const
{
	FConsole& Console = Session.Console;
	const std::string_view Way = GetWay();
	if (Way == "none")
	{
		Console.Fail("The game was not started: it does not run, and no way to start it went through");
		Console.Say("  fix: start the game and play again, or qvmap settings set game_exe_path <the game's program>");
		return false;
	}
	Console.Say(Way == "pipe"		  ? std::string("game  it is running and was sent the request")
				: Way == "executable" ? "game  started: " + Session.ToolOutput.GetDetached()
									  : "game  asked for at " + std::string(Way == "steam" ? "Steam" : "the desktop"));
	return true;
}

int FLaunchWatch::Open(std::string_view UrlOrFile)
{
	const int Result = Inner.Open(UrlOrFile);
	Opened = Result > LastShellError ? UrlOrFile : Opened;
	return Result;
}

EQVPipeWrite FLaunchWatch::WriteToPipe(std::string_view PipeName, std::string_view Message)
{
	bAsked = true; // the pipe is tried first, whatever else there is
	const EQVPipeWrite Written = Inner.WriteToPipe(PipeName, Message);
	bPipe = bPipe || Written == EQVPipeWrite::Written;
	return Written;
}
} // namespace QVCli
