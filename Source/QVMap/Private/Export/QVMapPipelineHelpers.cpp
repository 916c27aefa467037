// SPDX-License-Identifier: MIT
#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVClock.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVPackages.h"
#include "Export/QVMapPipeline.h"
#include "Workspace/QVMapPaths.h"

namespace
{
bool ReachesMapFile(const std::string& PackageName)
{
	std::string FilePath;
	const bool bConverted = FQVEngine::Get().Packages->TryConvertLongPackageNameToFilename(
		PackageName, FilePath, IQVPackages::MapPackageExtension);
	const bool bExists = bConverted && FQVEngine::Get().Files->FileExists(FilePath);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Package validation for '%s' -> FilePath='%s', Converted=%s, Exists=%s",
		PackageName, FilePath, FQVString::BoolWord(bConverted), FQVString::BoolWord(bExists));
	return bExists;
}

/** A blank line, the heading, and all that a tool wrote, its last line ended too. */
void AppendOutput(std::string& Text, std::string_view Heading, const std::string& Output)
{
	Text += QVPrintf("\n%s\n%s", Heading, Output);
	if (!Output.empty() && Output.back() != '\n')
	{
		Text += "\n";
	}
}
} // namespace

bool FQVMapPipeline::ResolveCookPath(const FQVMapInfo& Map, std::string& OutPath, std::vector<std::string>* OutTried)
{
	const std::string PluginFirst = Map.CookPath;
	const std::string Fallback =
		QVPrintf("/Game/%s", FQVPath::NormalizeFilename(FQVPath::WithoutExtension(Map.RelativePath)));
	if (OutTried != nullptr)
	{
		*OutTried = {PluginFirst, Fallback};
	}
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Resolving cook path for %s:", Map.Name);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG:   Candidate 1 (plugin-first): %s", PluginFirst);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG:   Candidate 2 (/Game/ fallback): %s", Fallback);
	if (ReachesMapFile(PluginFirst))
	{
		OutPath = PluginFirst;
		QVLog(EQVLogVerbosity::Log, "QVMap DEBUG:   Selected: %s (plugin-first resolved)", OutPath);
		return true;
	}
	if (ReachesMapFile(Fallback))
	{
		OutPath = Fallback;
		QVLog(EQVLogVerbosity::Log, "QVMap DEBUG:   Selected: %s (fallback resolved)", OutPath);
		return true;
	}
	OutPath = PluginFirst;
	QVLog(EQVLogVerbosity::Warning, "QVMap DEBUG:   WARNING: Neither cook path resolved for %s.", Map.Name);
	QVLog(EQVLogVerbosity::Warning, "QVMap DEBUG:   Attempted: %s, %s", PluginFirst, Fallback);
	return false;
}

std::string FQVMapPipeline::WriteExportLog(const std::string& ModName, std::int32_t Version, const std::string& PakPath,
	const std::vector<FQVMapInfo>& Maps, const std::string& CookLog, const std::string& PakLog)
{
	const FQVDateTime Now = FQVEngine::Get().Clock->Now();
	std::string Text =
		QVPrintf("QVPak Export Log\n================\nPlugin: %s\nVersion: %d\nDate: %s\nPAK: %s\nMaps: %d found\n",
			ModName, Version, Now.ToString(), PakPath, Maps.size());
	for (const FQVMapInfo& Map : Maps)
	{
		Text += QVPrintf("  - %s: GamePath=%s, CookPath=%s\n", Map.Name, Map.GamePath, Map.CookPath);
	}
	AppendOutput(Text, "Cook Log:", CookLog);
	AppendOutput(Text, "PAK Log:", PakLog);

	FQVMapPaths::EnsureDirectory(FQVMapPaths::GetLogsDir());
	std::string Path = FQVPath::Combine(FQVMapPaths::GetLogsDir(), QVPrintf("%s_%s.log", ModName, Now.ToFileStamp()));
	if (!FQVEngine::Get().Files->SaveStringToFile(Text, Path))
	{
		QVLog(EQVLogVerbosity::Warning, "QVMap: Failed to write export log: %s", Path);
		return {};
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Export log written: %s", Path);
	return Path;
}
