// SPDX-License-Identifier: MIT
#include "Export/QVMapPipeline.h"

#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVClock.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Export/QVMapCooker.h"
#include "Export/QVMapLastExport.h"
#include "Export/QVMapManifest.h"
#include "Export/QVMapPacker.h"
#include "Export/QVMapToolchainStamp.h"
#include "Workspace/QVMapPaths.h"

#include <algorithm>

namespace
{
constexpr std::string_view Rule = "QVMap DEBUG: ========================================";

/** What the cook left outside the mod's folder, and is neither the base game's nor the engine's own. */
std::vector<std::string> FindUnpackableFiles(const std::string& StagedRoot, const std::string& CookedDir)
{
	std::vector<std::string> Result;
	const std::string Packed = FQVPath::NormalizeFilename(CookedDir);
	FQVEngine::Get().Files->IterateDirectoryRecursively(StagedRoot,
		[&](std::string_view Path, bool bIsDirectory)
		{
			std::string File = FQVPath::NormalizeFilename(Path);
			const bool bPackage =
				FQVString::EndsWithIgnoreCase(File, ".uasset") || FQVString::EndsWithIgnoreCase(File, ".umap");
			if (bIsDirectory || !bPackage || FQVString::StartsWithIgnoreCase(File, Packed))
			{
				return true;
			}
			FQVPath::MakePathRelativeTo(File, StagedRoot + "/");
			if (!FQVString::StartsWithIgnoreCase(File, "Plugins/QUARVEL/") &&
				!FQVString::StartsWithIgnoreCase(File, "Engine/"))
			{
				Result.push_back(std::move(File));
			}
			return true;
		});
	std::sort(Result.begin(), Result.end(), FQVString::LessIgnoreCase);
	return Result;
}

/** A pak that a running game holds open stays; the fresh name of the new one makes that harmless. */
void RemovePreviousPaks(const std::string& ModName)
{
	IQVFiles& Files = *FQVEngine::Get().Files;
	const std::string OutputDir = FQVMapPaths::GetOutputDir();
	FQVMapPaths::EnsureDirectory(OutputDir);
	std::vector<std::string> Old;
	Files.IterateDirectory(OutputDir,
		[&](std::string_view Path, bool bIsDirectory)
		{
			const std::string_view Name = FQVPath::GetCleanFilename(Path);
			const bool bOurs = FQVString::StartsWithIgnoreCase(Name, ModName + "_") ||
							   FQVString::EqualsIgnoreCase(Name, ModName + ".pak");
			if (!bIsDirectory && bOurs && FQVString::EndsWithIgnoreCase(Name, ".pak"))
			{
				Old.emplace_back(Path);
			}
			return true;
		});
	for (const std::string& Pak : Old)
	{
		if (!Files.DeleteFile(Pak))
		{
			QVLog(EQVLogVerbosity::Log, "QVMap: Could not delete old PAK (likely locked): %s", Pak);
		}
	}
}

/** One run of the export. Each stage gives false when it stops the run, with the message in Result. */
class FExportRun
{
public:
	FExportRun(const std::string& InModName, std::int32_t InVersion, const FQVNameSet& InUsedPackages,
		const FQVExportProgress& InProgress, const std::string& InStartMap)
		: ModName(InModName)
		, Version(InVersion)
		, UsedPackages(InUsedPackages)
		, Progress(InProgress)
		, StartMap(InStartMap)
	{
		Record.PluginName = ModName;
		Record.Version = Version;
		Record.Timestamp = FQVEngine::Get().Clock->Now();
		Record.FailedStage = "validating";
	}

	FQVExportResult Run()
	{
		if (Validate() && WriteManifest() && Cook() && Pack())
		{
			Finish();
		}
		Record.bSuccess = Result.bSuccess;
		Record.ErrorMessage = Result.ErrorMessage;
		if (Result.bSuccess)
		{
			Record.FailedStage.clear();
		}
		FQVMapLastExport::WriteLastExportRecord(Record);
		return std::move(Result);
	}

private:
	const std::string& ModName;
	const std::int32_t Version;
	const FQVNameSet& UsedPackages;
	const FQVExportProgress& Progress;
	const std::string& StartMap;

