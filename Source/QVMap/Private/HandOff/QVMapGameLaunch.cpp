// SPDX-License-Identifier: MIT
#include "HandOff/QVMapGameLaunch.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVProcesses.h"
#include "Engine/QVShell.h"
#include "Workspace/QVMapConfig.h"

namespace
{
/** What a shell call gives at most when it failed. */
constexpr int LastShellError = 32;

/** How the log speaks of one kind of request. */
struct FLaunchTexts
{
	TQVFormat<> SentToPipe;
	std::string_view DemoLabel;
	TQVFormat<std::string, std::string> LaunchingExe;
	TQVFormat<> LaunchedExe;
	std::string_view GameLabel;
	TQVFormat<> DeepLinkDispatched;
	TQVFormat<int> DeepLinkFailed;
};

constexpr FLaunchTexts LoadTexts = {
	.SentToPipe = "QVMap: Sent to running game via named pipe",
	.DemoLabel = "demo",
	.LaunchingExe = "QVMap: Launching with configured exe: %s %s",
	.LaunchedExe = "QVMap: Game launched successfully!",
	.GameLabel = "game",
	.DeepLinkDispatched = "QVMap: Deep link dispatched",
	.DeepLinkFailed = "QVMap: Deep link failed with error %d",
};

constexpr FLaunchTexts UploadTexts = {
	.SentToPipe = "QVMap: Workshop upload sent to running game via pipe",
	.DemoLabel = "demo for Workshop upload",
	.LaunchingExe = "QVMap: Launching game for Workshop upload: %s %s",
	.LaunchedExe = "QVMap: Game launched for Workshop upload",
	.GameLabel = "game for Workshop upload",
	.DeepLinkDispatched = "QVMap: Workshop deep link dispatched",
	.DeepLinkFailed = "QVMap: Workshop deep link failed with error %d",
};

/** One request in the two forms that the game understands. */
struct FGameRequest
{
	/** The pipe's message too. */
	std::string DeepLink;
	std::string CommandLine;
};

bool StaysInUrl(char Letter)
{
	const char Lower = FQVString::ToLower(Letter);
	return (Lower >= 'a' && Lower <= 'z') || (Letter >= '0' && Letter <= '9') ||
		   std::string_view("-./:_~").find(Letter) != std::string_view::npos;
}

/** Stands as it is behind the last parameter of a deep link too: the game looks for it there. */
std::string_view ConsoleSuffix()
{
	return FQVMapConfig::GetRuntimeConsole() ? " -console" : "";
}

bool SendToPipe(const FGameRequest& Request, const FLaunchTexts& Texts)
{
	if (!FQVMapGameLaunch::SendToGamePipe(Request.DeepLink))
	{
		return false;
	}
	QVLog(EQVLogVerbosity::Log, Texts.SentToPipe);
	return true;
}

bool LaunchConfiguredExe(const FGameRequest& Request, const FLaunchTexts& Texts)
{
	const std::string Exe = FQVMapConfig::GetGameExePath();
	const FQVEngine& Engine = FQVEngine::Get();
	if (Exe.empty() || !Engine.Files->FileExists(Exe))
	{
		return false;
	}
	QVLog(EQVLogVerbosity::Log, Texts.LaunchingExe, Exe, Request.CommandLine);
	FQVProcHandle Game = Engine.Processes->CreateDetachedProc(Exe, Request.CommandLine, FQVPath::GetPath(Exe));
	if (!Game.IsValid())
	{
		QVLog(EQVLogVerbosity::Warning, "QVMap: Failed to launch game exe, falling back");
		return false;
	}
	QVLog(EQVLogVerbosity::Log, Texts.LaunchedExe);
	Engine.Processes->CloseProc(Game);
	return true;
}

void OpenDeepLink(const FGameRequest& Request, const FLaunchTexts& Texts)
{
	QVLog(EQVLogVerbosity::Log, "QVMap: Launching via deep link: %s", Request.DeepLink);
	const int Result = FQVEngine::Get().Shell->Open(Request.DeepLink);
	if (Result > LastShellError)
	{
		QVLog(EQVLogVerbosity::Log, Texts.DeepLinkDispatched);
		return;
	}
	QVLog(EQVLogVerbosity::Error, Texts.DeepLinkFailed, Result);
}

void RunChain(const FGameRequest& Request, const FLaunchTexts& Texts)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	// a running game takes the request without a restart, so the settings do not come into it
	if (SendToPipe(Request, Texts))
	{
		return;
	}
	const bool bDemo = FQVMapConfig::GetUseDemoAppId();
	const auto LaunchOnSteam = [&Request](std::string_view AppId, std::string_view Label)
	{ return FQVMapGameLaunch::LaunchViaSteamUrl(AppId, Request.CommandLine, Label); };
	if ((bDemo && LaunchOnSteam(FQVMapGameLaunch::DemoAppId, Texts.DemoLabel)) || LaunchConfiguredExe(Request, Texts) ||
		(!bDemo && LaunchOnSteam(FQVMapGameLaunch::GameAppId, Texts.GameLabel)))
	{
		return;
	}
	OpenDeepLink(Request, Texts);
}
} // namespace

