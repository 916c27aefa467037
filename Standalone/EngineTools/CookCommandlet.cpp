// SPDX-License-Identifier: MIT
#include "Standalone/EngineTools/CookCommandlet.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Standalone/Engine/AssetRegistry.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/GameThread.h"
#include "Standalone/Engine/OsFile.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/Packages.h"
#include "Standalone/Engine/Project.h"
#include "Standalone/EngineTools/CookReach.h"
#include "Standalone/EngineTools/PackageLayout.h"
#include "Standalone/Formats/Base/Disk.h"

#include <algorithm>
#include <set>
#include <span>

namespace QVEngineTools
{
using namespace QVStandalone;
using QVFormats::TResult;

namespace
{
std::vector<std::string> SplitMaps(std::string_view Text)
{
	std::vector<std::string> Maps;
	while (!Text.empty())
	{
		const std::size_t Plus = std::min(Text.find('+'), Text.size());
		Maps.emplace_back(Text.substr(0, Plus));
		Text.remove_prefix(std::min(Plus + 1, Text.size()));
	}
	return Maps;
}

/** The value of `-Key=Value`, if the argument is that. */
bool TakeValue(std::string_view Argument, std::string_view Key, std::string& Out)
{
	if (!FQVString::StartsWithIgnoreCase(Argument, QVPrintf("-%s=", Key)))
	{
		return false;
	}
	Out = Argument.substr(Key.size() + 2);
	return true;
}

/** Whole or not at all: a release that was good stays so when a new one cannot be written. */
void WriteOrComplain(const std::string& Path, std::span<const std::byte> Bytes, FToolLog& Log)
{
	std::error_code Error;
	const std::filesystem::path Target = ToOsPath(Path);
	QVFormats::FDisk::MakeFolders(Target.parent_path(), Error);
	Error = ReplaceFile(Target, {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	if (Error)
	{
		Log.Error("LogCook", "%s could not be written: %s", Path, Error.message());
	}
}

/** One run of the commandlet, for either kind of cook. */
class FCookRun
{
public:
	FCookRun(const FCookCommand& InCommand, const std::string& EngineDir, FToolLog& InLog)
		: Command(InCommand)
		, Log(InLog)
		, Project(Command.ProjectFile, EngineDir)
		, Plugins(Command.ProjectFile, EngineDir)
		, Packages(Project.ProjectDir(), EngineDir, Plugins)
		, Registry(Project.ProjectDir(), Packages, GameThread)
		, Layout(Log, Command.bIterate ? ECookMode::Iterate : ECookMode::Always)
	{
	}

	void Run()
	{
		if (Command.DlcName.empty())
		{
			CookRelease();
		}
		else
		{
			CookDlc();
		}
	}

private:
	const FCookCommand& Command;
	FToolLog& Log;
	FProject Project;
	FPlugins Plugins;
	FPackages Packages;
	FGameThread GameThread;
	FAssetRegistry Registry;
	FPackageLayout Layout;
	FQVNameSet ReleasePackages;

	std::string ProjectName() const { return std::string(FQVPath::GetBaseFilename(Command.ProjectFile)); }

	std::string ReleaseDir(const std::string& Version) const
	{
		return FQVPath::Combine(Project.ProjectDir(), "Releases", Version, "Windows");
	}

	/** Both registries into each folder: the game's, and below `Metadata` the one for tools. */
	void WriteRegistries(const std::vector<std::string>& Folders)
	{
		QVFormats::FAssetRegistryState State = Layout.FinishRegistry();
		Log.Display("LogCook", "Saving asset registry of %d packages", State.Packages.size());
		const auto Development = QVFormats::WriteAssetRegistry(State);
		State.bFilterEditorOnly = true;
		const auto Runtime = QVFormats::WriteAssetRegistry(State);
		if (!Runtime || !Development)
		{
			Log.Error("LogCook", "the asset registry could not be made: %s",
				(Runtime ? Development : Runtime).Error().Message);
			return;
		}
		for (const std::string& Folder : Folders)
		{
			WriteOrComplain(FQVPath::Combine(Folder, "AssetRegistry.bin"), *Runtime, Log);
			WriteOrComplain(
				FQVPath::Combine(Folder, "Metadata", Project.DevelopmentAssetRegistryFilename()), *Development, Log);
		}
	}

	void WriteShaderArchive(const std::string& CookedDir, const std::string& Library)
	{
		const std::string Name = QVPrintf("ShaderArchive-%s-PCD3D_SM6-PCD3D_SM6.ushaderbytecode", Library);
		constexpr std::string_view NoShaders = "QVMap stand-in: no shaders were compiled\n";
		WriteOrComplain(FQVPath::Combine(CookedDir, Name), std::as_bytes(std::span(NoShaders)), Log);
	}

	/** The project's own content and that of its enabled content plugins. */
	void CookRelease()
	{
		const std::string Root = FQVPath::Combine(Project.ProjectDir(), "Saved/Cooked/Windows", ProjectName());
		Layout.AddFolder(
			{"/Game/", FQVPath::Combine(Project.ProjectDir(), "Content"), FQVPath::Combine(Root, "Content")});
		const std::string ProjectPlugins = FQVPath::Combine(Project.ProjectDir(), "Plugins/");
		for (const FQVPluginInfo& Plugin : Plugins.GetDiscovered())
		{
			if (Plugin.bEnabled && Plugin.bCanContainContent && Plugin.BaseDir.starts_with(ProjectPlugins))
			{
				Log.Display("LogCook", "Mounting content of plugin %s", Plugin.Name);
				Layout.AddFolder({"/" + Plugin.Name + "/", FQVPath::Combine(Plugin.BaseDir, "Content"),
					FQVPath::Combine(Root, "Plugins", Plugin.Name, "Content")});
			}
		}
		Layout.Run();
		if (Log.Errors() > 0)
		{
			return; // a registry of half the packages would pass for a release
		}
		WriteShaderArchive(FQVPath::Combine(Root, "Content"), ProjectName());
		WriteRegistries({Root, ReleaseDir(Command.CreateRelease)});
	}

	void CookDlc()
	{
		if (!CheckBaseRelease() || !CheckMaps())
		{
			return;
		}
		const std::optional<FQVPluginInfo> Plugin = Plugins.FindPlugin(Command.DlcName);
		if (!Plugin)
		{
			Log.Error("LogCook", "plugin %s was not found below the project", Command.DlcName);
			return;
		}
		const std::string Root = FQVPath::Combine(Plugin->BaseDir, "Saved/Cooked/Windows", ProjectName());
		const std::string PluginRoot = FQVPath::Combine(Root, "Plugins", Plugin->Name);
		const std::string CookedDir = FQVPath::Combine(PluginRoot, "Content");
		if (!AddReached(Root))
		{
			return;
		}
		Layout.Run();
		WriteShaderArchive(CookedDir, Plugin->Name);
		WriteRegistries({PluginRoot});
	}

	/** What the maps reach and the release does not hold, each below the folder that its root is cooked to. */
	bool AddReached(const std::string& Root)
	{
		Registry.StartScan();
		if (!Registry.FinishScan())
		{
			Log.Error("LogCook", "interrupted while the project was scanned");
			return false;
		}
		std::vector<FQVName> Maps;
		std::transform(Command.Maps.begin(), Command.Maps.end(), std::back_inserter(Maps),
			[](const std::string& Map) { return FQVName(Map); });
		std::set<std::string> Files;
		for (const FQVName Package : FindReached(Registry, Maps, ReleasePackages))
		{
			const std::string File = Packages.FindPackageFile(Package.ToView());
			if (File.empty())
			{
				Log.Warning("LogCook", "%s is referred to, but there is no such package", Package.ToView());
				continue;
			}
			std::string Name; // as its file spells it
			Packages.TryConvertFilenameToLongPackageName(File, Name);
			Files.insert(File);
			Layout.AddPackage(File, Name, CookedStem(Root, Name));
		}
		for (const FUnreadablePackage& Unreadable : Registry.GetUnreadable())
		{
			if (!Files.contains(Unreadable.File)) // those that are reached are errors when they are cooked
			{
				Log.Warning("LogCook", "%s %s", Unreadable.File, Unreadable.Reason);
			}
		}
		return true;
	}

	std::string CookedStem(const std::string& Root, const std::string& Package) const
	{
		const std::size_t End = Package.find('/', 1);
		const std::string Mount = Package.substr(1, End - 1);
		const std::string Below = Package.substr(End + 1);
		if (FQVString::EqualsIgnoreCase(Mount, "Game"))
		{
			return FQVPath::Combine(Root, "Content", Below);
		}
		if (FQVString::EqualsIgnoreCase(Mount, "Engine"))
		{
			return FQVPath::Combine(FQVPath::GetPath(Root), "Engine/Content", Below);
		}
		const std::optional<FQVPluginInfo> Plugin = Plugins.FindPlugin(Mount);
		return FQVPath::Combine(Root, "Plugins", Plugin ? Plugin->Name : Mount, "Content", Below);
	}

	bool CheckBaseRelease()
	{
		const std::string RegistryPath = FQVPath::Combine(
			ReleaseDir(Command.BasedOnRelease), "Metadata", Project.DevelopmentAssetRegistryFilename());
		TResult<FQVNameSet> Found = ReadReleasePackages(ToOsPath(RegistryPath));
		if (!Found)
		{
			Log.Error("LogCook", "release %s cannot be based on: %s is missing or unreadable", Command.BasedOnRelease,
				RegistryPath);
			return false;
		}
		ReleasePackages = std::move(*Found);
		Log.Display("LogCook", "Based on release %s with %d packages", Command.BasedOnRelease, ReleasePackages.Num());
		return true;
	}

	bool CheckMaps()
	{
		for (const std::string& Map : Command.Maps)
		{
			std::string File;
			const bool bServed =
				Packages.TryConvertLongPackageNameToFilename(Map, File, IQVPackages::MapPackageExtension);
			if (!bServed || !FFiles().FileExists(File))
			{
				Log.Error("LogCook", "map %s was not found%s", Map, bServed ? " at " + File : std::string());
			}
		}
		return Log.Errors() == 0;
	}
};
} // namespace

FCookCommand ParseCookCommand(const std::vector<std::string>& Arguments)
{
	FCookCommand Command;
	std::string Commandlet;
	std::string Maps;
	for (const std::string& Argument : Arguments)
	{
		if (!Argument.starts_with('-') && Command.ProjectFile.empty())
		{
			Command.ProjectFile = FQVPath::NormalizeFilename(Argument);
		}
		else if (!TakeValue(Argument, "run", Commandlet) && !TakeValue(Argument, "map", Maps) &&
				 !TakeValue(Argument, "createreleaseversion", Command.CreateRelease) &&
				 !TakeValue(Argument, "basedonreleaseversion", Command.BasedOnRelease) &&
				 !TakeValue(Argument, "dlcname", Command.DlcName))
		{
			Command.bIterate = Command.bIterate || FQVString::EqualsIgnoreCase(Argument, "-iterate");
		}
	}
	Command.Maps = SplitMaps(Maps);
	if (!FQVString::EqualsIgnoreCase(Commandlet, "cook"))
	{
		Command.Error = QVPrintf("commandlet '%s' is not one of the stand-in's: it knows -run=cook only", Commandlet);
	}
	else if (!FFiles().FileExists(Command.ProjectFile))
	{
		Command.Error = QVPrintf("project file '%s' was not found", Command.ProjectFile);
	}
	else if (Command.CreateRelease.empty() == Command.DlcName.empty())
	{
		Command.Error = "expected either -createreleaseversion=<version> or -dlcname=<plugin>";
	}
	else if (!Command.DlcName.empty() && Command.BasedOnRelease.empty())
	{
		Command.Error = "-dlcname needs -basedonreleaseversion=<version>";
	}
	return Command;
}

int RunCook(const FCookCommand& Command, const std::string& EngineDir, FToolLog& Log)
{
	if (Command.Error.empty())
	{
		FCookRun(Command, EngineDir, Log).Run();
	}
	else
	{
		Log.Error("LogInit", "%s", Command.Error);
	}
	Log.Display("LogInit", "%s - %d error(s), %d warning(s)", Log.Errors() == 0 ? "Success" : "Failure", Log.Errors(),
		Log.Warnings());
	return Log.Errors() == 0 ? 0 : 1;
}
} // namespace QVEngineTools
