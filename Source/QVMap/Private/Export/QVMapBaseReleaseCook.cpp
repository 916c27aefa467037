// SPDX-License-Identifier: MIT
#include "Core/QVLog.h"
#include "Export/QVMapCookProcess.h"
#include "Export/QVMapCooker.h"
#include "Export/QVMapPluginDisableGuard.h"
#include "Export/QVMapToolchainStamp.h"
#include "Workspace/QVMapPaths.h"
#include "Workspace/QVMapScanner.h"

namespace
{
FQVCookResult FailBaseRelease(FQVCookResult Result, FQVPluginDisableGuard& Guard, std::string Message)
{
	constexpr std::string_view NotRestored =
		"Failed to restore one or more disabled mod plugins. Check file permissions and .disabled files.";
	Result.bSuccess = false;
	Result.ErrorMessage = std::move(Message);
	QVLog(EQVLogVerbosity::Error, "QVMap: %s", Result.ErrorMessage);
	if (!Guard.RestoreDisabledPlugins())
	{
		Result.ErrorMessage.append(" ").append(NotRestored);
		QVLog(EQVLogVerbosity::Error, "QVMap: %s", NotRestored);
	}
	return Result;
}

/** Name of the first mod whose descriptor could not be set aside; empty if all could. */
std::string DisableAllMods(FQVPluginDisableGuard& Guard)
{
	for (const FQVModInfo& Mod : FQVMapScanner::ScanMods().Mods)
	{
		if (!Guard.Disable(Mod.PluginDir, Mod.Name))
		{
			return Mod.Name;
		}
	}
	return {};
}

/** The build is a success whatever becomes of the stamp: a missing one only means that it will be built again. */
void WriteStamp()
{
	std::string Error;
	if (!FQVMapToolchainStamp::WriteToolchainStamp(Error))
	{
		QVLog(EQVLogVerbosity::Warning,
			"QVMap: Base release built, but its toolchain stamp could not be written (%s). Packing will treat this "
			"base "
			"release as out of date.",
			Error);
	}
}
} // namespace

FQVCookResult FQVMapCooker::BuildBaseRelease(const FQVCookProgress& Progress)
{
	FQVCookResult Result;
	std::string EditorCmd;
	if (!FQVMapCookProcess::FindEditorCmd(EditorCmd, Result.ErrorMessage))
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: %s", Result.ErrorMessage);
		return Result;
	}
	FQVPluginDisableGuard Guard;
	const std::string Stuck = DisableAllMods(Guard);
	if (!Stuck.empty())
	{
		return FailBaseRelease(std::move(Result), Guard,
			QVPrintf(
				"Failed to disable mod plugin '%s' for base release build. Ensure the plugin files are not read-only "
				"or in use.",
				Stuck));
	}
	FQVMapCookProcess::FinishCompilation();
	const std::string Arguments = QVPrintf("\"%s\" -run=cook -targetplatform=Windows -createreleaseversion=%s -iterate "
										   "-stdout -UTF8Output -NoLogTimes",
		FQVMapPaths::GetProjectFilePath(), FQVMapPaths::BaseReleaseVersion);
	QVLog(EQVLogVerbosity::Log, "QVMap: Building base release: %s %s", EditorCmd, Arguments);
	Progress.Report(FQVMapCookProcess::Stage, 0.0f, "Building base release...");

	FQVChildRun Child = FQVMapCookProcess::Run(EditorCmd, Arguments, Progress);
	if (!Child.bStarted)
	{
		return FailBaseRelease(std::move(Result), Guard, "Failed to launch UnrealEditor-Cmd.exe");
	}
	Result.Output = std::move(Child.Output);
	if (Child.ReturnCode != 0)
	{
		return FailBaseRelease(
			std::move(Result), Guard, QVPrintf("Base release cook failed with return code %d", Child.ReturnCode));
	}
	FQVBaseReleaseStatus Status;
	if (!FQVMapPaths::CheckBaseRelease(Status))
	{
		return FailBaseRelease(std::move(Result), Guard,
			QVPrintf("Cook completed but the base release is not usable. %s", Status.ErrorMessage));
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Base release contains %d package(s)", Status.PackageCount);
	if (!Guard.RestoreDisabledPlugins())
	{
		Result.ErrorMessage = "Base release cook succeeded but failed to restore one or more mod plugins. Check file "
							  "permissions and manually rename .disabled files back to .uplugin";
		QVLog(EQVLogVerbosity::Error, "QVMap: %s", Result.ErrorMessage);
		return Result;
	}
	Result.bSuccess = true;
	Result.CookedDir = FQVMapPaths::GetBaseReleaseDir();
	WriteStamp();
	Progress.Report(FQVMapCookProcess::Stage, 1.0f, "Base release built");
	QVLog(EQVLogVerbosity::Log, "QVMap: Base release built successfully: %s", Result.CookedDir);
	return Result;
}
