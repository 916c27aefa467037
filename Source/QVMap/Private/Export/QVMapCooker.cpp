// SPDX-License-Identifier: MIT
#include "Export/QVMapCooker.h"

#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Core/QVUnicode.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Export/QVMapCookProcess.h"
#include "Workspace/QVMapPaths.h"
#include "Workspace/QVMapScanner.h"

#include <cwctype>

namespace
{
constexpr std::string_view Separator = "QVMap DEBUG: ========================================";

FQVCookResult Fail(FQVCookResult Result, std::string Message)
{
	Result.ErrorMessage = std::move(Message);
	QVLog(EQVLogVerbosity::Error, "QVMap: %s", Result.ErrorMessage);
	return Result;
}

/** A cook leaves what an earlier one wrote, so a removed asset would stay in the pak. */
void DeleteStaleCookedFiles(const std::string& PluginName)
{
	IQVFiles& Files = *FQVEngine::Get().Files;
	const std::string Stale[] = {
		FQVPath::Combine(FQVMapPaths::GetPluginsDir(), PluginName, "Saved/Cooked"),
		FQVPath::Combine(FQVMapPaths::GetCookRoot(), "Plugins", PluginName),
	};
	for (const std::string& Folder : Stale)
	{
		if (Files.DirectoryExists(Folder))
		{
			Files.DeleteDirectory(Folder);
			QVLog(EQVLogVerbosity::Log, "QVMap: Cleaned stale cooked files: %s", Folder);
		}
	}
}

void LogCookCommand(const std::string& PluginName, const std::vector<std::string>& MapPaths,
	const std::string& MapArgument, const std::string& EditorCmd, const std::string& Arguments)
{
	QVLog(EQVLogVerbosity::Log, "%s", Separator);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: COOK COMMAND DETAILS");
	QVLog(EQVLogVerbosity::Log, "%s", Separator);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Plugin: %s", PluginName);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Maps count: %d", MapPaths.size());
	for (std::size_t Index = 0; Index < MapPaths.size(); ++Index)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap DEBUG:   Map[%d]: %s", Index, MapPaths[Index]);
	}
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Final -map= string: %s", MapArgument);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Full command: %s %s", EditorCmd, Arguments);
	QVLog(EQVLogVerbosity::Log, "%s", Separator);
}

/** The second list of places, for layouts that FindCookedPluginDir does not know. Empty if the cook left nothing. */
std::string FindInAlternativePlaces(const std::string& PluginName)
{
	const std::string Platform(FQVMapPaths::GetCookPlatformName());
	const std::string ProjectName = FQVMapPaths::GetProjectName();
	const std::string Root = FQVMapPaths::GetCookRoot();
	const std::string Places[] = {
		FQVPath::Combine(FQVMapPaths::GetPluginsDir(), PluginName, "Saved/Cooked", Platform, ProjectName, "Plugins",
			PluginName, "Content"),
		FQVPath::Combine(Root, "Plugins", PluginName, "Content"),
		FQVPath::Combine(Root, "Content/Mods", PluginName),
		FQVPath::Combine(Root, PluginName),
		FQVPath::Combine(FQVMapPaths::GetProjectDir(), "Saved/Cooked", Platform, "NoEditor", ProjectName, "Plugins",
			PluginName, "Content"),
	};
	for (const std::string& Place : Places)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Checking alternative location: %s", Place);
		if (FQVEngine::Get().Files->DirectoryExists(Place))
		{
			QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Found cooked files at: %s", Place);
			return Place;
		}
	}
	return {};
}

/** The path up to and including the last folder named after the project. */
std::string FindStagedRoot(const std::string& CookedDir)
{
	const std::string Path = FQVPath::NormalizeFilename(CookedDir);
	const std::string Needle = QVPrintf("/%s/", FQVMapPaths::GetProjectName());
	const std::size_t Found = FQVString::FindLastIgnoreCase(Path, Needle);
	return Found == std::string::npos ? std::string() : Path.substr(0, Found + Needle.size() - 1);
}

