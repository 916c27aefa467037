// SPDX-License-Identifier: MIT
#include "Interface/QVMapMods.h"

#include "Core/QVCheck.h"
#include "Core/QVEvent.h"
#include "Core/QVLog.h"
#include "Core/QVString.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVLevelEditor.h"
#include "Export/QVMapBaseReleaseBuild.h"
#include "Workspace/QVMapReadiness.h"

namespace
{
constexpr std::string_view TextNamespace = "FQVMapMods";

struct FModuleState
{
	FQVScanResult CachedMods;
	bool bCacheValid = false;
	FQVSubscription BuildEndedHandle;
};

FModuleState& State()
{
	static FModuleState Instance;
	return Instance;
}

/** MapName empty: any map of the mod. */
bool IsOpen(std::string_view ModName, std::string_view MapName)
{
	std::string OpenMod;
	std::string OpenMap;
	FQVText Error;
	return FQVMapReadiness::ResolveOpenMap(OpenMod, OpenMap, Error) && FQVString::EqualsIgnoreCase(OpenMod, ModName) &&
		   (MapName.empty() || FQVString::EqualsIgnoreCase(OpenMap, MapName));
}

FQVMenuEntry MakeMapEntry(const FQVModInfo& Mod, const FQVMapInfo& Map)
{
	FQVMenuEntry Entry;
	Entry.Label = FQVText::FromString(Map.Name);
	Entry.Tooltip = FQVText(TextNamespace, "SwitchMapTooltip", "Open {0}", Map.Name);
	Entry.IsChecked = [ModName = Mod.Name, MapName = Map.Name] { return IsOpen(ModName, MapName); };
	Entry.Execute = [ModName = Mod.Name, Path = Map.CookPath] { FQVMapMods::OpenMap(ModName, Path); };
	return Entry;
}

FQVMenuEntry MakeModEntry(const FQVModInfo& Mod)
{
	if (Mod.Maps.size() == 1)
	{
		return MakeMapEntry(Mod, Mod.Maps.front());
	}
	FQVMenuEntry Entry;
	Entry.Kind = EQVMenuEntryKind::SubMenu;
	Entry.Label = FQVText(TextNamespace, "ModWithMapCount", "{0} ({1} maps)", Mod.Name, Mod.Maps.size());
	Entry.Tooltip = FQVText(TextNamespace, "ModSubMenuTooltip", "Open a map from {0}", Mod.Name);
	Entry.IsChecked = [ModName = Mod.Name] { return IsOpen(ModName, {}); };
	for (const FQVMapInfo& Map : Mod.Maps)
	{
		Entry.Entries.push_back(MakeMapEntry(Mod, Map));
	}
	return Entry;
}
} // namespace

FQVScanResult FQVMapMods::GetMods(bool bForceRefresh)
{
	FModuleState& Module = State();
	const bool bBuilding = FQVMapBaseReleaseBuild::IsBaseReleaseBuilding();
	if (!Module.bCacheValid || (bForceRefresh && !bBuilding))
	{
		if (Module.BuildEndedHandle == nullptr)
		{
			Module.BuildEndedHandle = FQVMapBaseReleaseBuild::OnBuildEnded().Subscribe(InvalidateCache);
		}
		Module.CachedMods = FQVMapScanner::ScanMods();
		// during a build the descriptors are out of the way
		Module.bCacheValid = !bBuilding;
	}
	return Module.CachedMods;
}

void FQVMapMods::InvalidateCache()
{
	State().bCacheValid = false;
}

std::vector<FQVMenuEntry> FQVMapMods::BuildMenu()
{
	std::vector<FQVMenuEntry> Entries;
	for (const FQVModInfo& Mod : GetMods(false).Mods)
	{
		Entries.push_back(MakeModEntry(Mod));
	}
	if (Entries.empty())
	{
		FQVMenuEntry None;
		None.Kind = EQVMenuEntryKind::SubduedText;
		None.Label = FQVText(TextNamespace, "NoModsFound", "No maps yet - use New Map");
		Entries.push_back(std::move(None));
	}
	return Entries;
}

bool FQVMapMods::OpenMap(std::string_view ModName, std::string_view MapPath)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	IQVEditor* Editor = FQVEngine::Get().Editor;
	if (Editor == nullptr)
	{
		return false;
	}
	if (!Editor->SaveDirtyPackages({.bPromptUserToSave = true}))
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Map switch cancelled at the save prompt");
		return false;
	}
	IQVLevelEditor* LevelEditor = Editor->GetLevelEditor();
	if (LevelEditor == nullptr)
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: LevelEditorSubsystem unavailable - cannot open %s", MapPath);
		return false;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Opening %s from mod %s", MapPath, ModName);
	const bool bOpened = LevelEditor->LoadLevel(MapPath);
	if (!bOpened)
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: Failed to open level %s", MapPath);
	}
	return bOpened;
}