	FQVExportResult Result;
	FQVLastExportRecord Record;
	std::vector<FQVMapInfo> Maps;
	std::string ManifestPath;
	FQVCookResult CookResult;
	FQVPakResult PakResult;

	bool Stop(std::string Message)
	{
		Result.ErrorMessage = std::move(Message);
		return false;
	}

	bool StopWithLog(std::string Message)
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: %s", Message);
		return Stop(std::move(Message));
	}

	/** Hands a step's own progress on under the stage's word. */
	FQVCookProgress StepProgress(std::string_view Stage) const
	{
		return FQVCookProgress([this, Stage](std::string_view, float Fraction, std::string_view Message)
			{ Progress.Report(Stage, Fraction, Message); });
	}

	std::string PluginDir() const { return FQVPath::Combine(FQVMapPaths::GetPluginsDir(), ModName); }
	std::string UpluginPath() const { return FQVPath::Combine(PluginDir(), ModName + ".uplugin"); }

	bool Validate()
	{
		const IQVFiles& Files = *FQVEngine::Get().Files;
		Progress.Report("validating", 0.0f, "Checking plugin...");
		std::string Error;
		if (!FQVMapCooker::ValidatePluginName(ModName, Error))
		{
			return StopWithLog(Error);
		}
		const FQVToolchainCheck Toolchain = FQVMapToolchainStamp::CheckToolchain();
		if (!Toolchain.bUpToDate && !Toolchain.bNoBaseRelease)
		{
			return StopWithLog(
				QVPrintf("The base release is out of date and must be rebuilt before packing.\n\n%s\n\nDelete "
						 "Releases/ and run Build Base Release, then pack again.",
					Toolchain.Reason));
		}
		if (!Files.DirectoryExists(PluginDir()))
		{
			return StopWithLog(QVPrintf("Plugin directory not found: %s", PluginDir()));
		}
		if (!Files.FileExists(UpluginPath()))
		{
			return StopWithLog(QVPrintf(
				"No plugin found for '%s'. You can only export maps that live inside a Plugin folder.", ModName));
		}
		Progress.Report("validating", 0.4f, "Scanning for maps...");
		return FindMaps();
	}

	bool FindMaps()
	{
		const FQVScanResult Scan = FQVMapScanner::ScanMods();
		const FQVModInfo* Mod = Scan.Find(ModName);
		if (Mod == nullptr || Mod->Maps.empty())
		{
			return StopWithLog(QVPrintf("No maps found in plugin: %s", ModName));
		}
		Maps = Mod->Maps;
		QVLog(EQVLogVerbosity::Log, "QVMap: Found %d map(s) in %s", Maps.size(), ModName);
		QVLog(EQVLogVerbosity::Log, "%s", Rule);
		QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Starting ExportMod for %s", ModName);
		QVLog(EQVLogVerbosity::Log, "%s", Rule);
		for (const FQVMapInfo& Map : Maps)
		{
			Record.MapsManifest.push_back(Map.GamePath);
		}
		return true;
	}

	bool WriteManifest()
	{
		Record.FailedStage = "manifest";
		Progress.Report("validating", 0.6f, "Generating manifest...");
		return FQVMapManifest::GenerateManifest(ModName, Maps, Version, UpluginPath(), ManifestPath, StartMap) ||
			   Stop("Failed to generate manifest");
	}

	bool Cook()
	{
		Record.FailedStage = "cooking";
		FQVBaseReleaseStatus Status;
		if (!FQVMapPaths::CheckBaseRelease(Status))
		{
			return StopWithLog(
				QVPrintf("%s\n\nRun 'Build Base Release...' from the QVMap toolbar menu first.", Status.ErrorMessage));
		}
		if (!ResolveCookPaths())
		{
			return false;
		}
		CookResult = FQVMapCooker::CookDLC(ModName, Record.MapsCooked, StepProgress("cooking"));
		Record.CookedDir = CookResult.CookedDir;
		return CookResult.bSuccess || Stop(QVPrintf("Cook failed: %s", CookResult.ErrorMessage));
	}