/** Finds what the cook left and completes the result. */
FQVCookResult LocateCookedFiles(FQVCookResult Result, const std::string& PluginName)
{
	const std::string Expected = FQVMapPaths::FindCookedPluginDir(PluginName);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Looking for cooked dir at: %s", Expected);
	const std::string Found =
		FQVEngine::Get().Files->DirectoryExists(Expected) ? Expected : FindInAlternativePlaces(PluginName);
	if (Found.empty())
	{
		return Fail(std::move(Result), QVPrintf("Cook completed but cooked directory not found. Tried: %s", Expected));
	}
	Result.bSuccess = true;
	Result.CookedDir = Found;
	Result.StagedRoot = FindStagedRoot(Found);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Staged root resolved to: %s",
		Result.StagedRoot.empty() ? "(none)" : Result.StagedRoot);
	return Result;
}
} // namespace

bool FQVMapCooker::ValidatePluginName(std::string_view Name, std::string& OutError)
{
	if (Name.empty())
	{
		OutError = "Plugin name cannot be empty.";
		return false;
	}
	for (const char16_t Unit : FQVUnicode::ToUtf16(Name))
	{
		if (std::iswalnum(static_cast<std::wint_t>(Unit)) == 0 && Unit != u'_' && Unit != u'-')
		{
			OutError =
				QVPrintf("Plugin name '%s' contains invalid character '%s'. Allowed: letters, numbers, underscore, "
						 "hyphen.",
					Name, FQVUnicode::ToUtf8(std::u16string_view(&Unit, 1)));
			return false;
		}
	}
	if (FQVMapScanner::IsReservedName(Name))
	{
		OutError = QVPrintf("Plugin name '%s' is reserved and cannot be used for mods.", Name);
		return false;
	}
	return true;
}

FQVCookResult FQVMapCooker::CookDLC(
	const std::string& PluginName, const std::vector<std::string>& MapPaths, const FQVCookProgress& Progress)
{
	FQVCookResult Result;
	std::string Error;
	std::string EditorCmd;
	if (!ValidatePluginName(PluginName, Error) || !FQVMapCookProcess::FindEditorCmd(EditorCmd, Error))
	{
		return Fail(std::move(Result), Error);
	}
	DeleteStaleCookedFiles(PluginName);
	const std::string MapArgument = FQVString::Join(MapPaths, "+");
	FQVMapCookProcess::FinishCompilation();
	const std::string Arguments =
		QVPrintf("\"%s\" -run=cook -targetplatform=Windows -basedonreleaseversion=%s -dlcname=%s "
				 "-map=%s -diff -stdout -UTF8Output -NoLogTimes",
			FQVMapPaths::GetProjectFilePath(), FQVMapPaths::BaseReleaseVersion, PluginName, MapArgument);
	LogCookCommand(PluginName, MapPaths, MapArgument, EditorCmd, Arguments);
	Progress.Report(FQVMapCookProcess::Stage, 0.0f, "Starting cook...");

	FQVChildRun Child = FQVMapCookProcess::Run(EditorCmd, Arguments, Progress);
	if (!Child.bStarted)
	{
		return Fail(std::move(Result), "Failed to launch UnrealEditor-Cmd.exe");
	}
	Result.Output = std::move(Child.Output);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Cook return code: %d", Child.ReturnCode);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Cook output (last 500 chars): ...%s",
		FQVString::LastCharacters(Result.Output, 500));
	if (Child.ReturnCode != 0)
	{
		return Fail(std::move(Result), QVPrintf("Cook failed with return code %d", Child.ReturnCode));
	}
	Result = LocateCookedFiles(std::move(Result), PluginName);
	if (Result.bSuccess)
	{
		Progress.Report(FQVMapCookProcess::Stage, 1.0f, "Cook completed");
		QVLog(EQVLogVerbosity::Log, "QVMap: Cook successful. Output: %s", Result.CookedDir);
	}
	return Result;
}
