// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapContentChecks.h"

#include "Content/QVMapSecurityScanner.h"
#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Diagnostics/QVMapFindingMaker.h"
#include "Diagnostics/QVMapRequiredActors.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVPlugins.h"
#include "Engine/QVWorld.h"
#include "Export/QVMapCooker.h"
#include "Export/QVMapPipeline.h"
#include "Workspace/QVMapScanner.h"

namespace
{
using enum EQVDiagSeverity;
constexpr FQVFindingMaker Group(EQVDiagCategory::ModContent);

FQVDiagnosticFinding NoMap()
{
	return Group.Make(Warning, "Content.MapInPlugin", Group.Text("ContentNoModTitle", "Map selected"),
		Group.Text("ContentNoModDetail", "No map is selected and none is open."),
		Group.Text("ContentNoModRemedy", "Pick a map above, or open one."));
}

FQVDiagnosticFinding CheckName(const std::string& Mod)
{
	constexpr std::string_view Id = "Content.PluginName";
	FQVText Title = Group.Text("ContentNameTitle", "Map name valid");
	std::string Reason;
	if (FQVMapCooker::ValidatePluginName(Mod, Reason))
	{
		return Group.Pass(Id, std::move(Title), Group.Shown(Mod));
	}
	return Group.Make(Error, Id, std::move(Title), Group.Shown(Reason),
		Group.Text("ContentNameRemedy", "Rename the plugin folder and its .uplugin to a valid name."));
}

FQVDiagnosticFinding CheckMounted(const std::string& Mod)
{
	constexpr std::string_view Id = "Content.CanContainContent";
	FQVText Title = Group.Text("ContentMountTitle", "Map folder set up correctly");
	const std::optional<FQVPluginInfo> Plugin = FQVEngine::Get().Plugins->FindPlugin(Mod);
	if (!Plugin)
	{
		return Group.Make(Error, Id, std::move(Title),
			Group.Text("ContentNotMounted", "The editor has not loaded a plugin called '{0}'.", Mod),
			Group.Text("ContentNotMountedRemedy",
				"Its .uplugin may be missing, disabled, or renamed to .uplugin.disabled by an interrupted base "
				"release build. Restart the editor after fixing it."));
	}
	if (!Plugin->bCanContainContent)
	{
		return Group.Make(Error, Id, std::move(Title),
			Group.Text(
				"ContentCannotContain", "'{0}' has CanContainContent set to false, so its assets never mount.", Mod),
			Group.Text("ContentCannotContainRemedy",
				"Set \"CanContainContent\": true in the .uplugin and restart the editor."));
	}
	return Group.Pass(Id, std::move(Title), Group.Shown(QVPrintf("/%s/", Plugin->Name)));
}

FQVDiagnosticFinding CheckSaved(const std::string& Mod, const IQVWorld& World)
{
	constexpr std::string_view Id = "Content.MapSaved";
	FQVText Title = Group.Text("ContentSavedTitle", "Open map saved");
	const std::string Package = World.GetPackageName();
	if (World.IsTempPackage())
	{
		return Group.Make(Error, Id, std::move(Title),
			Group.Text("ContentNeverSaved", "The open map has never been saved."),
			Group.Text(
				"ContentNeverSavedRemedy", "Save it into Plugins/{0}/Content/ - only files on disk get cooked.", Mod));
	}
	if (!World.IsPackageDirty())
	{
		return Group.Pass(Id, std::move(Title), Group.Shown(Package));
	}
	FQVDiagnosticFinding Finding =
		Group.Make(Warning, Id, std::move(Title), Group.Text("ContentDirty", "'{0}' has unsaved changes.", Package),
			Group.Text("ContentDirtyRemedy", "The cook reads from disk, so unsaved edits will not be in the pak."));
	Finding.ActionKind = EQVDiagAction::Custom;
	Finding.ActionLabel = Group.Text("SaveNow", "Save");
	Finding.ActionCallback = [] { return FQVEngine::Get().Editor->SaveDirtyPackages(); };
	return Finding;
}

/** What kinds of levels the plugin holds, by what the registry knows of them. */
void CheckLevels(const std::string& Mod, FQVDiagnosticFindings& Findings)
{
	const IQVAssetRegistry& Registry = *FQVEngine::Get().AssetRegistry;
	std::vector<FQVAssetData> Worlds;
	Registry.GetAssets({"/" + Mod, FQVName(FQVAssetData::WorldClass)}, Worlds);
	std::vector<std::string> Partitioned;
	std::vector<std::string> External;
	for (const FQVAssetData& World : Worlds)
	{
		std::string Value;
		if (Registry.GetTagValue(World, "LevelIsPartitioned", Value) && Value == "1")
		{
			Partitioned.push_back(World.AssetName.ToString());
		}
		if (Registry.GetTagValue(World, "LevelIsUsingExternalActors", Value) && Value == "1")
		{
			External.push_back(World.AssetName.ToString());
		}
	}
	FQVText Title = Group.Text("ContentWPTitle", "No World Partition maps");
	constexpr std::string_view Id = "Content.WorldPartition";
	Findings.push_back(
		Partitioned.empty()
			? Group.Pass(Id, std::move(Title), Group.Text("ContentWPPass", "{0} map(s) checked.", Worlds.size()))
			: Group.Make(Error, Id, std::move(Title),
				  Group.Text("ContentWPFail", "World Partition map(s): {0}", FQVString::Join(Partitioned, ", ")),
				  Group.Text("ContentWPRemedy",
					  "PakLoader cannot load World Partition maps. Recreate these as standard levels.")));
	if (!External.empty())
	{
		Findings.push_back(
			Group.Make(Warning, "Content.ExternalActors", Group.Text("ContentOFPATitle", "No external actors"),
				Group.Text("ContentOFPAFail", "Map(s) using One File Per Actor: {0}", FQVString::Join(External, ", ")),
				Group.Text("ContentOFPARemedy",
					"External actors live under __ExternalActors__ and do not survive the pak mount. Turn off One File "
					"Per Actor for these levels.")));
	}
}

/** One child for each map; what could not be resolved goes to OutFailed. */
FQVDiagnosticFinding ListPaths(
	const std::string& Mod, const std::vector<FQVMapInfo>& Maps, std::vector<std::string>& OutFailed)
{
	FQVDiagnosticFinding Table =
		Group.Make(Info, "Content.PathConsistency", Group.Text("ContentPathsTitle", "Map paths"),
			Group.Text("ContentPathsDetail", "Cook path, manifest path and pak mount point for each map."));
	for (const FQVMapInfo& Map : Maps)
	{
		std::string CookPath;
		std::vector<std::string> Tried;
		if (!FQVMapPipeline::ResolveCookPath(Map, CookPath, &Tried))
		{
			CookPath.clear();
			OutFailed.push_back(QVPrintf("%s (tried %s)", Map.Name, FQVString::Join(Tried, ", ")));
		}
		Table.Children.push_back(Group.Make(Info, Map.Name, Group.Shown(Map.Name),
			Group.Text("ContentPathRow", "cook: {0}\nmanifest: {1}\nmounts at: /{2}/{3}", CookPath, Map.GamePath, Mod,
				FQVPath::GetBaseFilename(Map.RelativePath))));
	}
	return Table;
}

void CheckCookPaths(const std::string& Mod, FQVDiagnosticFindings& Findings)
{
	constexpr std::string_view Id = "Content.CookPathResolves";
	FQVText Title = Group.Text("ContentCookPathTitle", "Maps resolvable for cooking");
	const FQVScanResult Scan = FQVMapScanner::ScanMods();
	const FQVModInfo* Found = Scan.Find(Mod);
	if (Found == nullptr || Found->Maps.empty())
	{
		Findings.push_back(Group.Make(Error, Id, std::move(Title),
			Group.Text("ContentNoMaps", "No .umap files found in Plugins/{0}/Content/.", Mod),
			Group.Text("ContentNoMapsRemedy", "There is nothing to pack until a map is saved in this folder.")));
		return;
	}
	std::vector<std::string> Failed;
	Findings.push_back(ListPaths(Mod, Found->Maps, Failed));
	Findings.push_back(
		Failed.empty()
			? Group.Pass(
				  Id, std::move(Title), Group.Text("ContentCookPathPass", "{0} map(s) resolve.", Found->Maps.size()))
			: Group.Make(Error, Id, std::move(Title),
				  Group.Text("ContentCookPathFail", "Could not resolve: {0}", FQVString::Join(Failed, "; ")),
				  Group.Text("ContentCookPathRemedy",
					  "The export will refuse to run. The map may have been moved or deleted since it was scanned.")));
}

void CheckRequiredActors(const IQVWorld& World, FQVDiagnosticFindings& Findings)
{
	const FQVRequiredActorsReport Report = FQVMapRequiredActors::EvaluateRequiredActors(&World);
	for (const FQVRequiredActorRow& Row : Report.Rows)
	{
		Findings.push_back(
			Group.Make(Row.Severity, QVPrintf("Content.%s", Row.Id.ToView()), Row.Title, Row.Detail, Row.Remedy));
	}
	if (!Report.UnloadedSublevels.empty())
	{
		Findings.push_back(Group.Make(Info, "Content.RequiredActorsSublevels",
			Group.Text("RequiredSublevelsTitle", "Sublevels not counted"),
			Group.Text("RequiredSublevelsDetail", "Not loaded: {0}", FQVString::Join(Report.UnloadedSublevels, ", ")),
			Group.Text("RequiredSublevelsRemedy",
				"The rows above only counted actors in loaded levels. Load these and refresh before trusting "
				"them.")));
	}
	if (!Report.Unresolved.empty())
	{
		Findings.push_back(Group.Make(Info, "Content.RequiredActorsUnresolved",
			Group.Text("RequiredUnresolvedTitle", "Some map checks did not run"),
			Group.Text("RequiredUnresolvedDetail", "Not present in this editor: {0}",
				FQVString::Join(Report.Unresolved, ", ")),
			Group.Text("RequiredUnresolvedRemedy",
				"Your {0} plugin is older than these checks. Update it, or these conditions go unchecked.",
				"QUARVEL")));
	}
}

FQVDiagnosticFinding CheckSecurity(const std::string& Mod, const IQVWorld* World)
{
	constexpr std::string_view Id = "Content.Security";
	FQVText Title = Group.Text("ContentSecurityTitle", "Content allowed in a packed map");
	const FQVSecurityScanResult Scan = FQVMapSecurityScanner::ScanForMapEligibility(Mod, World, {});
	if (Scan.bIsMap)
	{
		return Group.Pass(Id, std::move(Title),
			Group.Text("ContentSecurityPass", "No disallowed assets, actors or level script found."));
	}
	FQVDiagnosticFinding Finding = Group.Make(Error, Id, std::move(Title),
		Group.Text("ContentSecurityFail", "{0} unsupported item(s) in this map.", Scan.Violations.size()),
		Group.Text("ContentSecurityRemedy",
			"Packing is blocked until these are removed. The game refuses to load a map containing them."));
	for (const FQVSecurityViolation& Each : Scan.Violations)
	{
		Finding.Children.push_back(Group.Make(Error, QVPrintf("Content.Security.%s", Each.Category),
			Group.Shown(Each.Category), Group.Shown(Each.Detail),
			Each.bAutoFixable ? Group.Text("SecurityAutoFixable",
									"This one can be fixed automatically from the Play or Package dialog.")
							  : FQVText()));
	}
	return Finding;
}
} // namespace

void FQVMapContentChecks::CheckMapContent(const FQVDiagnosticOptions& Options, FQVDiagnosticFindings& Findings)
{
	const std::string& Mod = Options.ModName;
	if (Mod.empty())
	{
		Findings.push_back(NoMap());
		return;
	}
	Findings.push_back(CheckName(Mod));
	Findings.push_back(CheckMounted(Mod));
	if (Options.World != nullptr && !Options.World->GetPackageName().empty())
	{
		Findings.push_back(CheckSaved(Mod, *Options.World));
	}
	CheckLevels(Mod, Findings);
	CheckCookPaths(Mod, Findings);
	if (Options.World != nullptr)
	{
		CheckRequiredActors(*Options.World, Findings);
	}
	Findings.push_back(CheckSecurity(Mod, Options.World));
}
