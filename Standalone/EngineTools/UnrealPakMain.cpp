// SPDX-License-Identifier: MIT
#include "Core/QVString.h"
#include "Standalone/Engine/Environment.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/EngineTools/PakCreation.h"
#include "Standalone/EngineTools/ToolLog.h"

#include <chrono>

namespace QVEngineTools
{
using namespace QVFormats;

namespace
{
struct FPakCommand
{
	std::string Pak;
	std::string ResponseFile;
	bool bCompress = false;
};

FPakCommand ParsePakCommand(const std::vector<std::string>& Arguments)
{
	constexpr std::string_view Create = "-create=";
	FPakCommand Command;
	for (const std::string& Argument : Arguments)
	{
		if (FQVString::StartsWithIgnoreCase(Argument, Create))
		{
			Command.ResponseFile = Argument.substr(Create.size());
		}
		else if (!Argument.starts_with('-') && Command.Pak.empty())
		{
			Command.Pak = Argument;
		}
		Command.bCompress = Command.bCompress || FQVString::EqualsIgnoreCase(Argument, "-compress");
	}
	return Command;
}

void PrintSummary(FToolLog& Log, const FPakWriteSummary& Summary)
{
	Log.Display("LogPakFile", "PrimaryIndex size: %d bytes", Summary.IndexBytes);
	Log.Display("LogPakFile", "PathHashIndex size: %d bytes", Summary.PathHashIndexBytes);
	Log.Display("LogPakFile", "FullDirectoryIndex size: %d bytes", Summary.DirectoryIndexBytes);
	const double Share = Summary.BytesIn > 0
							 ? static_cast<double>(Summary.PayloadBytes) * 100.0 / static_cast<double>(Summary.BytesIn)
							 : 100.0;
	Log.Display("LogPakFile",
		"Compression summary: %.2f%% of original size. Compressed Size %d bytes, Original Size %d bytes.", Share,
		Summary.PayloadBytes, Summary.BytesIn);
	Log.Display("LogPakFile", "Encryption - DISABLED");
}

int RunUnrealPak(const FPakCommand& Command)
{
	const auto Start = std::chrono::steady_clock::now();
	FToolLog Log;
	Log.Display("LogInit", "This is QVMap's stand-in for UnrealPak.");
	if (Command.Pak.empty() || Command.ResponseFile.empty())
	{
		Log.Error("LogPakFile", "usage: UnrealPak <pak> -create=<response file> [-compress]");
		return 1;
	}
	Log.Display("LogPakFile", "Loading response file %s", Command.ResponseFile);
	const auto Sources = CollectPakSources(Command.ResponseFile, {}, Command.bCompress);
	if (!Sources)
	{
		Log.Error("LogPakFile", "%s", Sources.Error().Message);
		return 1;
	}
	Log.Display("LogPakFile", "Added %d entries to add to pak file.", Sources->size());
	Log.Display("LogPakFile", "Creating pak %s.", Command.Pak);
	FPakWriteOptions Options;
	Options.OnFile = [&Log](const FPakWriteProgress& Progress)
	{ Log.Display("LogPakFile", "Added file \"%s\"", Progress.Destination); };
	Options.ShouldStop = &QVStandalone::FInterrupt::IsRaised;
	const TResult<FPakWriteSummary> Summary = WritePak(QVStandalone::ToOsPath(Command.Pak), *Sources, Options);
	if (!Summary)
	{
		Log.Error("LogPakFile", "%s", Summary.Error().Message);
		return 1;
	}
	PrintSummary(Log, *Summary);
	const std::chrono::duration<double> Taken = std::chrono::steady_clock::now() - Start;
	Log.Display(
		"LogPakFile", "Added %d files, %d bytes total, time %.2fs.", Summary->Files, Summary->BytesIn, Taken.count());
	Log.Display("LogPakFile", "UnrealPak executed in %.6f seconds", Taken.count());
	return 0;
}
} // namespace
} // namespace QVEngineTools

/** Stands for UnrealPak.exe on machines without Unreal: `<pak> -create=<response file> [-compress]`. */
int main(int Count, char** Words)
{
	QVStandalone::FInterrupt::Install();
	return QVEngineTools::RunUnrealPak(QVEngineTools::ParsePakCommand(QVStandalone::BeginProgram(Count, Words)));
}
