// SPDX-License-Identifier: MIT
#include "Export/QVMapAssetImporter.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVPackages.h"
#include "Engine/QVSlowTask.h"
#include "Export/QVMapImportJournal.h"
#include "Export/QVMapImportPaths.h"
#include "Export/QVMapImportPlan.h"
#include "Export/QVMapImportRestore.h"
#include "Export/QVMapImportVerification.h"
#include "Export/QVMapPackageSaver.h"
#include "Workspace/QVMapPaths.h"

namespace
{
/** One import. Each step gives the sentence for the user when it fails, and nothing when all is well. */
class FImport
{
public:
	FImport(std::string_view InPluginName, const FQVImportPlan& InPlan, FQVImportResult& InResult)
		: PluginName(InPluginName)
		, Plan(InPlan)
		, Result(InResult)
	{
	}

	std::string Run()
	{
		std::string Error = BackUp();
		Error = Error.empty() ? Copy() : Error;
		if (Error.empty())
		{
			Repoint();
			Error = Save();
		}
		if (Error.empty())
		{
			NoteSaved();
			Error = FQVMapImportVerification::VerifyImportedReferences(Result);
		}
		return Error;
	}

private:
	const std::string_view PluginName;
	const FQVImportPlan& Plan;
	FQVImportResult& Result;
	IQVPackages& Packages = *FQVEngine::Get().Packages;
	IQVFiles& Files = *FQVEngine::Get().Files;
	std::vector<FQVName> Copies;
	std::vector<FQVName> Repointed;
	std::vector<FQVAssetReplacement> Replacements;
	std::unique_ptr<IQVSlowTask> Task = BeginTask();

	std::unique_ptr<IQVSlowTask> BeginTask() const
	{
		IQVSlowTasks* Tasks = FQVEngine::Get().SlowTasks;
		const auto Amount = static_cast<float>(Plan.External.Num() + Plan.Repoint.Num());
		return Tasks == nullptr ? nullptr : Tasks->Begin(Amount, FQVText::FromString("Bringing outside content in"));
	}

	void Enter(FQVName Package) const
	{
		if (Task != nullptr)
		{
			Task->EnterProgressFrame(1, FQVText::FromString(Package.ToString()));
		}
	}

	std::string BackUp()
	{
		const std::string Folder = FQVMapImportPaths::GetJournalFolder(PluginName);
		if (!FQVMapPaths::EnsureDirectory(Folder))
		{
			return QVPrintf("Could not create the backup folder: %s", Folder);
		}
		for (const FQVName Package : Plan.Repoint)
		{
			std::string Original;
			if (!Packages.DoesPackageExist(Package.ToView(), Original))
			{
				continue;
			}
			const std::string Backup = FQVPath::Combine(
				Folder, QVPrintf("%04d_%s", Result.Backups.size(), FQVPath::GetCleanFilename(Original)));
			if (!Files.Copy(Backup, Original) || !Files.FileExists(Backup))
			{
				return QVPrintf("Could not back up '%s' before packing. Nothing was changed.", Original);
			}
			Result.Backups.push_back({Package, Original, Backup, FQVMapImportJournal::StampOf(Original)});
		}
		return FQVMapImportJournal::WriteImportManifest(PluginName, Result)
				   ? std::string()
				   : QVPrintf("Could not write the import manifest to %s. Nothing was changed.",
						 FQVMapImportPaths::GetManifestPath(PluginName));
	}

	std::string Copy()
	{
		for (const FQVName Source : Plan.External)
		{
			if (std::string Error = CopyOne(Source); !Error.empty())
			{
				return Error;
			}
		}
		for (const FQVImportPlan::FRedirection& Redirection : Plan.Redirections)
		{
			Redirect(Redirection);
		}
		return {};
	}

	std::string CopyOne(FQVName Source)
	{
		const FQVAssetData Asset = LoadFirstAsset(Source);
		if (!Asset.IsValid())
		{
			return QVPrintf("Could not load '%s', which this map uses. Nothing was changed.", Source.ToView());
		}
		const FQVName New(FQVMapImportPaths::MakeImportedName(PluginName, Source.ToView()));
		std::string File;
		if (!Packages.TryConvertLongPackageNameToFilename(New.ToView(), File, IQVPackages::AssetPackageExtension) ||
			!Packages.CreatePackage(New))
		{
			return QVPrintf("Could not create the package '%s'. Nothing was changed.", New.ToView());
		}
		if (!Packages.DuplicateAsset(Asset, New))
		{
			return QVPrintf("Could not copy '%s' into the map's folder. Nothing was changed.", Source.ToView());
		}
		if (Files.FileExists(File))
		{
			FQVMapImportJournal::KeepForeignFile(File);
		}
		Result.Imported.push_back({Source, New, File});
		Copies.push_back(New);
		Replacements.push_back({Asset, New, Asset.AssetName});
		return {};
	}

