// SPDX-License-Identifier: MIT
#include "Workspace/QVMapScanner.h"

#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Workspace/QVMapPaths.h"

#include <algorithm>

namespace
{
constexpr std::string_view ToolkitPlugin = "QVMap";
constexpr std::string_view ReservedNames[] = {"QUARVEL", "Engine", "Script", "Game"};

FQVMapInfo MakeMapInfo(std::string_view ModName, std::string_view ContentDir, std::string_view Path)
{
	FQVMapInfo Map;
	Map.Name = FQVPath::GetBaseFilename(Path);
	Map.FileName = FQVPath::GetCleanFilename(Path);
	Map.RelativePath = Path;
	FQVPath::MakePathRelativeTo(Map.RelativePath, std::string(ContentDir) + "/");
	const std::string_view Stem = FQVPath::WithoutExtension(Map.RelativePath);
	Map.CookPath = QVPrintf("/%s/%s", ModName, Stem);
	Map.GamePath = QVPrintf("/Game/%s/%s", ModName, Stem);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Scanned map %s: RelativePath=%s, CookPath=%s, GamePath=%s", Map.Name,
		Map.RelativePath, Map.CookPath, Map.GamePath);
	return Map;
}

std::vector<FQVMapInfo> CollectMaps(std::string_view ModName, const std::string& ContentDir)
{
	std::vector<FQVMapInfo> Maps;
	FQVEngine::Get().Files->IterateDirectoryRecursively(ContentDir,
		[&](std::string_view Path, bool bIsDirectory)
		{
			if (!bIsDirectory && FQVString::EndsWithIgnoreCase(Path, ".umap"))
			{
				Maps.push_back(MakeMapInfo(ModName, ContentDir, Path));
			}
			return true;
		});
	std::sort(Maps.begin(), Maps.end(),
		[](const FQVMapInfo& A, const FQVMapInfo& B) { return FQVString::LessIgnoreCase(A.GamePath, B.GamePath); });
	return Maps;
}

std::vector<std::string> ListFolders(std::string_view Folder)
{
	std::vector<std::string> Folders;
	FQVEngine::Get().Files->IterateDirectory(Folder,
		[&Folders](std::string_view Path, bool bIsDirectory)
		{
			if (bIsDirectory)
			{
				Folders.emplace_back(Path);
			}
			return true;
		});
	std::sort(Folders.begin(), Folders.end(), FQVString::LessIgnoreCase);
	return Folders;
}

/** Adds the mod in a plugin folder, if there is one. */
void InspectPlugin(const std::string& PluginDir, std::vector<FQVModInfo>& Mods)
{
	const IQVFiles& Files = *FQVEngine::Get().Files;
	const std::string Name(FQVPath::GetCleanFilename(PluginDir));
	QVLog(EQVLogVerbosity::Log, "QVMap: ScanMods inspecting plugin directory %s", PluginDir);
	if (FQVMapScanner::IsToolchainPlugin(Name))
	{
		QVLog(EQVLogVerbosity::Verbose, "QVMap: Skipping toolchain plugin %s", Name);
		return;
	}
	if (!Files.FileExists(FQVPath::Combine(PluginDir, Name + ".uplugin")))
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: ScanMods skipping %s - no .uplugin descriptor", Name);
		return;
	}
	const std::string ContentDir = FQVPath::Combine(PluginDir, "Content");
	if (!Files.DirectoryExists(ContentDir))
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: ScanMods skipping %s - no Content/ directory", Name);
		return;
	}
	std::vector<FQVMapInfo> Maps = CollectMaps(Name, ContentDir);
	QVLog(EQVLogVerbosity::Log, "QVMap: ScanMods found %d map(s) in %s", Maps.size(), Name);
	if (!Maps.empty())
	{
		Mods.push_back({Name, PluginDir, ContentDir, std::move(Maps)});
	}
}
} // namespace

const FQVModInfo* FQVScanResult::Find(std::string_view Name) const
{
	const auto Found = std::find_if(Mods.begin(), Mods.end(),
		[Name](const FQVModInfo& Mod) { return FQVString::EqualsIgnoreCase(Mod.Name, Name); });
	return Found != Mods.end() ? &*Found : nullptr;
}

FQVScanResult FQVMapScanner::ScanMods()
{
	FQVScanResult Result;
	const std::string PluginsDir = FQVMapPaths::GetPluginsDir();
	if (!FQVEngine::Get().Files->DirectoryExists(PluginsDir))
	{
		Result.ErrorMessage = QVPrintf("Plugins directory not found: %s", PluginsDir);
		QVLog(EQVLogVerbosity::Warning, "QVMap: %s", Result.ErrorMessage);
		return Result;
	}
	const std::vector<std::string> Folders = ListFolders(PluginsDir);
	QVLog(EQVLogVerbosity::Log, "QVMap: ScanMods found %d plugin directories in %s", Folders.size(), PluginsDir);
	for (const std::string& Folder : Folders)
	{
		InspectPlugin(Folder, Result.Mods);
	}
	Result.ModCount = static_cast<std::int32_t>(Result.Mods.size());
	return Result;
}

bool FQVMapScanner::IsToolchainPlugin(std::string_view Name)
{
	return FQVString::EqualsIgnoreCase(Name, ToolkitPlugin) || IsReservedName(Name);
}

bool FQVMapScanner::IsReservedName(std::string_view Name)
{
	return std::any_of(std::begin(ReservedNames), std::end(ReservedNames),
		[Name](std::string_view Reserved) { return FQVString::EqualsIgnoreCase(Name, Reserved); });
}
