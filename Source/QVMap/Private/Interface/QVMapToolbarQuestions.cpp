// SPDX-License-Identifier: MIT
#include "Engine/QVClock.h"
#include "Engine/QVDialogs.h"
#include "Engine/QVEngine.h"
#include "HandOff/QVMapUpdateCheck.h"
#include "Interface/QVMapToolbar.h"
#include "Workspace/QVMapPaths.h"

namespace
{
template<class... TArguments>
FQVText Ask(std::string_view Key, std::string_view Source, TArguments&&... Arguments)
{
	return {FQVMapToolbar::TextNamespace, Key, Source, std::forward<TArguments>(Arguments)...};
}

FQVText MakePartsTable(const FQVUpdateInfo& Info)
{
	if (Info.PublishedToolkit.empty())
	{
		return {};
	}
	return Ask("UpdateAvailableParts",
		"\n                QVMap        Bridge\n  Installed:    {0}          {1}\n  Available:    {2}          {3}\n",
		Info.InstalledToolkit, Info.InstalledBridge, Info.PublishedToolkit, Info.PublishedBridge);
}

FQVText MakeBridgeNote(const FQVUpdateInfo& Info)
{
	if (!Info.bBridgeChanged)
	{
		return {};
	}
	return Ask("UpdateBridgeChanged", "\nThis update changes the QUARVEL bridge, so your base release will need "
									  "rebuilding. QVMap will offer that the "
									  "next time you pack.\n");
}

bool WantsDownloadPage(const FQVUpdateInfo& Info)
{
	return FQVEngine::Get().Dialogs->AskYesNo(
		Ask("UpdateAvailableBody",
			"A newer mapping project is available.\n\n  Installed:  {0}\n  Available:  {1}\n{2}{3}\nUpdating is "
			"easiest "
			"before you start a new map. Open the download page now?",
			Info.InstalledVersion.empty() ? std::string("unknown") : Info.InstalledVersion, Info.PublishedVersion,
			MakePartsTable(Info), MakeBridgeNote(Info)),
		Ask("UpdateAvailableTitle", "Update Available"));
}

void ShowUpdate(const FQVUpdateInfo& Info)
{
	IQVDialogs& Dialogs = *FQVEngine::Get().Dialogs;
	const FQVText Title = Ask("UpdateCheckTitle", "Check for Update");
	if (!Info.ErrorText.empty())
	{
		Dialogs.ShowMessage(
			Ask("UpdateCheckFailed", "Could not check for updates.\n\n{0}\n\nYou can see the current version at\n{1}",
				Info.ErrorText, FQVMapUpdateCheck::GetDefaultDownloadPage()),
			Title);
	}
	else if (!Info.bUpdateAvailable)
	{
		Dialogs.ShowMessage(Ask("UpdateUpToDate", "You are on the latest mapping project ({0}).",
								Info.InstalledVersion.empty() ? Info.PublishedVersion : Info.InstalledVersion),
			Title);
	}
	else if (WantsDownloadPage(Info))
	{
		FQVMapUpdateCheck::OpenDownloadPage();
	}
}
} // namespace

void FQVMapToolbar::CheckForUpdate()
{
	FQVMapUpdateCheck::CheckForUpdate(ShowUpdate);
}

void FQVMapToolbar::BuildBaseRelease()
{
	FQVBaseReleaseStatus Status;
	if (FQVMapPaths::CheckBaseRelease(Status) &&
		!FQVEngine::Get().Dialogs->AskYesNo(Ask("BaseReleaseExists",
			"Base release (Releases/1.0) already exists.\n\nBuilt {0} - {1} packages.\n\nRebuild it?",
			FQVEngine::Get().Clock->ToLocalTime(Status.RegistryTimestamp).ToDisplayText(), Status.PackageCount)))
	{
		return;
	}
	StartBaseReleaseBuild({});
}
