// SPDX-License-Identifier: MIT
#pragma once

class IQVAssetRegistry;
class IQVAssetTools;
class IQVClasses;
class IQVClock;
class IQVDialogs;
class IQVEditor;
class IQVFiles;
class IQVGameThread;
class IQVHttp;
class IQVImages;
class IQVJsonReader;
class IQVPackages;
class IQVPlugins;
class IQVProcesses;
class IQVProject;
class IQVRegistryFile;
class IQVShell;
class IQVSlowTasks;

/**
 * The engine that the toolkit runs in. Whoever starts the program fills one and installs it once, before any other
 * thread runs; the toolkit's static classes reach for it. Owns nothing: what it points to outlives it.
 */
struct FQVEngine
{
	IQVAssetRegistry* AssetRegistry = nullptr;
	IQVAssetTools* AssetTools = nullptr;
	IQVClasses* Classes = nullptr;
	IQVClock* Clock = nullptr;
	IQVDialogs* Dialogs = nullptr;
	IQVEditor* Editor = nullptr;
	IQVFiles* Files = nullptr;
	IQVGameThread* GameThread = nullptr;
	IQVHttp* Http = nullptr;
	IQVImages* Images = nullptr;
	IQVJsonReader* JsonReader = nullptr;
	IQVPackages* Packages = nullptr;
	IQVPlugins* Plugins = nullptr;
	IQVProcesses* Processes = nullptr;
	IQVProject* Project = nullptr;
	IQVRegistryFile* RegistryFile = nullptr;
	IQVShell* Shell = nullptr;
	/** May stay null: then nobody watches slow tasks, and nobody cancels them. */
	IQVSlowTasks* SlowTasks = nullptr;

	static const FQVEngine& Get();
	/** Null uninstalls. The engine is not copied. */
	static void Install(const FQVEngine* Engine);
};
