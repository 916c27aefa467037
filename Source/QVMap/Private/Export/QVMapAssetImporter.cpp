// SPDX-License-Identifier: MIT
#include "Export/QVMapAssetImporter.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
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
#include "Export/QVMapImportSaving.h"
#include "Export/QVMapImportVerification.h"
#include "Export/QVMapPackageSaver.h"
#include "Workspace/QVMapPaths.h"

namespace
{
/** With the copies that were saved, and how all files were left. */
void WriteJournal(std::string_view PluginName, const FQVImportResult& Result)
{
	FQVMapImportJournal::WriteImportManifest(PluginName, Result);
	FQVMapImportJournal::WriteStamps(PluginName, Result);
}

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
		Error = Error.empty() ? Repoint() : Error;
		Error = Error.empty() ? FQVMapImportSaving(Result, Task.get()).Save(Repointed, Copies) : Error;
		if (Error.empty())
		{
			WriteJournal(PluginName, Result);
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

	std::string BackUp()
	{
		const std::string Folder = FQVMapImportPaths::GetJournalFolder(PluginName);
		if (!FQVMapPaths::EnsureDirectory(Folder))
		{
			return QVPrintf("Could not create the backup folder: %s", Folder);
		}
		std::vector<FQVImportBackup> Wanted;
		std::vector<FQVFileCopy> ToMake;
		for (const FQVName Package : Plan.Repoint)
		{
			std::string Original;
			if (Packages.DoesPackageExist(Package.ToView(), Original))
			{
				const std::string Backup =
					FQVPath::Combine(Folder, QVPrintf("%04d_%s", Wanted.size(), FQVPath::GetCleanFilename(Original)));
				Wanted.push_back({Package, Original, Backup, FQVMapForeignFiles::StampOf(Original)});
				ToMake.push_back({Backup, Original});
			}
		}
		const std::vector<bool> bMade = Files.CopyFiles(ToMake);
		std::string Failed;
		for (std::size_t Place = 0; Place < Wanted.size(); ++Place)
		{
			if (bMade[Place] && Files.FileExists(Wanted[Place].Backup))
			{
				Result.Backups.push_back(std::move(Wanted[Place]));
			}
			else if (Failed.empty())
			{
				Failed = Wanted[Place].Original;
			}
		}
		if (!Failed.empty())
		{
			return QVPrintf("Could not back up '%s' before packing. Nothing was changed.", Failed);
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
		if (!Packages.CreatePackage(New))
		{
			return QVPrintf("Could not create the package '%s'. Nothing was changed.", New.ToView());
		}
		const bool bCopied = Packages.DuplicateAsset(Asset, New);
		const std::string File = TargetOf(New);
		// what an earlier run left there, or a user's own
		if (!bCopied || File.empty() || (Files.FileExists(File) && !FQVMapForeignFiles::Keep(File)))
		{
			return QVPrintf("Could not copy '%s' into the map's folder. Nothing was changed.", Source.ToView());
		}
		Result.Imported.push_back({Source, New, File, FQVFileStamp()});
		Copies.push_back(New);
		Replacements.push_back({Asset, New, Asset.AssetName});
		return {};
	}

	/** Where a package in memory will be saved: a level has an extension of its own. Empty if nowhere. */
	std::string TargetOf(FQVName Package) const
	{
		std::string File;
		Packages.TryConvertLongPackageNameToFilename(Package.ToView(), File,
			Packages.ContainsWorld(Package) ? IQVPackages::MapPackageExtension : IQVPackages::AssetPackageExtension);
		return File;
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

	std::string Repoint()
	{
		for (const FQVName Package : Plan.Repoint)
		{
			if (!Packages.IsValidLongPackageName(Package.ToView()) || !Packages.LoadPackage(Package))
			{
				continue;
			}
			std::string File;
			if (Packages.DoesPackageExist(Package.ToView(), File) &&
				!FQVString::EqualsIgnoreCase(File, TargetOf(Package)))
			{
				return QVPrintf(
					"'%s' would be saved as %s: it does not have the extension of what it holds. Save it anew "
					"in the editor, then pack again. Nothing was changed.",
					File, TargetOf(Package));
			}
			Repointed.push_back(Package);
		}
		Packages.ReplaceReferences(Repointed, Replacements);
		Packages.ReplaceReferences(Copies, Replacements);
		return {};
	}
};

/** After a failure; the message says so if that fails too. */
void PutBack(std::string_view PluginName, FQVImportResult& Result)
{
	std::string Error;
	FQVMapImportRestore::RestoreAfterPacking(PluginName, Result, Error);
	if (!Error.empty())
	{
		Result.ErrorMessage += "\n\n" + Error;
		WriteJournal(PluginName, Result);
	}
	else if (Result.Backups.empty())
	{
		// a journal that has not begun
		FQVEngine::Get().Files->DeleteDirectory(FQVMapImportPaths::GetJournalFolder(PluginName));
	}
	Result.Imported.clear();
	Result.Backups.clear();
}

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
	PutBack(PluginName, Result);
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
	if (FQVEngine::Get().Files->FileExists(FQVMapImportPaths::GetManifestPath(PluginName)))
	{
		FQVImportResult Refused;
		Refused.ErrorMessage =
			QVPrintf("An earlier pack of '%s' did not finish, and it could not be put back. Its original files are in "
					 "%s. Nothing was changed. The log says what stands in the way: remove that, then pack again.",
				PluginName, FQVMapImportPaths::GetJournalFolder(PluginName));
		return Refused;
	}
	FQVMapPackageSaver::SaveDirtyPluginPackages(PluginName);
	return Import(PluginName, std::move(Lock));
}
