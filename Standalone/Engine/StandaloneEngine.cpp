// SPDX-License-Identifier: MIT
#include "Standalone/Engine/StandaloneEngine.h"

#include <clocale>

namespace QVStandalone
{
FStandaloneEngine::FStandaloneEngine(const std::string& ProjectFile, const std::string& EngineDir)
	: Project(ProjectFile, EngineDir)
	, Plugins(ProjectFile, EngineDir)
	, Packages(Project.ProjectDir(), EngineDir, Plugins)
	, AssetRegistry(Project.ProjectDir(), Packages, GameThread)
	, AssetTools(AssetRegistry, Packages, Project.ProjectDir())
{
	// which letters are letters must not depend on the user's settings; numbers keep their point
	std::setlocale(LC_CTYPE, "C.UTF-8");
	Interfaces.AssetRegistry = &AssetRegistry;
	Interfaces.AssetTools = &AssetTools;
	Interfaces.Clock = &Clock;
	Interfaces.Dialogs = &Dialogs;
	Interfaces.Editor = &Editor;
	Interfaces.Files = &Files;
	Interfaces.GameThread = &GameThread;
	Interfaces.JsonReader = &JsonReader;
	Interfaces.Packages = &Packages;
	Interfaces.Plugins = &Plugins;
	Interfaces.Processes = &Processes;
	Interfaces.Project = &Project;
	Interfaces.RegistryFile = &RegistryFile;
	FQVEngine::Install(&Interfaces);
}

FStandaloneEngine::~FStandaloneEngine()
{
	FQVEngine::Install(nullptr);
}
} // namespace QVStandalone
