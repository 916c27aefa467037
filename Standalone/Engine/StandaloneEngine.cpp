// SPDX-License-Identifier: MIT
#include "Standalone/Engine/StandaloneEngine.h"

#include "Core/QVPath.h"

#include <clocale>

namespace QVStandalone
{
FStandaloneEngine::FStandaloneEngine(const std::string& ProjectFile, const std::string& EngineDir)
	: Project(ProjectFile, EngineDir)
	, Plugins(ProjectFile, EngineDir)
	, Packages(Project.ProjectDir(), EngineDir, Plugins)
	, Classes(Packages, Plugins)
	, LevelEditor(Packages, [this](std::string_view PackageName) { return OpenMap(PackageName); })
	, AssetRegistry(Project.ProjectDir(), Packages, GameThread)
	, AssetTools(AssetRegistry, Packages, Project.ProjectDir())
{
	// which letters are letters must not depend on the user's settings; numbers keep their point
	std::setlocale(LC_CTYPE, "C.UTF-8");
	Packages.OnSaved = [this](std::span<const std::string> Saved)
	{
		AssetRegistry.ScanModifiedAssetFiles(Saved);
		Editor.RenewOpenWorld();
	};
	Packages.OnReloaded = [this] { Editor.RenewOpenWorld(); };
	Editor.SetLevelEditor(&LevelEditor);
	Plugins.OnMounted = [this](const FQVPluginInfo& New)
	{ AssetRegistry.ScanPathsSynchronous(FQVPath::Combine(New.BaseDir, "Content") + "/"); };
	Interfaces.AssetRegistry = &AssetRegistry;
	Interfaces.AssetTools = &AssetTools;
	Interfaces.Classes = &Classes;
	Interfaces.Clock = &Clock;
	Interfaces.Dialogs = &Dialogs;
	Interfaces.Editor = &Editor;
	Interfaces.Files = &Files;
	Interfaces.GameThread = &GameThread;
	Interfaces.Http = &Http;
	Interfaces.Images = &Images;
	Interfaces.JsonReader = &JsonReader;
	Interfaces.Packages = &Packages;
	Interfaces.Plugins = &Plugins;
	Interfaces.Processes = &Processes;
	Interfaces.Project = &Project;
	Interfaces.RegistryFile = &RegistryFile;
	Interfaces.Shell = &Shell;
	FQVEngine::Install(&Interfaces);
}

FStandaloneEngine::~FStandaloneEngine()
{
	Http.Stop(); // whoever waits for an answer may still ask the others
	FQVEngine::Install(nullptr);
}

QVFormats::FStatus FStandaloneEngine::OpenMap(std::string_view PackageName, const FOpenMapOptions& Options)
{
	Editor.SetOpenWorld(nullptr);
	Classes.Forget(); // the open world's were among them
	auto World = FWorld::Open({AssetRegistry, Packages, Classes}, PackageName, Options);
	if (!World)
	{
		return World.Error();
	}
	const auto ReadAgain = [this, Name = std::string(PackageName), Options]() -> QVFormats::TResult<FWorldReading>
	{
		auto Own = std::make_unique<FClasses>(Packages, Plugins);
		auto Again = FWorld::Open({AssetRegistry, Packages, *Own}, Name, Options);
		return Again ? FWorldReading{std::move(Own), std::move(*Again)}
					 : QVFormats::TResult<FWorldReading>(Again.Error());
	};
	Editor.SetOpenWorld(std::move(*World), ReadAgain);
	return QVFormats::Success();
}
} // namespace QVStandalone
