// SPDX-License-Identifier: MIT
#include "Export/QVMapImportRestore.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Engine/QVAssetRegistry.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVPackages.h"
#include "Engine/QVProject.h"
#include "Export/QVMapImportJournal.h"
#include "Export/QVMapImportPaths.h"
#include "Export/QVMapImportUndo.h"
#include "Export/QVMapUnfinishedSaves.h"

#include <algorithm>

namespace
{
IQVFiles& Files()
{
	return *FQVEngine::Get().Files;
}

void ReloadRepointed(const FQVImportResult& Import)
{
	IQVPackages& Packages = *FQVEngine::Get().Packages;
	std::vector<FQVName> Loaded;
	for (const FQVImportBackup& Backup : Import.Backups)
	{
		if (Packages.IsLoaded(Backup.Package))
		{
			Loaded.push_back(Backup.Package);
		}
	}
	std::string Message;
	Packages.ReloadPackages(Loaded, Message);
	if (!Message.empty())
	{
		QVLog(EQVLogVerbosity::Warning, "QVMap: Reload after packing reported: %s", Message);
	}
}

void DeleteLoadedCopies(const FQVImportResult& Import)
{
	IQVPackages& Packages = *FQVEngine::Get().Packages;
	std::vector<FQVName> Loaded;
	for (const FQVImportedPackage& Copy : Import.Imported)
	{
		if (Packages.IsLoaded(Copy.Imported))
		{
			Packages.SetDirtyFlag(Copy.Imported, false);
			Loaded.push_back(Copy.Imported);
		}
	}
	if (!Loaded.empty())
	{
		FQVEngine::Get().Editor->FinishAllCompilation();
		Packages.DeleteAssets(Loaded);
	}
}

class FRestore
{
public:
	FRestore(std::string_view InPluginName, const FQVImportResult& InResult)
		: PluginName(InPluginName)
		, Result(InResult)
	{
	}

	std::string Run()
	{
		PutOriginalsBack();
		if (!bAllGood)
		{
			return QVPrintf("'%s' could not be put back automatically, so the imported copies have been left in place "
							"rather than deleted. The originals are in %s.",
				PluginName, FQVMapImportPaths::GetJournalFolder(PluginName));
		}
		ReloadRepointed(Result);
		DeleteLoadedCopies(Result);
		DeleteCopies();
		if (!bAllGood)
		{
			return QVPrintf("Some of '%s' could not be put back automatically. The originals are kept in %s.",
				PluginName, FQVMapImportPaths::GetJournalFolder(PluginName));
		}
		FQVMapImportUndo::DeleteJournal(PluginName);
		QVLog(EQVLogVerbosity::Log, "QVMap: Restored %s after packing (%d copy, %d rewritten)", PluginName,
			Result.Imported.size(), Result.Backups.size());
		return {};
	}

private:
	const std::string_view PluginName;
	const FQVImportResult& Result;
	IQVPackages& Packages = *FQVEngine::Get().Packages;
	bool bAllGood = true;

	void PutOriginalsBack()
	{
		std::vector<std::string> Originals;
		std::vector<const FQVImportBackup*> There;
		for (const FQVImportBackup& Backup : Result.Backups)
		{
			Originals.push_back(Backup.Original);
			if (Files().FileExists(Backup.Backup))
			{
				There.push_back(&Backup);
			}
			else
			{
				QVLog(EQVLogVerbosity::Warning, "QVMap: Backup missing, cannot restore %s", Backup.Original);
				bAllGood = false;
			}
		}
		const std::vector<const FQVImportBackup*> Failed = FQVMapImportUndo::PutBack(There);
		for (const FQVImportBackup* Backup : There)
		{
			if (std::find(Failed.begin(), Failed.end(), Backup) == Failed.end())
			{
				Packages.SetDirtyFlag(Backup->Package, false);
				continue;
			}
			QVLog(EQVLogVerbosity::Error, "QVMap: FAILED to restore %s from %s", Backup->Original, Backup->Backup);
			bAllGood = false;
		}
		FQVEngine::Get().AssetRegistry->ScanModifiedAssetFiles(Originals);
	}