	FQVAssetData LoadFirstAsset(FQVName Package) const
	{
		std::vector<FQVAssetData> Assets;
		FQVEngine::Get().AssetRegistry->GetAssetsByPackageName(Package, Assets);
		for (const FQVAssetData& Asset : Assets)
		{
			if (Packages.LoadAsset(Asset).bLoaded)
			{
				return Asset;
			}
		}
		return {};
	}

	/** Whoever refers to a redirector means what it leads to. */
	void Redirect(const FQVImportPlan::FRedirection& Redirection)
	{
		for (std::size_t Place = 0; Place < Replacements.size(); ++Place)
		{
			if (Replacements[Place].From.PackageName == Redirection.Target)
			{
				const FQVAssetReplacement Target = Replacements[Place];
				Replacements.push_back({Redirection.Redirector, Target.To, Target.ToAsset});
				return;
			}
		}
	}

	void Repoint()
	{
		for (const FQVName Package : Plan.Repoint)
		{
			if (Packages.IsValidLongPackageName(Package.ToView()) && Packages.LoadPackage(Package))
			{
				Repointed.push_back(Package);
			}
		}
		Packages.ReplaceReferences(Repointed, Replacements);
		Packages.ReplaceReferences(Copies, Replacements);
	}

	std::string Save()
	{
		std::vector<FQVName> All = Repointed;
		All.insert(All.end(), Copies.begin(), Copies.end());
		FQVEngine::Get().Editor->FinishAllCompilation();
		std::vector<std::string> Saved;
		for (const FQVName Package : All)
		{
			Enter(Package);
			std::string Error;
			if (!FQVMapPackageSaver::SavePackageToDisk(Package, Saved.emplace_back(), Error))
			{
				return QVPrintf(
					"Could not save the map after bringing its content in (%s). Check that none of the files "
					"are read-only, then pack again.",
					Error);
			}
			NoteStamp(Package);
		}
		FQVEngine::Get().AssetRegistry->ScanModifiedAssetFiles(Saved);
		return {};
	}

	void NoteStamp(FQVName Package)
	{
		for (FQVImportBackup& Backup : Result.Backups)
		{
			if (Backup.Package == Package)
			{
				Backup.Saved = FQVMapImportJournal::StampOf(Backup.Original);
			}
		}
	}

	void NoteSaved() const
	{
		FQVMapImportJournal::WriteImportManifest(PluginName, Result);
		FQVMapImportJournal::WriteStamps(PluginName, Result);
	}
};

FQVImportResult Import(std::string_view PluginName, FQVMapPackLock Lock)
{
	FQVImportResult Result;
	Result.Lock = std::move(Lock);
	const FQVImportPlan Plan = FQVImportPlan::Make(PluginName, FQVImportPlan::EMemoryOnly::Save);
	Result.ErrorMessage = Plan.ErrorMessage;
	Result.bSuccess = Plan.bSuccess;
	if (!Plan.bSuccess || Plan.External.IsEmpty())
	{
		return Result;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Importing %d external package(s) into %s, repointing %d package(s)",
		Plan.External.Num(), PluginName, Plan.Repoint.Num());
	Result.ErrorMessage = FImport(PluginName, Plan, Result).Run();
	Result.bSuccess = Result.ErrorMessage.empty();
	if (Result.bSuccess)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Imported %d package(s) into %s for this pack", Result.Imported.size(),
			PluginName);
		return Result;
	}
	std::string RestoreError; // told in the log already
	FQVMapImportRestore::RestoreAfterPacking(PluginName, Result, RestoreError);
	Result.Imported.clear();
	Result.Backups.clear();
	return Result;
}
} // namespace

FQVImportResult FQVMapAssetImporter::BringInExternalAssets(std::string_view PluginName)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	std::vector<std::string> Recovered;
	FQVMapImportRestore::RecoverInterruptedImports(Recovered);
	FQVMapPackLock Lock(PluginName);
	if (!Lock.IsHeld())
	{
		FQVImportResult Refused;
		Refused.ErrorMessage = Lock.GetObstacle();
		return Refused;
	}
	// one that had the mod a moment ago may have died since
	FQVMapImportRestore::RecoverInterruptedImport(PluginName, Recovered);
	FQVMapPackageSaver::SaveDirtyPluginPackages(PluginName);
	return Import(PluginName, std::move(Lock));
}
