// SPDX-License-Identifier: MIT
#include "Export/QVMapCookedAnalysis.h"

#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"

#include <algorithm>
#include <array>

namespace
{
constexpr std::size_t SampleLines = 10;
constexpr std::size_t BaseGameSampleSize = 50;
constexpr std::string_view Frame = "QVMap: ================================================";
constexpr std::string_view Separator = "QVMap: ---------------------------------------------";

std::string_view CategoryName(ECookedCategory Category)
{
	constexpr std::string_view Names[] = {"PLUGIN", "BASEGAME", "ENGINE", "OTHER"};
	return Names[static_cast<int>(Category)];
}

float Megabytes(std::int64_t Bytes)
{
	return static_cast<float>(Bytes) * 9.536743e-07f;
}

float Kilobytes(std::int64_t Bytes)
{
	return static_cast<float>(Bytes) * 0.0009765625f;
}

struct FCategoryFiles
{
	std::vector<FQVCookedFile> Files;
	std::int64_t Bytes = 0;
};

/** All files of a walk by category. */
using FCookedFiles = std::array<FCategoryFiles, 4>;

FCookedFiles CollectFiles(const std::string& CookedDir, const std::string& PluginName)
{
	FCookedFiles Result;
	const IQVFiles& Disk = *FQVEngine::Get().Files;
	Disk.IterateDirectoryRecursively(CookedDir,
		[&](std::string_view Path, bool bIsDirectory)
		{
			if (bIsDirectory)
			{
				return true;
			}
			FQVCookedFile File;
			File.FullPath = Path;
			File.RelativePath = Path;
			FQVPath::MakePathRelativeTo(File.RelativePath, CookedDir + "/");
			File.FileName = FQVPath::GetCleanFilename(Path);
			File.SizeBytes = Disk.FileSize(Path);
			File.Category = FQVMapCookedContents::Classify(File.RelativePath, PluginName);
			FCategoryFiles& Category = Result[static_cast<std::size_t>(File.Category)];
			Category.Bytes += File.SizeBytes;
			Category.Files.push_back(std::move(File));
			return true;
		});
	return Result;
}

const FCategoryFiles& FilesOf(const FCookedFiles& Files, ECookedCategory Category)
{
	return Files[static_cast<std::size_t>(Category)];
}

void LogLine(std::string_view Line)
{
	QVLog(EQVLogVerbosity::Log, "%s", Line);
}

void LogBreakdown(const FCookedFiles& Files)
{
	const auto Log = [&Files](std::string_view Label, ECookedCategory Category)
	{
		const FCategoryFiles& Of = FilesOf(Files, Category);
		QVLog(EQVLogVerbosity::Log, "QVMap:   %s%d files (%lld bytes / %.2f MB)", Label, Of.Files.size(), Of.Bytes,
			Megabytes(Of.Bytes));
	};
	LogLine("QVMap: ASSET BREAKDOWN:");
	Log("Plugin Assets:   ", ECookedCategory::Plugin);
	Log("Base Game Assets: ", ECookedCategory::BaseGame);
	Log("Engine Assets:   ", ECookedCategory::Engine);
	Log("Other Assets:    ", ECookedCategory::Other);
	LogLine(Separator);
}

void LogEachFile(EQVLogVerbosity Verbosity, char Mark, const std::vector<FQVCookedFile>& Files)
{
	for (const FQVCookedFile& File : Files)
	{
		QVLog(Verbosity, "QVMap:   %c [%s] %s (%.2f KB)", Mark, CategoryName(File.Category), File.RelativePath,
			Kilobytes(File.SizeBytes));
	}
}

void LogSample(EQVLogVerbosity Verbosity, char Mark, const std::vector<FQVCookedFile>& Files)
{
	const std::size_t Shown = std::min(SampleLines, Files.size());
	for (std::size_t Index = 0; Index < Shown; ++Index)
	{
		QVLog(Verbosity, "QVMap:   %c %s", Mark, Files[Index].RelativePath);
	}
	if (Files.size() > Shown)
	{
		QVLog(Verbosity, "QVMap:   ... and %d more (enable verbose logging to see all)", Files.size() - Shown);
	}
}

void LogPluginFiles(const std::vector<FQVCookedFile>& Files, bool bVerbose)
{
	if (Files.empty())
	{
		return;
	}
	if (bVerbose)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: ALL PLUGIN ASSETS (%d files):", Files.size());
		LogEachFile(EQVLogVerbosity::Log, '+', Files);
	}
	else
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Sample PLUGIN assets (showing first 10 of %d):", Files.size());
		LogSample(EQVLogVerbosity::Log, '+', Files);
	}
	LogLine(Separator);
}

