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

#include <algorithm>

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
bool PrepareToPutBack(const FQVImportBackup& Backup)
{
	const bool bKept =
		HoldTheSame(Backup.Original, Backup.Backup) || FQVMapForeignFiles::KeepIfChanged(Backup.Original, Backup.Saved);
	return bKept && FQVMapPaths::EnsureDirectory(FQVPath::GetPath(Backup.Original));
}

/** Gives those that could not be put back. */
std::vector<const FQVImportBackup*> PutBack(std::span<const FQVImportBackup* const> Backups)
{
	std::vector<const FQVImportBackup*> Tried;
	std::vector<const FQVImportBackup*> Failed;
	std::vector<FQVFileCopy> Copies;
	for (const FQVImportBackup* Backup : Backups)
	{
		if (PrepareToPutBack(*Backup))
		{
			Tried.push_back(Backup);
			Copies.push_back({Backup->Original, Backup->Backup});
		}
		else
		{
			Failed.push_back(Backup);
		}
	}
	const std::vector<bool> bCopied = Files().CopyFiles(Copies);
	for (std::size_t Place = 0; Place < Tried.size(); ++Place)
	{
		if (!bCopied[Place])
		{
			Failed.push_back(Tried[Place]);
		}
	}
	return Failed;
}

/** Gives the files that could not be deleted. */
std::vector<std::string> DeleteCopiesOf(std::span<const FQVImportedPackage> Copies)
{
	std::vector<std::string> Left;
	std::vector<std::string> Failed;
	for (const FQVImportedPackage& Copy : Copies)
	{
		if (!Copy.File.empty() && IsThere(Copy.File))
		{
			(FQVMapForeignFiles::KeepIfChanged(Copy.File, Copy.Saved) ? Left : Failed).push_back(Copy.File);
		}
	}
	const std::vector<bool> bDeleted = Files().DeleteFiles(Left, true);
	for (std::size_t Place = 0; Place < Left.size(); ++Place)
	{
		if (!bDeleted[Place])
		{
			Failed.push_back(Left[Place]);
		}
	}
	return Failed;
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
		const std::vector<const FQVImportBackup*> Failed = PutBack(There);
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
		for (const std::string& File : DeleteCopiesOf(Result.Imported))
		{
			QVLog(EQVLogVerbosity::Warning, "QVMap: Could not delete imported copy %s", File);
			bAllGood = false;
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
		std::vector<const FQVImportBackup*> There;
		std::vector<const FQVImportBackup*> Failed;
		for (const FQVImportBackup& Backup : Import.Backups)
		{
			const bool bThere = IsThere(Backup.Backup);
			const bool bLost =
				!bThere && Backup.Saved.Size >= 0 && FQVMapForeignFiles::StampOf(Backup.Original) == Backup.Saved;
			bAnyLost = bAnyLost || bLost;
			if (bThere || bLost)
			{
				(bThere ? There : Failed).push_back(&Backup);
			}
		}
		const std::vector<const FQVImportBackup*> NotCopied = PutBack(There);
		Failed.insert(Failed.end(), NotCopied.begin(), NotCopied.end());
		for (const FQVImportBackup* Backup : Failed)
		{
			QVLog(EQVLogVerbosity::Error, "QVMap: Could not restore %s from a previous run's backup", Backup->Original);
			bAllGood = false;
		}
	}

	void DeleteCopies()
	{
		for (const std::string& File : DeleteCopiesOf(Import.Imported))
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
		OutRecovered.emplace_back(PluginName);
	}
	return bRecovered;
}
