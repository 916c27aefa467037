// SPDX-License-Identifier: MIT
// From the tab's button to the game.
#include "Core/QVLog.h"
#include "Core/QVString.h"
#include "Engine/QVDialogs.h"
#include "Engine/QVEngine.h"
#include "Export/QVMapBaseReleaseBuild.h"
#include "HandOff/QVMapPlaytest.h"
#include "Interface/SQVWorkshopTab.h"

namespace
{
template<class... Args>
void Tell(std::string_view Key, std::string_view Source, const Args&... Arguments)
{
	FQVEngine::Get().Dialogs->ShowMessage({FQVWorkshopForm::TextNamespace, Key, Source, Arguments...});
}

/** False, with the reason told, if the game has nothing to be handed. */
bool WriteUpload(const FQVWorkshopConfig& Config, const std::string& PakPath, const std::string& UploadPath)
{
	std::string Error;
	if (FQVMapWorkshopConfig::WriteUploadJson(Config, PakPath, UploadPath, Error))
	{
		return true;
	}
	QVLog(EQVLogVerbosity::Error, "QVMap: Failed to write upload config: %s", Error);
	Tell("UploadJsonFailed", "The map packed, but its Workshop details could not be written:\n\n{0}", Error);
	return false;
}

void HandOver(const std::string& UploadPath)
{
	QVLog(EQVLogVerbosity::Log, "QVMap: Handing %s to the game for Workshop upload", UploadPath);
	FQVMapPlaytest::LaunchGameForWorkshopUpload(UploadPath);
}
} // namespace

FQVWorkshopTabActions FQVWorkshopTabActions::OfToolkit()
{
	return {&FQVMapBaseReleaseBuild::IsBaseReleaseBuilding, &FQVMapPlaytest::ResolveOpenMap,
		[](const std::string& Mod, const std::string& Map, const std::string& GamePath, auto OnComplete) {
			FQVMapPlaytest::RunExport({Mod, Map, GamePath, false, std::move(OnComplete)});
		}};
}

bool SQVWorkshopTab::IsOpenMapShown(std::string& OutMap, std::string& OutGamePath)
{
	if (Actions.IsBaseReleaseBuilding())
	{
		Tell("BuildRunning", "The base release is still building.\n\nWait for it to finish, then publish.");
		return false;
	}
	std::string Mod;
	if (!Actions.ResolveOpenMap(Mod, OutMap, OutGamePath))
	{
		return false;
	}
	if (FQVString::EqualsIgnoreCase(Mod, PluginName))
	{
		return true;
	}
	FollowOpenMap();
	Tell("MapChanged",
		"'{0}' is open now, so these are its Workshop details.\n\nCheck them over and press Pack & Publish again.",
		MapName);
	return false;
}

bool SQVWorkshopTab::AreDetailsGood()
{
	if (Config.Title.empty())
	{
		Tell("TitleRequired", "Give the map a title before publishing it.");
		return false;
	}
	const std::vector<FQVOversizeImage> TooBig = FQVMapWorkshopConfig::FindOversizeImages(Config);
	if (TooBig.empty())
	{
		return true;
	}
	UpdatePreviewWarning(Config.PreviewImage);
	UpdateScreenshotWarning();
	Tell("ImagesTooBig",
		"Steam refuses Workshop images over 1 MB, one file at a time, and rejects the whole upload if any of them is "
		"over:\n\n{0}\n\nReplace them with smaller versions, then press Pack & Publish again.",
		FQVMapWorkshopConfig::FormatOversizeImages(TooBig));
	return false;
}

void SQVWorkshopTab::OnPackAndPublish()
{
	std::string Map;
	std::string GamePath;
	if (!IsOpenMapShown(Map, GamePath))
	{
		return;
	}
	CollectForm();
	SaveConfig(); // whatever comes, what was typed is safe
	if (!AreDetailsGood())
	{
		return;
	}
	// what is edited from here on is for the next publication
	const auto Publish = [Copy = Config, UploadPath = FQVMapWorkshopConfig::GetUploadPath(), Tab = std::weak_ptr(Self)](
							 const FQVExportResult& Result)
	{
		if (!WriteUpload(Copy, Result.PakPath, UploadPath))
		{
			return;
		}
		if (const auto Alive = Tab.lock())
		{
			(*Alive)->UpdateLastExport();
		}
		HandOver(UploadPath);
	};
	Actions.RunExport(PluginName, Map, Config.StartMap.empty() ? GamePath : Config.StartMap, Publish);
}
