// SPDX-License-Identifier: MIT
#include "HandOff/QVMapUpdateCheck.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVHttp.h"
#include "Engine/QVJsonReader.h"
#include "Engine/QVPlugins.h"
#include "Engine/QVProject.h"
#include "Engine/QVShell.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <utility>
#include <vector>

#ifndef QVMAP_UPDATE_ADDRESS
#define QVMAP_UPDATE_ADDRESS "" // the build knows of no web host
#endif

namespace
{
constexpr std::string_view VersionPath = "/quarvelMapping/version.json";
constexpr std::string_view DownloadPath = "/quarvelMapping/download";
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

struct FModuleState
{
	FQVUpdateInfo LastResult;
	std::vector<FQVMapUpdateCheck::FOnComplete> Waiting;
	bool bInFlight = false;
	std::string HostAddress;
};

FModuleState& State()
{
	static FModuleState Instance;
	return Instance;
}

FQVUpdateInfo ReadInstalled()
{
	const FQVEngine& Engine = FQVEngine::Get();
	FQVUpdateInfo Installed;
	Installed.InstalledVersion =
		Engine.Project->GetGameConfigString("/Script/EngineSettings.GeneralProjectSettings", "ProjectVersion")
			.value_or("");
	Installed.InstalledToolkit = FQVMapUpdateCheck::ToolkitVersion;
	if (const std::optional<FQVPluginInfo> Bridge = Engine.Plugins->FindPlugin("QUARVEL"))
	{
		Installed.InstalledBridge = Bridge->VersionName;
	}
	return Installed;
}

/** The published file; null if it cannot be read as an object. */
FQVJson ParsePublished(std::string_view Content)
{
	if (Content.starts_with(ByteOrderMark))
	{
		Content.remove_prefix(ByteOrderMark.size());
	}
	FQVJson Json;
	std::string Error;
	return FQVEngine::Get().JsonReader->Parse(Content, Json, Error) && Json.IsObject() ? Json : FQVJson();
}

void Compare(FQVUpdateInfo& Info)
{
	Info.bUpdateAvailable = FQVMapUpdateCheck::IsNewer(Info.PublishedVersion, Info.InstalledVersion);
	Info.bBridgeChanged = !Info.PublishedBridge.empty() && !Info.InstalledBridge.empty() &&
						  !FQVString::EqualsIgnoreCase(Info.PublishedBridge, Info.InstalledBridge);
	QVLog(EQVLogVerbosity::Log, "QVMap: Update check - installed %s, published %s%s",
		Info.InstalledVersion.empty() ? "unknown" : Info.InstalledVersion, Info.PublishedVersion,
		Info.bUpdateAvailable ? " (update available)" : "");
}

void ReadAnswer(FQVUpdateInfo& Info, const FQVHttpResponse* Response)
{
	if (Response == nullptr)
	{
		Info.ErrorText = "Could not reach the update server";
		QVLog(EQVLogVerbosity::Log, "QVMap: Update check failed - no response");
		return;
	}
	if (Response->Code != 200)
	{
		Info.ErrorText = QVPrintf("Update server returned %d", Response->Code);
		QVLog(EQVLogVerbosity::Log, "QVMap: Update check failed - HTTP %d", Response->Code);
		return;
	}
	const FQVJson Published = ParsePublished(Response->Content);
	if (!Published.IsObject())
	{
		Info.ErrorText = "Update information could not be read";
		QVLog(EQVLogVerbosity::Log, "QVMap: Update check failed - manifest is not valid JSON");
		return;
	}
	Info.PublishedVersion = Published.GetString("version");
	Info.DownloadUrl = Published.GetString("downloadUrl");
	Info.PublishedToolkit = Published.GetString("qvmap");
	Info.PublishedBridge = Published.GetString("bridge");
	if (Info.PublishedVersion.empty())
	{
		Info.ErrorText = "Update information carried no version";
		return;
	}
	Compare(Info);
}

void Complete(FQVUpdateInfo Info, const FQVHttpResponse* Response)
{
	Info.bChecked = true;
	ReadAnswer(Info, Response);
	State().LastResult = Info;
	State().bInFlight = false;
	// a callback may start a new check
	for (const FQVMapUpdateCheck::FOnComplete& OnComplete : std::exchange(State().Waiting, {}))
	{
		OnComplete(Info);
	}
}

/** The digits at the beginning, 0 without any; the largest number for a larger one. */
int ToNumber(std::string_view Piece)
{
	Piece.remove_prefix(std::min(Piece.find_first_not_of(" \t\n\v\f\r"), Piece.size()));
	int Number = 0;
	const auto [End, Error] = std::from_chars(Piece.data(), Piece.data() + Piece.size(), Number);
	if (Error == std::errc::result_out_of_range)
	{
		return Piece.front() == '-' ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
	}
	return Number;
}

std::vector<int> SplitVersion(std::string_view Version)
{
	std::vector<int> Numbers;
	while (!Version.empty())
	{
		const std::string_view Piece = Version.substr(0, Version.find('.'));
		if (!Piece.empty())
		{
			Numbers.push_back(ToNumber(Piece));
		}
		Version.remove_prefix(std::min(Piece.size() + 1, Version.size()));
	}
	return Numbers;
}
} // namespace