	void DeleteCopies()
	{
		for (const std::string& File : FQVMapImportUndo::DeleteCopies(Result.Imported))
		{
			QVLog(EQVLogVerbosity::Warning, "QVMap: Could not delete imported copy %s", File);
			bAllGood = false;
		}
	}
};

/** Work of a recovery, on files alone: what is loaded of them is taken from them anew afterwards. */
class FRecovery
{
public:
	FRecovery(std::string_view InPluginName, const FQVImportResult& InImport)
		: PluginName(InPluginName)
		, Import(InImport)
	{
	}

	bool Run()
	{
		PutOriginalsBack();
		if (!bAnyLost)
		{
			DeleteCopies();
		}
		if (bAllGood)
		{
			FQVMapUnfinishedSaves::Delete(PluginName, Import);
			FQVMapImportUndo::DeleteJournal(PluginName);
			QVLog(EQVLogVerbosity::Warning,
				"QVMap: A previous pack of '%s' did not finish. Its original files have been put back.", PluginName);
		}
		return bAllGood;
	}

private:
	const std::string_view PluginName;
	const FQVImportResult& Import;
	bool bAllGood = true;
	/** A package still refers to the copies, and its backup is gone. */
	bool bAnyLost = false;

	void PutOriginalsBack()
	{
		std::vector<const FQVImportBackup*> There;
		std::vector<const FQVImportBackup*> Failed;
		for (const FQVImportBackup& Backup : Import.Backups)
		{
			const bool bThere = FQVMapImportUndo::IsThere(Backup.Backup);
			const bool bLost =
				!bThere && Backup.Saved.Size >= 0 && FQVMapForeignFiles::StampOf(Backup.Original) == Backup.Saved;
			bAnyLost = bAnyLost || bLost;
			if (bThere || bLost)
			{
				(bThere ? There : Failed).push_back(&Backup);
			}
		}
		const std::vector<const FQVImportBackup*> NotCopied = FQVMapImportUndo::PutBack(There);
		Failed.insert(Failed.end(), NotCopied.begin(), NotCopied.end());
		for (const FQVImportBackup* Backup : Failed)
		{
			QVLog(EQVLogVerbosity::Error, "QVMap: Could not restore %s from a previous run's backup", Backup->Original);
			bAllGood = false;
		}
	}

	void DeleteCopies()
	{
		for (const std::string& File : FQVMapImportUndo::DeleteCopies(Import.Imported))
		{
			QVLog(EQVLogVerbosity::Error, "QVMap: Could not delete a previous run's imported copy %s", File);
			bAllGood = false;
		}
	}
};
} // namespace

void FQVMapImportRestore::RestoreAfterPacking(
	std::string_view PluginName, const FQVImportResult& Result, std::string& OutError)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	if (Result.Backups.empty() && Result.Imported.empty())
	{
		return;
	}
	OutError = FRestore(PluginName, Result).Run();
	if (!OutError.empty())
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: %s", OutError);
	}
}

bool FQVMapImportRestore::RecoverInterruptedImports(std::vector<std::string>& OutRecovered)
{
	if (FQVEngine::Get().Project->IsRunningCommandlet() ||
		!Files().DirectoryExists(FQVMapImportPaths::GetJournalRoot()))
	{
		return true;
	}
	bool bAllGood = true;
	for (const std::string& PluginName : FQVMapImportJournal::ListPlugins())
	{
		const FQVMapPackLock Lock(PluginName);
		if (!Lock.IsHeld())
		{
			QVLog(
				EQVLogVerbosity::Log, "QVMap: %s is being packed by another run, its import is left alone", PluginName);
			continue;
		}
		bAllGood = RecoverInterruptedImport(PluginName, OutRecovered) && bAllGood;
	}
	return bAllGood;
}

bool FQVMapImportRestore::RecoverInterruptedImport(std::string_view PluginName, std::vector<std::string>& OutRecovered)
{
	FQVImportResult Import;
	if (!FQVMapImportJournal::ReadImportManifest(PluginName, Import))
	{
		return true;
	}
	const bool bRecovered = FRecovery(PluginName, Import).Run();
	if (bRecovered)
	{
		ReloadRepointed(Import); // an earlier pack of this session could not put them back
		DeleteLoadedCopies(Import);
		OutRecovered.emplace_back(PluginName);
	}
	return bRecovered;
}
