// SPDX-License-Identifier: MIT
#include "HandOff/QVMapBaseReleaseGates.h"

#include "Core/QVLog.h"
#include "Engine/QVDialogs.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Export/QVMapBaseReleaseBuild.h"
#include "Export/QVMapToolchainStamp.h"
#include "Workspace/QVMapBaseReleaseStatus.h"
#include "Workspace/QVMapPaths.h"

namespace
{
constexpr std::string_view TextNamespace = "QVMap";

using FRestart = std::function<void()>;

/** After a build that failed the run does not begin again: it would only ask the same question. */
void BuildAndRestart(const FRestart& Restart)
{
	FQVMapBaseReleaseBuild::StartBaseReleaseBuild(
		[Restart](bool bSuccess)
		{
			if (bSuccess)
			{
				Restart();
			}
		});
}

FQVText DescribeUnusable(const FQVBaseReleaseStatus& Status)
{
	if (!Status.bReleaseDirExists)
	{
		return {TextNamespace, "BaseReleaseMissingPrompt",
			"The base release (Releases/1.0) hasn't been built yet.\n\nIt has to be built once before any map can be "
			"packed. This cooks the base game and can take a while, but it only needs to happen once.\n\nBuild it "
			"now?"};
	}
	return {TextNamespace, "BaseReleaseBrokenPrompt",
		"The base release can't be used:\n\n{0}\n\nRebuilding cooks the base game and can take a while.\n\nRebuild it "
		"now?",
		Status.ErrorMessage};
}

bool PassUsable(const FRestart& Restart)
{
	FQVBaseReleaseStatus Status;
	if (FQVMapPaths::CheckBaseRelease(Status))
	{
		return true;
	}
	if (FQVEngine::Get().Dialogs->AskYesNo(
			DescribeUnusable(Status), {TextNamespace, "BaseReleaseMissingTitle", "Base Release Required"}))
	{
		BuildAndRestart(Restart);
	}
	else
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Export cancelled - base release not built");
	}
	return false;
}

/** False, with the reason told, if something holds on to it. */
bool DeleteReleases()
{
	const std::string Folder = FQVMapPaths::GetReleasesDir();
	IQVFiles& Files = *FQVEngine::Get().Files;
	if (!Files.DirectoryExists(Folder) || Files.DeleteDirectory(Folder))
	{
		return true;
	}
	FQVEngine::Get().Dialogs->ShowMessage({TextNamespace, "BaseReleaseDeleteFailed",
		"Could not delete the old base release:\n\n{0}\n\nClose anything using it, delete it by hand, then pack again.",
		Folder});
	return false;
}

bool PassUpToDate(const FRestart& Restart)
{
	const FQVToolchainCheck Toolchain = FQVMapToolchainStamp::CheckToolchain();
	if (Toolchain.bUpToDate || Toolchain.bNoBaseRelease)
	{
		return true;
	}
	if (!FQVEngine::Get().Dialogs->AskYesNo(
			{TextNamespace, "BaseReleaseStalePrompt",
				"The base release was built against different plugin versions:\n\n{0}\n\nPacking against it can "
				"produce a map that loads and then crashes on the first frame. Rebuilding cooks the base game and can "
				"take a while.\n\nRebuild it now?",
				Toolchain.Reason},
			{TextNamespace, "BaseReleaseStaleTitle", "Base Release Out Of Date"}))
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Export cancelled - base release out of date");
	}
	else if (DeleteReleases())
	{
		BuildAndRestart(Restart);
	}
	return false;
}
} // namespace

bool FQVMapBaseReleaseGates::Pass(const FRestart& Restart)
{
	return PassUsable(Restart) && PassUpToDate(Restart);
}
