// SPDX-License-Identifier: MIT
#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Export/QVMapPacker.h"
#include "Workspace/QVMapConfig.h"
#include "Workspace/QVMapPaths.h"

#include <algorithm>
#include <unordered_set>

namespace
{
constexpr std::size_t SampleLines = 10;
constexpr std::string_view Frame = "QVMap: ================================================";
constexpr std::string_view SidecarExtensions[] = {".uexp", ".ubulk", ".uptnl"};

bool IsSidecar(std::string_view Path)
{
	return std::any_of(std::begin(SidecarExtensions), std::end(SidecarExtensions),
		[Path](std::string_view Extension) { return FQVString::EndsWithIgnoreCase(Path, Extension); });
}

/** The list that the pak tool is given, while it grows. */
struct FResponseFile
{
	std::vector<std::string> Lines;
	std::vector<std::string> FileNames;
	std::int32_t Kept = 0;
	std::int32_t Sidecars = 0;
	std::int32_t Skipped = 0;

	void AddLine(std::string_view Source, std::string_view Destination)
	{
		Lines.push_back(QVPrintf("\"%s\" \"%s\"", Source, Destination));
	}
};

std::string MakeDestination(std::string_view PluginName, std::string_view RelativePath)
{
	constexpr std::string_view ContentFolder = "Content/";
	const bool bDoubled = FQVString::StartsWithIgnoreCase(RelativePath, ContentFolder);
	return QVPrintf("../../../%s/Content/%s", PluginName, RelativePath.substr(bDoubled ? ContentFolder.size() : 0));
}

bool DecideFilter(const std::string& PluginName, const FQVNameSet& UsedPackages)
{
	if (!FQVMapConfig::GetFilterUnusedAssets())
	{
		return false;
	}
	if (UsedPackages.IsEmpty())
	{
		QVLog(EQVLogVerbosity::Warning, "QVMap: Filter requested but no used packages computed (will include all)");
		return false;
	}
	QVLog(
		EQVLogVerbosity::Log, "QVMap: Filtering enabled, %d used packages, Plugin=%s", UsedPackages.Num(), PluginName);
	return true;
}

void AddCookedFiles(FResponseFile& List, const std::string& PluginName, const std::string& CookedDir, bool bFilter,
	const FQVNameSet& UsedPackages)
{
	FQVEngine::Get().Files->IterateDirectoryRecursively(CookedDir,
		[&](std::string_view Path, bool bIsDirectory)
		{
			if (bIsDirectory)
			{
				return true;
			}
			std::string RelativePath(Path);
			FQVPath::MakePathRelativeTo(RelativePath, CookedDir + "/");
			if (bFilter && !FQVMapDependencyAnalyzer::ShouldIncludeFile(RelativePath, PluginName, UsedPackages))
			{
				++List.Skipped;
				return true;
			}
			++(bFilter && IsSidecar(RelativePath) ? List.Sidecars : List.Kept);
			const std::string Destination = MakeDestination(PluginName, RelativePath);
			List.AddLine(FQVPath::NormalizeFilename(Path), Destination);
			List.FileNames.emplace_back(FQVPath::GetCleanFilename(Destination));
			return true;
		});
}

void CountContents(const FResponseFile& List, FQVPakResult& Result)
{
	std::unordered_set<std::string> MapNames;
	for (const std::string& FileName : List.FileNames)
	{
		if (FQVString::EndsWithIgnoreCase(FileName, ".umap"))
		{
			MapNames.insert(FQVString::ToLower(FQVPath::GetBaseFilename(FileName)));
		}
	}
	for (const std::string& FileName : List.FileNames)
	{
		const bool bPayload = !MapNames.contains(FQVString::ToLower(FQVPath::GetBaseFilename(FileName)));
		Result.PayloadFiles += bPayload ? 1 : 0;
		Result.ShaderArchives += bPayload && FQVString::StartsWithIgnoreCase(FileName, "ShaderArchive-") ? 1 : 0;
	}
	Result.MapFiles = static_cast<std::int32_t>(MapNames.size());
	QVLog(EQVLogVerbosity::Log, "QVMap: Pak contents: %d map(s), %d payload file(s), %d shader archive(s)",
		Result.MapFiles, Result.PayloadFiles, Result.ShaderArchives);
}

void LogSummary(const FResponseFile& List, bool bFilter, std::size_t UsedPackages)
{
	QVLog(EQVLogVerbosity::Log, "%s", Frame);
	if (bFilter)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: PACKING SUMMARY (Filtering Enabled)");
		QVLog(EQVLogVerbosity::Log, "QVMap:   Packages whitelisted: %d", UsedPackages);
		QVLog(EQVLogVerbosity::Log, "QVMap:   Assets kept: %d", List.Kept);
		QVLog(EQVLogVerbosity::Log, "QVMap:   Sidecars included: %d", List.Sidecars);
		QVLog(EQVLogVerbosity::Log, "QVMap:   Assets skipped: %d", List.Skipped);
	}
	else
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: PACKING SUMMARY (No Filtering)");
		QVLog(EQVLogVerbosity::Log, "QVMap:   Assets packed: %d", List.Kept);
	}
	QVLog(EQVLogVerbosity::Log, "QVMap:   Total in pak: %d files", List.Lines.size());
	if (bFilter && List.Skipped > 0)
	{
		const float Share = static_cast<float>(List.Skipped) / static_cast<float>(List.Skipped + List.Kept) * 100.0f;
		QVLog(EQVLogVerbosity::Log, "QVMap:   Reduction: %.1f%% files skipped", Share);
	}
	QVLog(EQVLogVerbosity::Log, "%s", Frame);
}

