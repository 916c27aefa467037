// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVEngine.h"
#include "Standalone/Engine/AssetRegistry.h"
#include "Standalone/Engine/AssetTools.h"
#include "Standalone/Engine/Classes.h"
#include "Standalone/Engine/Clock.h"
#include "Standalone/Engine/Editor.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/GameThread.h"
#include "Standalone/Engine/Http.h"
#include "Standalone/Engine/Images.h"
#include "Standalone/Engine/JsonReader.h"
#include "Standalone/Engine/LevelEditor.h"
#include "Standalone/Engine/NoDialogs.h"
#include "Standalone/Engine/Packages.h"
#include "Standalone/Engine/Plugins.h"
#include "Standalone/Engine/Processes.h"
#include "Standalone/Engine/Project.h"
#include "Standalone/Engine/RegistryFile.h"
#include "Standalone/Engine/Shell.h"

namespace QVStandalone
{
/**
 * The engine over the files of one mapping project, with no Unreal process running. Made on the thread that is to be
 * the game thread; installed for the toolkit as long as it lives. One at a time.
 */
class FStandaloneEngine
{
public:
	/** Full paths of the `.uproject` and of the engine's folder. */
	FStandaloneEngine(const std::string& ProjectFile, const std::string& EngineDir);
	FStandaloneEngine(const FStandaloneEngine&) = delete;
	FStandaloneEngine& operator=(const FStandaloneEngine&) = delete;
	~FStandaloneEngine();

	/** No scan has been started: whoever asks it starts one. */
	FAssetRegistry& GetAssetRegistry() { return AssetRegistry; }
	FAssetTools& GetAssetTools() { return AssetTools; }
	FEditor& GetEditor() { return Editor; }
	FGameThread& GetGameThread() { return GameThread; }
	FPackages& GetPackages() { return Packages; }
	const FPlugins& GetPlugins() const { return Plugins; }

	/**
	 * Opens a map of a scanned project as the editor's world, in place of what was open; on failure nothing is open.
	 * The error says which file cannot be read, and why.
	 */
	QVFormats::FStatus OpenMap(std::string_view PackageName, const FOpenMapOptions& Options = {});

	/** The interfaces, to be exchanged one by one: a test puts its own in front of ours. */
	FQVEngine Interfaces;

private:
	FProject Project;
	FPlugins Plugins;
	FPackages Packages;
	FClasses Classes;
	FClock Clock;
	FNoDialogs Dialogs;
	FLevelEditor LevelEditor;
	FEditor Editor;
	FFiles Files;
	FImages Images;
	FJsonReader JsonReader;
	FProcesses Processes;
	FRegistryFile RegistryFile;
	FShell Shell;
	FAssetRegistry AssetRegistry; // keeps the game thread for later
	FAssetTools AssetTools;
	FHttp Http{GameThread}; // keeps it for later, too
	FGameThread GameThread; // last: its threads use all the others
};
} // namespace QVStandalone