void FQVMapUpdateCheck::CheckForUpdate(FOnComplete OnComplete)
{
	const FQVEngine& Engine = FQVEngine::Get();
	QV_CHECK(Engine.GameThread->IsInGameThread());
	if (OnComplete)
	{
		State().Waiting.push_back(std::move(OnComplete));
	}
	if (std::exchange(State().bInFlight, true))
	{
		return;
	}
	FQVHttpRequest Request;
	Request.Url = GetBaseAddress() + std::string(VersionPath);
	Engine.Http->ProcessRequest(
		Request, [Installed = ReadInstalled()](const FQVHttpResponse* Response) { Complete(Installed, Response); });
}

FQVUpdateInfo FQVMapUpdateCheck::GetLastResult()
{
	return State().LastResult;
}

std::string FQVMapUpdateCheck::GetDefaultDownloadPage()
{
	return GetBaseAddress() + std::string(DownloadPath);
}

std::string FQVMapUpdateCheck::GetDownloadPage()
{
	// the desktop would also open programs and files of this machine
	const std::string& Published = State().LastResult.DownloadUrl;
	const bool bPage =
		FQVString::StartsWithIgnoreCase(Published, "https://") || FQVString::StartsWithIgnoreCase(Published, "http://");
	return bPage ? Published : GetDefaultDownloadPage();
}

bool FQVMapUpdateCheck::OpenDownloadPage()
{
	constexpr int MostOfErrors = 32;
	const std::string Page = GetDownloadPage();
	QVLog(EQVLogVerbosity::Log, "QVMap: Opening download page %s", Page);
	return FQVEngine::Get().Shell->Open(Page) > MostOfErrors;
}

bool FQVMapUpdateCheck::IsNewer(std::string_view A, std::string_view B)
{
	std::vector<int> Left = SplitVersion(A);
	std::vector<int> Right = SplitVersion(B);
	if (Left.empty() || Right.empty())
	{
		return false;
	}
	const std::size_t Length = std::max(Left.size(), Right.size());
	Left.resize(Length);
	Right.resize(Length);
	return Left > Right;
}

std::string FQVMapUpdateCheck::GetBaseAddress()
{
	std::string Address = State().HostAddress;
	if (Address.empty())
	{
		Address =
			FQVEngine::Get().Project->GetGameConfigString("QVMap", "UpdateAddress").value_or(QVMAP_UPDATE_ADDRESS);
	}
	Address.resize(Address.find_last_not_of('/') + 1);
	return Address;
}

void FQVMapUpdateCheck::SetBaseAddress(std::string_view Address)
{
	State().HostAddress = Address;
}
