// SPDX-License-Identifier: MIT
#include "Export/QVMapPacker.h"

#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Export/QVMapChildProcess.h"
#include "Workspace/QVMapPaths.h"

namespace
{
constexpr std::string_view Stage = "packing";
constexpr float FractionPerLine = 0.0005f;

FQVPakResult Fail(FQVPakResult Result, std::string Message)
{
	Result.ErrorMessage = std::move(Message);
	QVLog(EQVLogVerbosity::Error, "QVMap: %s", Result.ErrorMessage);
	return Result;
}
} // namespace

FQVPakResult FQVMapPacker::CreatePak(const std::string& PluginName, const std::string& CookedDir,
	const std::string& ManifestPath, const std::string& PakPath, const FQVNameSet& UsedPackages,
	const FQVCookProgress& Progress)
{
	FQVPakResult Result;
	const IQVFiles& Files = *FQVEngine::Get().Files;
	const std::string Tool = FQVMapPaths::GetUnrealPakPath();
	if (!Files.FileExists(Tool))
	{
		return Fail(std::move(Result), QVPrintf("UnrealPak.exe not found: %s", Tool));
	}
	const std::string ResponseFile = GenerateResponseFile(PluginName, CookedDir, ManifestPath, UsedPackages, Result);
	if (ResponseFile.empty())
	{
		// the reason is in the log already, with the file's path
		Result.ErrorMessage = "Failed to generate response file";
		return Result;
	}
	Progress.Report(Stage, 0.0f, "Starting PAK creation...");
	FQVMapPaths::EnsureDirectory(FQVPath::GetPath(PakPath));
	const std::string Arguments = QVPrintf("\"%s\" -create=\"%s\" -compress", PakPath, ResponseFile);
	QVLog(EQVLogVerbosity::Log, "QVMap: Starting pak: %s %s", Tool, Arguments);

	FQVChildRun Child = FQVMapChildProcess::Run(Tool, Arguments, Stage, FractionPerLine, Progress);
	if (!Child.bStarted)
	{
		return Fail(std::move(Result), "Failed to launch UnrealPak.exe");
	}
	Result.Output = std::move(Child.Output);
	if (Child.ReturnCode != 0)
	{
		return Fail(std::move(Result), QVPrintf("UnrealPak failed with return code %d", Child.ReturnCode));
	}
	if (!Files.FileExists(PakPath))
	{
		return Fail(std::move(Result), QVPrintf("PAK creation completed but file not found: %s", PakPath));
	}
	Result.PakSizeBytes = Files.FileSize(PakPath);
	Result.bSuccess = true;
	Result.PakPath = PakPath;
	Progress.Report(Stage, 1.0f, QVPrintf("PAK created (%lld bytes)", Result.PakSizeBytes));
	QVLog(EQVLogVerbosity::Log, "QVMap: PAK created: %s (%lld bytes)", PakPath, Result.PakSizeBytes);
	return Result;
}
