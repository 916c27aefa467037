// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"
#include "Standalone/Cli/CommandLine.h"
#include "Standalone/Cli/SampleProject.h"
#include "Standalone/Cli/TypedPath.h"

namespace QVCli
{
namespace
{
EExitCode WriteSample(FCommandLine& Line, const std::string& TypedFolder)
{
	const auto ProjectFile = WriteSampleProject(FullPath(TypedFolder));
	if (!ProjectFile)
	{
		Line.Console.Fail(ProjectFile.Error().Message);
		return EExitCode::Failed;
	}
	Line.Console.Result(QVPrintf("project  %s", *ProjectFile));
	Line.Console.Say(QVPrintf("  next: cd \"%s\", then qvmap maps, qvmap base-release build, qvmap pack Docks",
		FQVPath::GetPath(*ProjectFile)));
	return EExitCode::Done;
}
} // namespace

void AddSampleVerb(FCommandLine& Line)
{
	const auto Folder = std::make_shared<std::string>();
	CLI::App* Verb = Line.AddVerb(Line.App, "sample", "Writes a small mapping project to try all of this on",
		"qvmap sample SampleMaps", [&Line, Folder] { return WriteSample(Line, *Folder); });
	Verb->add_option("folder", *Folder, "A new or empty folder")->required()->type_name("FOLDER");
}
} // namespace QVCli
