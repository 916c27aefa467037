// SPDX-License-Identifier: MIT
#include "Standalone/Cli/Graphviz.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVProcesses.h"
#include "Standalone/Engine/Environment.h"
#include "Standalone/EngineTools/RawFile.h"
#include "Workspace/QVMapPaths.h"

#include <span>

namespace QVCli
{
using namespace QVFormats;

namespace
{
#ifdef _WIN32
constexpr char PathSeparator = ';';
constexpr std::string_view ProgramName = "dot.exe";
#else
constexpr char PathSeparator = ':';
constexpr std::string_view ProgramName = "dot";
#endif

/** The two work files, gone with their object. */
struct FWorkFiles
{
	const std::string Input = FQVPath::Combine(FQVMapPaths::GetTempDir(), "references.dot");
	const std::string Output = FQVPath::Combine(FQVMapPaths::GetTempDir(), "references.svg");

	FWorkFiles() { Delete(); }
	~FWorkFiles() { Delete(); }
	FWorkFiles(const FWorkFiles&) = delete;
	FWorkFiles& operator=(const FWorkFiles&) = delete;

private:
	void Delete() const
	{
		for (const std::string& File : {Input, Output})
		{
			if (FQVEngine::Get().Files->FileExists(File))
			{
				FQVEngine::Get().Files->DeleteFile(File);
			}
		}
	}
};

/** What it wrote, or that it could not be started or failed. */
FStatus RunToEnd(const std::string& Program, const std::string& Arguments)
{
	IQVProcesses& Processes = *FQVEngine::Get().Processes;
	FQVPipe Pipe = Processes.CreatePipe();
	FQVProcHandle Process = Processes.CreateProc(Program, Arguments, Pipe);
	std::string Words;
	int Code = -1;
	while (Process.IsValid() && !Processes.GetProcReturnCode(Process, Code))
	{
		Words += Processes.ReadPipe(Pipe);
		Processes.Sleep(0.01);
	}
	Words += Processes.ReadPipe(Pipe);
	Processes.ClosePipe(Pipe);
	if (!Process.IsValid())
	{
		return FError{QVPrintf("%s could not be started", Program)};
	}
	Processes.CloseProc(Process);
	return Code == 0 ? Success() : FStatus(FError{QVPrintf("%s ended with code %d: %s", Program, Code, Words)});
}

/** It names a file of the network, which a picture does not need. */
std::string WithoutDoctype(std::string Svg)
{
	const std::size_t Begin = Svg.find("<!DOCTYPE");
	const std::size_t End = Begin == std::string::npos ? Begin : Svg.find('>', Begin);
	if (End != std::string::npos && Begin < Svg.find("<svg"))
	{
		Svg.erase(Begin, End + 1 - Begin);
	}
	return Svg;
}
} // namespace

std::string FindGraphviz()
{
	const std::string Path = QVStandalone::EnvironmentValue("PATH");
	std::string_view Rest = Path;
	while (!Rest.empty())
	{
		const std::size_t End = std::min(Rest.find(PathSeparator), Rest.size());
		const std::string File = FQVPath::Combine(FQVPath::NormalizeFilename(Rest.substr(0, End)), ProgramName);
		if (FQVPath::IsAbsolute(File) && FQVEngine::Get().Files->FileExists(File))
		{
			return File;
		}
		Rest.remove_prefix(std::min(End + 1, Rest.size()));
	}
	return {};
}

TResult<std::string> DrawWithGraphviz(const std::string& Program, const std::string& Dot)
{
	const FWorkFiles Files;
	const FStatus Written = QVEngineTools::WriteRawFile(Files.Input, std::as_bytes(std::span(Dot)));
	if (!Written)
	{
		return Written.Error();
	}
	const FStatus Drawn = RunToEnd(Program, QVPrintf("-Tsvg -o \"%s\" \"%s\"", Files.Output, Files.Input));
	if (!Drawn)
	{
		return Drawn.Error();
	}
	std::string Svg;
	if (!FQVEngine::Get().Files->LoadFileToString(Svg, Files.Output))
	{
		return FError{QVPrintf("%s left no picture in %s", Program, Files.Output)};
	}
	return WithoutDoctype(std::move(Svg));
}
} // namespace QVCli
