// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Project.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Standalone/Engine/ConfigFile.h"
#include "Standalone/Engine/Descriptor.h"
#include "Standalone/Engine/EngineLog.h"

namespace QVStandalone
{
FProject::FProject(std::string InProjectFile, std::string InEngineDir)
	: ProjectFile(std::move(InProjectFile))
	, Engine(std::move(InEngineDir))
{
}

std::string FProject::ProjectDir() const
{
	return std::string(FQVPath::GetPath(ProjectFile));
}

std::string FProject::GetProjectFilePath() const
{
	return ProjectFile;
}

std::string FProject::EngineDir() const
{
	return Engine;
}

std::string FProject::EngineVersion() const
{
	const std::string File = FQVPath::Combine(Engine, "Build/Build.version");
	const std::optional<FQVJson> Version = LoadDescriptor(File);
	if (!Version || !Version->TryNumber("MajorVersion"))
	{
		LogEngine(EQVLogVerbosity::Warning, "%s tells no engine version; 5.4.0 is taken", File);
		return "5.4.0";
	}
	const auto Part = [&Version](std::string_view Key)
	{ return static_cast<int>(Version->TryNumber(Key).value_or(0)); };
	return QVPrintf("%d.%d.%d", Part("MajorVersion"), Part("MinorVersion"), Part("PatchVersion"));
}

std::string FProject::DevelopmentAssetRegistryFilename() const
{
	return "DevelopmentAssetRegistry.bin";
}

std::optional<std::string> FProject::GetGameConfigString(std::string_view Section, std::string_view Key) const
{
	return ReadGameConfig(ProjectDir(), Engine, Section, Key);
}
} // namespace QVStandalone
