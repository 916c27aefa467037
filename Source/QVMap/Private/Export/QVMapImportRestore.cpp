// SPDX-License-Identifier: MIT
#include "Export/QVMapImportRestore.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Engine/QVAssetRegistry.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVPackages.h"
#include "Engine/QVProject.h"
#include "Export/QVMapImportJournal.h"
#include "Export/QVMapImportPaths.h"
#include "Export/QVMapUnfinishedSaves.h"
#include "Workspace/QVMapPaths.h"

namespace
{
IQVFiles& Files()
{
	return *FQVEngine::Get().Files;
}

/** A disk that fails to tell of a file for a moment must not pass for one that has none: then its folder is asked. */
bool IsThere(const std::string& File)
{
	bool bFound = Files().FileExists(File);
	const auto Visit = [&](std::string_view Path, bool bIsDirectory)
	{
		bFound = !bIsDirectory && FQVPath::GetCleanFilename(Path) == FQVPath::GetCleanFilename(File);
		return !bFound;
	};
	if (!bFound)
	{
		Files().IterateDirectory(FQVPath::GetPath(File), Visit);
	}
	return bFound;
}

bool HoldTheSame(const std::string& A, const std::string& B)
{
	if (Files().FileSize(A) != Files().FileSize(B))
	{
		return false;
	}
	std::vector<std::byte> BytesOfA;
	std::vector<std::byte> BytesOfB;
	return Files().LoadFileToArray(BytesOfA, A) && Files().LoadFileToArray(BytesOfB, B) && BytesOfA == BytesOfB;
}

/** A map that was saved anew while it was repointed is nobody's but the user's: it goes only where a copy is kept. */
bool PutBack(const FQVImportBackup& Backup)
{
	const bool bKept =
		HoldTheSame(Backup.Original, Backup.Backup) || FQVMapForeignFiles::KeepIfChanged(Backup.Original, Backup.Saved);
	return bKept && FQVMapPaths::EnsureDirectory(FQVPath::GetPath(Backup.Original)) &&
		   Files().Copy(Backup.Original, Backup.Backup);
}

bool DeleteCopy(const FQVImportedPackage& Copy)
{
	return Copy.File.empty() || !IsThere(Copy.File) ||
		   (FQVMapForeignFiles::KeepIfChanged(Copy.File, Copy.Saved) && Files().DeleteFile(Copy.File, true));
}

/** All is back in its place. A deletion that is cut off is taken up again as long as the manifest is there; without it,
 * what is left of the folder does no harm. */
void DeleteJournal(std::string_view PluginName)
{
	const std::string Copies = FQVMapImportPaths::GetCopiesFolder(PluginName);
	if (Files().DirectoryExists(Copies) && !FQVMapImportJournal::HasCopies(PluginName))
	{
		Files().DeleteDirectory(Copies); // nothing but empty folders
	}
	Files().DeleteDirectory(FQVMapImportPaths::GetJournalFolder(PluginName));
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
		ReloadRepointed();
		DeleteLoadedCopies();
		DeleteCopies();
		if (!bAllGood)
		{
			return QVPrintf("Some of '%s' could not be put back automatically. The originals are kept in %s.",
				PluginName, FQVMapImportPaths::GetJournalFolder(PluginName));
		}
		DeleteJournal(PluginName);
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
		for (const FQVImportBackup& Backup : Result.Backups)
		{
			Originals.push_back(Backup.Original);
			if (!Files().FileExists(Backup.Backup))
			{
				QVLog(EQVLogVerbosity::Warning, "QVMap: Backup missing, cannot restore %s", Backup.Original);
				bAllGood = false;
			}
			else if (!PutBack(Backup))
			{
				QVLog(EQVLogVerbosity::Error, "QVMap: FAILED to restore %s from %s", Backup.Original, Backup.Backup);
				bAllGood = false;
			}
			else
			{
				Packages.SetDirtyFlag(Backup.Package, false);
			}
		}
		FQVEngine::Get().AssetRegistry->ScanModifiedAssetFiles(Originals);
	}

	void ReloadRepointed() const
	{
		std::vector<FQVName> Loaded;
		for (const FQVImportBackup& Backup : Result.Backups)
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

	void DeleteLoadedCopies() const
	{
		std::vector<FQVName> Loaded;
		for (const FQVImportedPackage& Copy : Result.Imported)
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

	void DeleteCopies()
	{
		for (const FQVImportedPackage& Copy : Result.Imported)
		{
			if (!DeleteCopy(Copy))
			{
				QVLog(EQVLogVerbosity::Warning, "QVMap: Could not delete imported copy %s", Copy.File);
				bAllGood = false;
			}
		}
	}
};

/** Work of a recovery, on files alone. */
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
			DeleteJournal(PluginName);
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
		for (const FQVImportBackup& Backup : Import.Backups)
		{
			const bool bThere = IsThere(Backup.Backup);
			const bool bLost =
				!bThere && Backup.Saved.Size >= 0 && FQVMapForeignFiles::StampOf(Backup.Original) == Backup.Saved;
			if (bLost || (bThere && !PutBack(Backup)))
			{
				QVLog(EQVLogVerbosity::Error, "QVMap: Could not restore %s from a previous run's backup",
					Backup.Original);
				bAllGood = false;
				bAnyLost = bAnyLost || bLost;
			}
		}
	}

	void DeleteCopies()
	{
		for (const FQVImportedPackage& Copy : Import.Imported)
		{
			if (!DeleteCopy(Copy))
			{
				QVLog(EQVLogVerbosity::Error, "QVMap: Could not delete a previous run's imported copy %s", Copy.File);
				bAllGood = false;
			}
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
		OutRecovered.emplace_back(PluginName);
	}
	return bRecovered;
}