	bool ResolveCookPaths()
	{
		std::vector<std::string> CookPaths;
		QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: ---- Cook Path Resolution ----");
		for (FQVMapInfo& Map : Maps)
		{
			std::string Path;
			std::vector<std::string> Tried;
			if (!FQVMapPipeline::ResolveCookPath(Map, Path, &Tried))
			{
				return StopWithLog(
					QVPrintf("Could not resolve a cook path for map '%s'. Tried:\n  %s\n\nThe map file may have "
							 "been moved, renamed or deleted since the plugin was scanned. Make sure it is "
							 "saved inside Plugins/%s/Content/.",
						Map.Name, FQVString::Join(Tried, "\n  "), ModName));
			}
			CookPaths.push_back(Path);
			Map.CookPath = Path;
			QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Final selected cook path - Map=%s Path=%s", Map.Name, Path);
		}
		QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: ---- End Cook Path Resolution ----");
		Record.MapsCooked = std::move(CookPaths);
		QVLog(EQVLogVerbosity::Log, "%s", Rule);
		QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: FINAL -map= ARGUMENT: %s", FQVString::Join(Record.MapsCooked, "+"));
		QVLog(EQVLogVerbosity::Log, "%s", Rule);
		return true;
	}

	bool Pack()
	{
		Record.FailedStage = "packing";
		const std::string Unique = FQVString::ToLower(FQVEngine::Get().Clock->NewGuid().ToDigits().substr(0, 8));
		const std::string PakPath =
			FQVPath::Combine(FQVMapPaths::GetOutputDir(), QVPrintf("%s_%s.pak", ModName, Unique));
		RemovePreviousPaks(ModName);
		PakResult = FQVMapPacker::CreatePak(
			ModName, CookResult.CookedDir, ManifestPath, PakPath, UsedPackages, StepProgress("packing"));
		Record.PakPath = PakResult.PakPath;
		Record.PakSizeBytes = PakResult.PakSizeBytes;
		Record.Analysis = PakResult.Analysis;
		Record.FilesPacked = PakResult.FilesPacked;
		Record.FilesSkipped = PakResult.FilesSkipped;
		Record.bFilterUnusedActive = PakResult.bFilterUnusedActive;
		return PakResult.bSuccess || Stop(QVPrintf("PAK creation failed: %s", PakResult.ErrorMessage));
	}

	void Finish()
	{
		Progress.Report("done", 1.0f, "Writing log...");
		Record.LogPath = FQVMapPipeline::WriteExportLog(
			ModName, Version, PakResult.PakPath, Maps, CookResult.Output, PakResult.Output);
		Result.bSuccess = true;
		Result.PakPath = PakResult.PakPath;
		Result.Content = {PakResult.FilesPacked, PakResult.MapFiles, PakResult.PayloadFiles, PakResult.ShaderArchives,
			PakResult.PakSizeBytes, {}};
		CheckContent();
		QVLog(EQVLogVerbosity::Log, "QVMap: Export complete: %s", Result.PakPath);
	}

	void CheckContent()
	{
		FQVPakContentSummary& Content = Result.Content;
		if (!CookResult.StagedRoot.empty() && FQVEngine::Get().Files->DirectoryExists(CookResult.StagedRoot))
		{
			Content.UnpackableFiles = FindUnpackableFiles(CookResult.StagedRoot, CookResult.CookedDir);
		}
		for (const std::string& File : Content.UnpackableFiles)
		{
			QVLog(EQVLogVerbosity::Warning, "QVMap: Cooked but not packable (outside the map's folder): %s", File);
		}
		if (Content.HasProblem())
		{
			QVLog(EQVLogVerbosity::Warning, "QVMap: Pak content check failed - %s, %d unpackable", Content.Describe(),
				Content.UnpackableFiles.size());
		}
	}
};
} // namespace

FQVExportResult FQVMapPipeline::ExportMod(const std::string& ModName, std::int32_t Version,
	const FQVNameSet& UsedPackages, const FQVExportProgress& Progress, const std::string& StartMap)
{
	return FExportRun(ModName, Version, UsedPackages, Progress, StartMap).Run();
}