void FQVMapGameLaunch::LaunchGameWithPak(
	std::string_view /*ModName*/, std::string_view PakPath, std::string_view MapName, std::string_view GamePath)
{
	const std::string_view Console = ConsoleSuffix();
	FGameRequest Request;
	Request.DeepLink = QVPrintf("quarvel://loadmap?pak=%s&map=%s&mapname=%s%s",
		UrlEncode(FQVPath::NormalizeFilename(PakPath)), UrlEncode(MapName), UrlEncode(GamePath), Console);
	Request.CommandLine =
		QVPrintf("-loadpak=\"%s\" -map=\"%s\" -mapname=\"%s\" -log%s", PakPath, MapName, GamePath, Console);
	RunChain(Request, LoadTexts);
}

void FQVMapGameLaunch::LaunchGameForWorkshopUpload(std::string_view ConfigPath)
{
	const std::string Config = FQVPath::NormalizeFilename(ConfigPath);
	const std::string_view Console = ConsoleSuffix();
	FGameRequest Request;
	Request.DeepLink = QVPrintf("quarvel://workshop_upload?config=%s%s", UrlEncode(Config), Console);
	Request.CommandLine = QVPrintf("-workshop_upload=\"%s\" -log%s", Config, Console);
	RunChain(Request, UploadTexts);
}

bool FQVMapGameLaunch::SendToGamePipe(std::string_view Text)
{
	switch (FQVEngine::Get().Shell->WriteToPipe(GamePipeName, Text))
	{
	case EQVPipeWrite::Written:
		return true;
	case EQVPipeWrite::NotOpened:
		QVLog(EQVLogVerbosity::Log, "QVMap: Game pipe not available (game not running?)");
		return false;
	case EQVPipeWrite::Failed:
		QVLog(EQVLogVerbosity::Warning, "QVMap: Failed to write to game pipe");
		return false;
	}
	return false;
}

bool FQVMapGameLaunch::LaunchViaSteamUrl(std::string_view AppId, std::string_view Arguments, std::string_view Label)
{
	std::string Encoded = FQVString::ReplaceAll(UrlEncode(Arguments), "/", "%2F");
	Encoded = FQVString::ReplaceAll(Encoded, ":", "%3A");
	const std::string Url = QVPrintf("steam://run/%s//%s/", AppId, Encoded);
	QVLog(EQVLogVerbosity::Log, "QVMap: Launching %s via Steam URL: %s", Label, Url);
	const int Result = FQVEngine::Get().Shell->Open(Url);
	if (Result <= LastShellError)
	{
		QVLog(EQVLogVerbosity::Warning, "QVMap: Steam URL launch failed with error %d, falling back", Result);
		return false;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Steam URL dispatched");
	return true;
}

std::string FQVMapGameLaunch::UrlEncode(std::string_view Text)
{
	std::string Encoded;
	for (const char Letter : Text)
	{
		if (StaysInUrl(Letter))
		{
			Encoded += Letter;
		}
		else
		{
			Encoded += QVPrintf("%%%02X", static_cast<unsigned char>(Letter));
		}
	}
	return Encoded;
}
