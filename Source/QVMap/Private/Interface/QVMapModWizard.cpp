// SPDX-License-Identifier: MIT
#include "Interface/QVMapModWizard.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVLevelEditor.h"
#include "Engine/QVPackages.h"
#include "Engine/QVPlugins.h"
#include "Engine/QVWorld.h"
#include "Export/QVMapBaseReleaseBuild.h"
#include "Export/QVMapCooker.h"
#include "Interface/QVMapMods.h"
#include "Workspace/QVMapConfig.h"
#include "Workspace/QVMapPaths.h"

namespace
{
constexpr std::string_view TextNamespace = "FQVMapModWizard";
constexpr std::string_view MapsFolder = "Maps";

std::string GetModDir(std::string_view Name)
{
	return FQVPath::Combine(FQVMapPaths::GetPluginsDir(), Name);
}

FQVNewPlugin DescribePlugin(const FQVCreateModRequest& Request)
{
	FQVNewPlugin Plugin;
	Plugin.Name = Request.Name;
	Plugin.Location = FQVMapPaths::GetPluginsDir();
	Plugin.Descriptor.Version = 1;
	Plugin.Descriptor.VersionName = "1.0";
	Plugin.Descriptor.FriendlyName = Request.Name;
	Plugin.Descriptor.Description = Request.Description;
	Plugin.Descriptor.Category = "QVMap Mods";
	Plugin.Descriptor.CreatedBy = Request.Author;
	Plugin.Descriptor.bCanContainContent = true;
	return Plugin;
}

/** One map in the making: steps that give false when the work is to stop, the result's message set. */
class FModCreation
{
public:
	explicit FModCreation(const FQVCreateModRequest& InRequest)
		: Request(InRequest)
	{
		Result.ModName = Request.Name;
	}

	FQVCreateModResult Run()
	{
		if (MayBegin() && CreatePlugin() && CreateLevel() && CheckLevel())
		{
			SaveLevel();
			Result.bCreated = true;
			QVLog(EQVLogVerbosity::Log, "QVMap: Created mod '%s' with starter map %s", Result.ModName,
				Result.MapPackagePath);
		}
		return std::move(Result);
	}

private:
	const FQVEngine& Engine = FQVEngine::Get();
	const FQVCreateModRequest& Request;
	FQVCreateModResult Result;

	bool Stop(FQVText Message)
	{
		Result.ErrorMessage = std::move(Message);
		return false;
	}

