// SPDX-License-Identifier: MIT
#include "Workspace/QVMapPaths.h"

#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVProject.h"

std::string FQVMapPaths::GetProjectDir()
{
	return FQVEngine::Get().Project->ProjectDir();
}

std::string FQVMapPaths::GetProjectName()
{
	return std::string(FQVPath::GetBaseFilename(GetProjectFilePath()));
}

std::string FQVMapPaths::GetProjectFilePath()
{
	return FQVEngine::Get().Project->GetProjectFilePath();
}

std::string FQVMapPaths::GetProjectContentDir()
{
	return FQVPath::Combine(GetProjectDir(), "Content");
}

std::string FQVMapPaths::GetPluginsDir()
{
	return FQVPath::Combine(GetProjectDir(), "Plugins");
}

std::string FQVMapPaths::GetReleasesDir()
{
	return FQVPath::Combine(GetProjectDir(), "Releases");
}

std::string FQVMapPaths::GetBaseReleaseDir()
{
	return FQVPath::Combine(GetReleasesDir(), BaseReleaseVersion);
}

std::string FQVMapPaths::GetDevelopmentRegistryPath()
{
	return FQVPath::Combine(GetBaseReleaseDir(), GetCookPlatformName(), "Metadata",
		FQVEngine::Get().Project->DevelopmentAssetRegistryFilename());
}

std::string FQVMapPaths::GetRuntimeRegistryPath()
{
	return FQVPath::Combine(GetBaseReleaseDir(), GetCookPlatformName(), "AssetRegistry.bin");
}

std::string_view FQVMapPaths::GetCookPlatformName()
{
	return "Windows";
}

std::string FQVMapPaths::GetCookRoot()
{
	return FQVPath::Combine(GetProjectDir(), "Saved/Cooked", GetCookPlatformName(), GetProjectName());
}

std::string FQVMapPaths::GetWorkDir()
{
	return FQVPath::Combine(GetProjectDir(), "Saved/QVPak");
}

std::string FQVMapPaths::GetLogsDir()
{
	return FQVPath::Combine(GetWorkDir(), "Logs");
}

std::string FQVMapPaths::GetOutputDir()
{
	return FQVPath::Combine(GetWorkDir(), "Output");
}

std::string FQVMapPaths::GetTempDir()
{
	return FQVPath::Combine(GetWorkDir(), "Temp");
}

std::string FQVMapPaths::GetEditorCmdPath()
{
	return FQVPath::Combine(FQVEngine::Get().Project->EngineDir(), "Binaries/Win64/UnrealEditor-Cmd.exe");
}

std::string FQVMapPaths::GetUnrealPakPath()
{
	return FQVPath::Combine(FQVEngine::Get().Project->EngineDir(), "Binaries/Win64/UnrealPak.exe");
}

std::string FQVMapPaths::FindCookedPluginDir(std::string_view PluginName)
{
	const std::string Root = GetCookRoot();
	const std::string Candidates[] = {
		FQVPath::Combine(GetPluginsDir(), PluginName, "Saved/Cooked", GetCookPlatformName(), GetProjectName(),
			"Plugins", PluginName, "Content"),
		FQVPath::Combine(Root, "Plugins", PluginName, "Content"),
		FQVPath::Combine(Root, "Content/Mods", PluginName),
		FQVPath::Combine(Root, "Plugins", PluginName, "Content/Mods", PluginName),
	};
	for (const std::string& Candidate : Candidates)
	{
		if (FQVEngine::Get().Files->DirectoryExists(Candidate))
		{
			QVLog(EQVLogVerbosity::Log, "QVMap: Found cooked plugin dir at: %s", Candidate);
			return Candidate;
		}
	}
	return Candidates[0];
}

bool FQVMapPaths::EnsureDirectory(std::string_view Path)
{
	IQVFiles& Files = *FQVEngine::Get().Files;
	return Files.DirectoryExists(Path) || Files.CreateDirectoryTree(Path);
}
