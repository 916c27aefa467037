// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapEnvironmentChecks.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Diagnostics/QVMapPackageFiles.h"
#include "Engine/QVClock.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVPlugins.h"
#include "Workspace/QVMapConfig.h"
#include "Workspace/QVMapPaths.h"

namespace
{
constexpr std::string_view Bridge = "QUARVEL";
constexpr std::string_view ContentRoots[] = {"/QUARVEL", "/Game/QUARVEL"};
constexpr std::string_view SteamAppId = "7188263";
constexpr std::string_view DemoAppId = "7301146";

FQVText Shown(std::string_view Text)
{
	return FQVText::FromString(Text);
}

template<class... Args>
FQVText Text(std::string_view Key, std::string_view Source, Args&&... Arguments)
{
	return FQVDiagnosticModel::Text(Key, Source, std::forward<Args>(Arguments)...);
}

/** One check: its id and title, whatever the outcome. */
struct FCheck
{
	std::string_view Id;
	std::string_view TitleKey;
	std::string_view Title;

	FQVDiagnosticFinding Pass(FQVText Detail) const
	{
		return FQVDiagnosticModel::MakePassFinding(
			EQVDiagCategory::Environment, Id, Text(TitleKey, Title), std::move(Detail));
	}
	FQVDiagnosticFinding Make(EQVDiagSeverity Severity, FQVText Detail, FQVText Remedy = {}) const
	{
		return FQVDiagnosticModel::MakeFinding(
			EQVDiagCategory::Environment, Severity, Id, Text(TitleKey, Title), std::move(Detail), std::move(Remedy));
	}
	FQVDiagnosticFinding Error(FQVText Detail, FQVText Remedy) const
	{
		return Make(EQVDiagSeverity::Error, std::move(Detail), std::move(Remedy));
	}
};

FQVDiagnosticFinding WithFolder(FQVDiagnosticFinding Finding, FQVText Label, std::string_view Folder)
{
	Finding.ActionLabel = std::move(Label);
	Finding.ActionKind = EQVDiagAction::OpenFolder;
	Finding.ActionPath = Folder;
	return Finding;
}

FQVDiagnosticFinding WithCallback(FQVDiagnosticFinding Finding, FQVText Label, std::function<bool()> Callback)
{
	Finding.ActionLabel = std::move(Label);
	Finding.ActionKind = EQVDiagAction::Custom;
	Finding.ActionCallback = std::move(Callback);
	return Finding;
}

FQVText OpenFolderLabel()
{
	return Text("OpenFolder", "Open Folder");
}

FQVDiagnosticFinding CheckUnrealPak(const FQVDiagnosticOptions&)
{
	constexpr FCheck Check{"Env.UnrealPak", "EnvUnrealPakTitle", "UnrealPak available"};
	const std::string Path = FQVMapPaths::GetUnrealPakPath();
	if (FQVEngine::Get().Files->FileExists(Path))
	{
		return Check.Pass(Shown(Path));
	}
	return WithFolder(
		Check.Error(Text("EnvUnrealPakMissing", "Not found at {0}", Path),
			Text("EnvUnrealPakRemedy", "Your engine install looks incomplete - packing cannot run without it.")),
		OpenFolderLabel(), FQVPath::GetPath(Path));
}

FQVDiagnosticFinding CheckEditorCmd(const FQVDiagnosticOptions&)
{
	constexpr FCheck Check{"Env.EditorCmd", "EnvEditorCmdTitle", "Cook commandlet available"};
	const std::string Path = FQVMapPaths::GetEditorCmdPath();
	if (FQVEngine::Get().Files->FileExists(Path))
	{
		return Check.Pass(Shown(Path));
	}
	return Check.Error(Text("EnvEditorCmdMissing", "Not found at {0}", Path),
		Text("EnvEditorCmdRemedy", "Your engine install looks incomplete - cooking cannot run without it."));
}

FQVDiagnosticFinding CheckBaseRelease(const FQVDiagnosticOptions& Options)
{
	constexpr FCheck Check{"Env.BaseRelease", "EnvBaseReleaseTitle", "Base release usable"};
	FQVBaseReleaseStatus Status;
	if (FQVMapPaths::CheckBaseRelease(Status))
	{
		return Check.Pass(Text("EnvBaseReleasePass", "Built {0} - {1} packages ({2}).",
			FQVEngine::Get().Clock->ToLocalTime(Status.RegistryTimestamp).ToDisplayText(), Status.PackageCount,
			FQVDiagnosticModel::FormatBytes(Status.RegistrySizeBytes)));
	}
	FQVText Label = Status.bReleaseDirExists ? Text("Rebuild", "Rebuild") : Text("BuildNow", "Build Now");
	return WithCallback(Check.Error(Shown(Status.ErrorMessage),
							Text("EnvBaseReleaseRemedy", "Run Build Base Release from the QVMap toolbar menu.")),
		std::move(Label),
		[Build = Options.Actions.BuildBaseRelease]
		{
			if (Build)
			{
				Build();
			}
			return false; // it takes its time: a run at once would find what this one found
		});
}

FQVDiagnosticFinding WithExecutablePicker(FQVDiagnosticFinding Finding)
{
	Finding.Remedy = Text("EnvLaunchRemedy",
		"Set an executable to launch a local build instead of the Steam one, or turn on Use Demo App ID to boot the "
		"demo.");
	return WithCallback(
		std::move(Finding), Text("SetExe", "Set Executable..."), [] { return !FQVMapConfig::PickGameExe().empty(); });
}

FQVDiagnosticFinding CheckGameLaunch(const FQVDiagnosticOptions&)
{
	constexpr FCheck Check{"Env.GameLaunch", "EnvLaunchTitle", "Game launch configured"};
	if (FQVMapConfig::GetUseDemoAppId())
	{
		return Check.Make(
			EQVDiagSeverity::Info, Text("EnvLaunchDemo", "Launching the demo via steam://run/{0}.", DemoAppId));
	}
	const std::string Path = FQVMapConfig::GetGameExePath();
	if (Path.empty())
	{
		return WithExecutablePicker(Check.Make(
			EQVDiagSeverity::Info, Text("EnvLaunchSteam", "Launching the game via steam://run/{0}.", SteamAppId)));
	}
	if (FQVEngine::Get().Files->FileExists(Path))
	{
		return Check.Pass(Shown(Path));
	}
	return WithExecutablePicker(Check.Make(
		EQVDiagSeverity::Warning, Text("EnvLaunchMissing", "Configured executable no longer exists: {0}", Path)));
}

FQVDiagnosticFinding CheckBaseGameContent(const FQVDiagnosticOptions&)
{
	constexpr FCheck Check{"Env.Template", "EnvTemplateTitle", "Base game content present"};
	const IQVAssetRegistry& Registry = *FQVEngine::Get().AssetRegistry;
	std::size_t Count = 0;
	std::vector<std::string> Roots;
	std::vector<FQVAssetData> Assets;
	for (const std::string_view Root : ContentRoots)
	{
		Registry.GetAssets({std::string(Root), {}}, Assets);
		if (!Assets.empty())
		{
			Count += Assets.size();
			Roots.push_back(std::string(Root) + "/");
		}
	}
	if (Count > 0)
	{
		return Check.Pass(Text("EnvTemplatePass", "{0} asset(s) under {1}", Count, FQVString::Join(Roots, ", ")));
	}
	if (Registry.IsLoadingAssets())
	{
		return Check.Make(EQVDiagSeverity::Info,
			Text("EnvTemplateScanning", "Still scanning - refresh once the asset registry finishes."));
	}
	return Check.Make(EQVDiagSeverity::Warning,
		Text("EnvTemplateFail", "No content found under {0}/ or {1}/.", ContentRoots[0], ContentRoots[1]),
		Text("EnvTemplateRemedy",
			"Base game content ships with the {0} plugin in Plugins/. Without it, anything your map references from "
			"the base game will be treated as untrusted.",
			Bridge));
}

FQVDiagnosticFinding CheckOutputFolder(const FQVDiagnosticOptions&)
{
	constexpr FCheck Check{"Env.OutputWritable", "EnvOutputTitle", "Output folder writable"};
	const std::string Path = FQVMapPaths::GetOutputDir();
	if (FQVMapPaths::EnsureDirectory(Path))
	{
		return Check.Pass(Shown(Path));
	}
	return WithFolder(
		Check.Error(Text("EnvOutputFail", "Could not create {0}", Path),
			Text("EnvOutputRemedy", "Check the folder is not read-only and is not locked by cloud sync.")),
		OpenFolderLabel(), FQVMapPaths::GetWorkDir());
}

FQVDiagnosticFinding CheckBridge(const FQVDiagnosticOptions&)
{
	constexpr FCheck Check{"Env.Bridge", "EnvBridgeTitle", "Game content available"};
	const std::optional<FQVPluginInfo> Plugin = FQVEngine::Get().Plugins->FindPlugin(Bridge);
	if (Plugin && Plugin->bEnabled)
	{
		return Check.Pass(Text("EnvBridgePass", "{0} plugin mounted - game actors are available to place.", Bridge));
	}
	const std::string Plugins = FQVMapPaths::GetPluginsDir();
	const bool bPresent = FQVEngine::Get().Files->DirectoryExists(FQVPath::Combine(Plugins, Bridge));
	FQVText Detail =
		bPresent ? Text("EnvBridgeNotLoaded", "The {0} plugin is present but the editor has not loaded it.", Bridge)
				 : Text("EnvBridgeMissing", "The {0} plugin is not installed in Plugins/.", Bridge);
	return WithFolder(
		Check.Error(std::move(Detail),
			Text("EnvBridgeRemedy",
				"Without it you cannot place any of the game's actors, and a map built now will be missing them. "
				"Install {0} into Plugins/ and restart the editor.",
				Bridge)),
		Text("OpenPluginsFolder", "Open Plugins"), Plugins);
}

FQVDiagnosticFinding CheckMapTemplate(const FQVDiagnosticOptions&)
{
	constexpr FCheck Check{"Env.MapTemplate", "EnvTemplateMapTitle", "New map template"};
	const std::string Package = FQVMapConfig::GetMapTemplatePath();
	if (Package.empty())
	{
		return Check.Make(EQVDiagSeverity::Info, Text("EnvTemplateMapDisabled", "Disabled - new maps start empty."));
	}
	if (!FQVMapPackageFiles::Find(Package).empty())
	{
		return Check.Pass(Shown(Package));
	}
	return Check.Make(EQVDiagSeverity::Warning, Text("EnvTemplateMapMissing", "Not found: {0}", Package),
		Text("EnvTemplateMapRemedy",
			"New maps will start empty instead of pre-set-up. Update the bridge plugin, or set map_template_path in "
			"Saved/QVPak/config.json."));
}

FQVDiagnosticFinding RegistryStillScans()
{
	constexpr FCheck Check{"Env.AssetRegistryReady", "EnvRegistryTitle", "Asset registry ready"};
	return Check.Make(EQVDiagSeverity::Info,
		Text("EnvRegistryScanning",
			"The asset registry is still scanning, so reference results below may be incomplete."),
		Text("EnvRegistryRemedy", "Wait for the scan to finish and refresh."));
}
} // namespace

void FQVMapEnvironmentChecks::CheckEnvironment(const FQVDiagnosticOptions& Options, FQVDiagnosticFindings& Findings)
{
	for (const auto Check : {CheckUnrealPak, CheckEditorCmd, CheckBaseRelease, CheckGameLaunch, CheckBaseGameContent,
			 CheckOutputFolder, CheckBridge, CheckMapTemplate})
	{
		Findings.push_back(Check(Options));
	}
	if (FQVEngine::Get().AssetRegistry->IsLoadingAssets())
	{
		Findings.push_back(RegistryStillScans());
	}
}