	bool MayBegin();
	bool CreatePlugin();
	bool CreateLevel();
	bool FillLevel(IQVLevelEditor& LevelEditor) const;
	bool CheckLevel();
	void SaveLevel() const;
};

bool FModCreation::MayBegin()
{
	if (FQVMapBaseReleaseBuild::IsBaseReleaseBuilding())
	{
		return Stop({TextNamespace, "CreateModDuringBuild",
			"A base release build is in progress.\n\nWait for it to finish before creating a map - anything created "
			"during a build gets cooked into the base release."});
	}
	if (!FQVMapModWizard::ValidateNewModName(Request.Name, Result.ErrorMessage))
	{
		return false;
	}
	if (Engine.Editor == nullptr)
	{
		return Stop({TextNamespace, "NoEditor", "The editor is not available."});
	}
	if (!Engine.Editor->SaveDirtyPackages({.bPromptUserToSave = true}))
	{
		return Stop({TextNamespace, "CreateModCancelled", "Cancelled - nothing was created."});
	}
	return true;
}

bool FModCreation::CreatePlugin()
{
	FQVText Reason;
	if (!Engine.Plugins->CreateAndLoadNewPlugin(DescribePlugin(Request), Reason))
	{
		const FQVText Unknown(TextNamespace, "CreatePluginFailed", "Could not create the map '{0}'.", Request.Name);
		Stop(Reason.ToString().empty() ? Unknown : Reason);
		QVLog(EQVLogVerbosity::Error, "QVMap: Mod plugin creation failed: %s", Result.ErrorMessage.ToString());
		return false;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Created and mounted mod plugin %s", Request.Name);
	FQVMapMods::InvalidateCache();
	Result.MapPackagePath = FQVMapModWizard::GetMapPackagePath(Request.Name);
	return true;
}

bool FModCreation::CreateLevel()
{
	IQVLevelEditor* LevelEditor = Engine.Editor->GetLevelEditor();
	if (LevelEditor == nullptr)
	{
		Result.bFolderCreated = true;
		return Stop({TextNamespace, "NoLevelSubsystem",
			"The folder for '{0}' was created, but the map could not be added.\n\nCreate a level yourself and save it "
			"into Plugins/{0}/Content/Maps/ - the folder is ignored until it holds a map.",
			Request.Name});
	}
	if (!FillLevel(*LevelEditor))
	{
		Result.bFolderCreated = true;
		QVLog(EQVLogVerbosity::Error, "QVMap: NewLevel failed for %s", Result.MapPackagePath);
		return Stop({TextNamespace, "NewLevelFailed",
			"The folder for '{0}' was created, but the map could not be saved to {1}.\n\nCreate a level yourself and "
			"save it into Plugins/{0}/Content/Maps/ - the folder is ignored until it holds a map.",
			Request.Name, Result.MapPackagePath});
	}
	return true;
}

bool FModCreation::FillLevel(IQVLevelEditor& LevelEditor) const
{
	const std::string Template = FQVMapConfig::GetMapTemplatePath();
	std::string File;
	if (!Template.empty() && Engine.Packages->DoesPackageExist(Template, File))
	{
		return LevelEditor.NewLevelFromTemplate(Result.MapPackagePath, Template);
	}
	if (!Template.empty())
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Map template '%s' not found - creating an empty level instead", Template);
	}
	return LevelEditor.NewLevel(Result.MapPackagePath, false);
}

bool FModCreation::CheckLevel()
{
	const IQVWorld* World = Engine.Editor->GetOpenWorld();
	if (World == nullptr || !World->HasWorldPartition())
	{
		return true;
	}
	Stop({TextNamespace, "NewLevelIsWorldPartition",
		"'{0}' was created as a World Partition map, which QVMap cannot pack.\n\nTurn off World Partition for new "
		"levels in Project Settings, then delete and recreate this map.",
		Result.MapPackagePath});
	QVLog(EQVLogVerbosity::Error, "QVMap: %s", Result.ErrorMessage.ToString());
	return false;
}

/** A save that fails can be repeated by the author: the level is open. */
void FModCreation::SaveLevel() const
{
	FQVMapMods::InvalidateCache();
	if (Engine.Editor->GetOpenWorld() == nullptr)
	{
		QVLog(EQVLogVerbosity::Warning,
			"QVMap: NewWorld is null after NewLevelFromTemplate/NewLevel; cannot save starter map");
		return;
	}
	const std::string File = FQVMapModWizard::GetMapFilePath(Request.Name);
	QVLog(EQVLogVerbosity::Log, "QVMap: Saving newly created starter map to %s", File);
	const bool bSaved = Engine.Editor->SaveDirtyPackages({.bSaveContentPackages = false});
	QVLog(EQVLogVerbosity::Log, "QVMap: SaveDirtyPackages returned %s, file exists on disk: %s",
		FQVString::BoolWord(bSaved), FQVString::BoolWord(Engine.Files->FileExists(File)));
}
} // namespace

FQVCreateModResult FQVMapModWizard::CreateMod(const FQVCreateModRequest& Request)
{
	if (!FQVEngine::Get().GameThread->IsInGameThread())
	{
		FQVCheck::Fail("CreateMod mounts plugins and saves packages - game thread only", __FILE__, __LINE__);
	}
	return FModCreation(Request).Run();
}

bool FQVMapModWizard::ValidateNewModName(std::string_view Name, FQVText& OutError)
{
	std::string Refusal;
	if (!FQVMapCooker::ValidatePluginName(Name, Refusal))
	{
		OutError = FQVText::FromString(Refusal);
		return false;
	}
	const FQVEngine& Engine = FQVEngine::Get();
	if (!Engine.Plugins->ValidateNewPluginNameAndLocation(Name, FQVMapPaths::GetPluginsDir(), OutError))
	{
		return false;
	}
	const std::string Disabled = GetModDescriptorPath(Name) + ".disabled";
	if (Engine.Files->DirectoryExists(GetModDir(Name)))
	{
		OutError = FQVText(TextNamespace, "FolderExists",
			"A map called '{0}' already exists.\n\nPick a different name, or delete Plugins/{0}/ first.", Name);
		return false;
	}
	if (Engine.Files->FileExists(Disabled))
	{
		OutError = FQVText(TextNamespace, "DisabledDescriptorExists",
			"'{0}' is left over from an interrupted base release build.\n\nRename {1} back to {0}.uplugin, or delete "
			"the folder, before reusing this name.",
			Name, Disabled);
		return false;
	}
	return true;
}

std::string FQVMapModWizard::GetModContentDir(std::string_view Name)
{
	return FQVPath::Combine(GetModDir(Name), "Content");
}

std::string FQVMapModWizard::GetModDescriptorPath(std::string_view Name)
{
	return FQVPath::Combine(GetModDir(Name), QVPrintf("%s.uplugin", Name));
}

std::string FQVMapModWizard::GetMapPackagePath(std::string_view Name)
{
	return QVPrintf("/%s/%s/%s", Name, MapsFolder, Name);
}

std::string FQVMapModWizard::GetMapFilePath(std::string_view Name)
{
	return FQVPath::Combine(GetModContentDir(Name), MapsFolder, QVPrintf("%s.umap", Name));
}