void LogEntries(const std::vector<std::string>& Lines, const std::string& Path)
{
	const bool bVerbose = FQVMapConfig::GetVerboseLogging();
	const std::size_t Shown = bVerbose ? Lines.size() : std::min(SampleLines, Lines.size());
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Response file generated with %d entries: %s", Lines.size(), Path);
	QVLog(EQVLogVerbosity::Log, "%s",
		bVerbose ? "QVMap DEBUG: ALL response file entries (verbose mode):"
				 : "QVMap DEBUG: First 10 response file entries:");
	for (std::size_t Index = 0; Index < Shown; ++Index)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap DEBUG:   [%d] %s", Index, Lines[Index]);
	}
	if (Lines.size() > Shown)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap DEBUG:   ... and %d more entries (enable verbose logging to see all)",
			Lines.size() - Shown);
	}
}
} // namespace

std::string FQVMapPacker::GenerateResponseFile(const std::string& PluginName, const std::string& CookedDir,
	const std::string& ManifestPath, const FQVNameSet& UsedPackages, FQVPakResult& Result)
{
	Result.bFilterUnusedActive = DecideFilter(PluginName, UsedPackages);
	FQVMapCookedContents::AnalyzeCookedContents(
		CookedDir, PluginName, FQVMapConfig::GetVerboseLogging(), Result.Analysis);

	FResponseFile List;
	AddCookedFiles(List, PluginName, CookedDir, Result.bFilterUnusedActive, UsedPackages);
	CountContents(List, Result);
	const std::string ManifestSource = FQVPath::NormalizeFilename(ManifestPath);
	const std::string ManifestDestination = QVPrintf("../../../%s/Content/manifest.json", PluginName);
	List.AddLine(ManifestSource, ManifestDestination);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Manifest entry: Source=%s Dest=%s", ManifestSource, ManifestDestination);
	LogSummary(List, Result.bFilterUnusedActive, UsedPackages.Num());
	Result.FilesPacked = static_cast<std::int32_t>(List.Lines.size());
	Result.FilesSkipped = List.Skipped;

	std::string Path = FQVPath::Combine(FQVMapPaths::GetTempDir(), QVPrintf("%s_filelist.txt", PluginName));
	FQVMapPaths::EnsureDirectory(FQVMapPaths::GetTempDir());
	if (!FQVEngine::Get().Files->SaveStringToFile(FQVString::Join(List.Lines, "\n"), Path))
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: Failed to write response file: %s", Path);
		return {};
	}
	LogEntries(List.Lines, Path);
	return Path;
}