void LogBaseGameFiles(const std::vector<FQVCookedFile>& Files, bool bVerbose)
{
	constexpr EQVLogVerbosity Warning = EQVLogVerbosity::Warning;
	if (Files.empty())
	{
		return;
	}
	if (bVerbose)
	{
		QVLog(Warning, "QVMap: ALL BASE GAME ASSETS (%d files) - THESE SHOULD NOT BE PACKED!", Files.size());
		LogEachFile(Warning, '!', Files);
	}
	else
	{
		QVLog(Warning, "QVMap: Sample BASE GAME assets (showing first 10 of %d):", Files.size());
		LogSample(Warning, '!', Files);
	}
	QVLog(Warning, "QVMap: ^^^ Base game assets should NOT be in the DLC pak!");
	LogLine(Separator);
}

void LogAllOf(std::string_view Label, char Mark, const std::vector<FQVCookedFile>& Files)
{
	if (!Files.empty())
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: ALL %s ASSETS (%d files):", Label, Files.size());
		LogEachFile(EQVLogVerbosity::Log, Mark, Files);
		LogLine(Separator);
	}
}

void LogTotal(const FCookedFiles& Files)
{
	std::size_t Count = 0;
	std::int64_t Bytes = 0;
	for (const FCategoryFiles& Category : Files)
	{
		Count += Category.Files.size();
		Bytes += Category.Bytes;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: TOTAL: %d files (%lld bytes / %.2f MB)", Count, Bytes, Megabytes(Bytes));
	LogLine(Frame);
}

FQVCookedAnalysis Summarize(const FCookedFiles& Files)
{
	const auto Count = [&Files](ECookedCategory Category)
	{ return static_cast<std::int32_t>(FilesOf(Files, Category).Files.size()); };
	FQVCookedAnalysis Result;
	Result.PluginFiles = Count(ECookedCategory::Plugin);
	Result.BaseGameFiles = Count(ECookedCategory::BaseGame);
	Result.EngineFiles = Count(ECookedCategory::Engine);
	Result.OtherFiles = Count(ECookedCategory::Other);
	Result.PluginBytes = FilesOf(Files, ECookedCategory::Plugin).Bytes;
	Result.BaseGameBytes = FilesOf(Files, ECookedCategory::BaseGame).Bytes;
	Result.EngineBytes = FilesOf(Files, ECookedCategory::Engine).Bytes;
	Result.OtherBytes = FilesOf(Files, ECookedCategory::Other).Bytes;
	for (const FQVCookedFile& File : FilesOf(Files, ECookedCategory::BaseGame).Files)
	{
		if (Result.BaseGameSample.size() < BaseGameSampleSize)
		{
			Result.BaseGameSample.push_back(File.RelativePath);
		}
	}
	return Result;
}
} // namespace

ECookedCategory FQVMapCookedContents::Classify(std::string_view RelativePath, std::string_view PluginName)
{
	if (FQVString::ContainsIgnoreCase(RelativePath, "/Engine/"))
	{
		return ECookedCategory::Engine;
	}
	if (FQVString::StartsWithIgnoreCase(RelativePath, "Plugins/") ||
		FQVString::StartsWithIgnoreCase(RelativePath, QVPrintf("%s/", PluginName)))
	{
		return ECookedCategory::Plugin;
	}
	const bool bBaseGame = FQVString::StartsWithIgnoreCase(RelativePath, "Content/") ||
						   FQVString::ContainsIgnoreCase(RelativePath, "QUARVEL_Mapping/");
	return bBaseGame ? ECookedCategory::BaseGame : ECookedCategory::Other;
}

void FQVMapCookedContents::AnalyzeCookedContents(
	const std::string& CookedDir, const std::string& PluginName, bool bVerbose, FQVCookedAnalysis& OutAnalysis)
{
	const FCookedFiles Files = CollectFiles(CookedDir, PluginName);
	LogLine(Frame);
	LogLine("QVMap: COOKED CONTENTS ANALYSIS");
	LogLine(Frame);
	QVLog(EQVLogVerbosity::Log, "QVMap: Cooked directory: %s", CookedDir);
	QVLog(EQVLogVerbosity::Log, "QVMap: Plugin name: %s", PluginName);
	QVLog(EQVLogVerbosity::Log, "QVMap: Verbose logging: %s", bVerbose ? "ENABLED" : "disabled");
	LogLine(Separator);
	LogBreakdown(Files);
	LogPluginFiles(FilesOf(Files, ECookedCategory::Plugin).Files, bVerbose);
	LogBaseGameFiles(FilesOf(Files, ECookedCategory::BaseGame).Files, bVerbose);
	if (bVerbose)
	{
		LogAllOf("ENGINE", '*', FilesOf(Files, ECookedCategory::Engine).Files);
		LogAllOf("OTHER", '?', FilesOf(Files, ECookedCategory::Other).Files);
	}
	LogTotal(Files);
	OutAnalysis = Summarize(Files);
}
