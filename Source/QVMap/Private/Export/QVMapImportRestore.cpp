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
#include "Workspace/QVMapPaths.h"

namespace
{
IQVFiles& Files()
{
	return *FQVEngine::Get().Files;
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

/** A map that was saved anew while it was repointed is nobody's but the user's. */
void KeepIfForeign(const FQVImportBackup& Backup)
{
	const FQVFileStamp Now = FQVMapImportJournal::StampOf(Backup.Original);
	if (Now.Size >= 0 && Now != Backup.Saved && !HoldTheSame(Backup.Original, Backup.Backup))
	{
		FQVMapImportJournal::KeepForeignFile(Backup.Original);
	}
}

bool PutBack(const FQVImportBackup& Backup)
{
	KeepIfForeign(Backup);
	return FQVMapPaths::EnsureDirectory(FQVPath::GetPath(Backup.Original)) &&
		   Files().Copy(Backup.Original, Backup.Backup);
}

/** The manifest goes last: as long as it is there, an interrupted clean-up is taken up again. */
void DeleteJournal(std::string_view PluginName, const FQVImportResult& Result)
{
	const std::string Copies = FQVMapImportPaths::GetCopiesFolder(PluginName);
	if (Files().DirectoryExists(Copies) && !FQVMapImportJournal::HasCopies(PluginName))
	{
		Files().DeleteDirectory(Copies); // nothing but empty folders
	}
	for (const FQVImportBackup& Backup : Result.Backups)
	{
		if (Files().FileExists(Backup.Backup))
		{
			Files().DeleteFile(Backup.Backup, true);
		}
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
		DeleteJournal(PluginName, Result);
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
			if (!Copy.File.empty() && Files().FileExists(Copy.File) && !Files().DeleteFile(Copy.File, true))
			{
				QVLog(EQVLogVerbosity::Warning, "QVMap: Could not delete imported copy %s", Copy.File);
				bAllGood = false;
			}
		}
	}
};

bool RecoverOne(std::string_view PluginName, const FQVImportResult& Import)
{
	bool bAllGood = true;
	for (const FQVImportBackup& Backup : Import.Backups)
	{
		if (Files().FileExists(Backup.Backup) && !PutBack(Backup))
		{
			QVLog(EQVLogVerbosity::Error, "QVMap: Could not restore %s from a previous run's backup", Backup.Original);
			bAllGood = false;
		}
	}
	for (const FQVImportedPackage& Copy : Import.Imported)
	{
		if (!Copy.File.empty() && Files().FileExists(Copy.File) && !Files().DeleteFile(Copy.File, true))
		{
			QVLog(EQVLogVerbosity::Error, "QVMap: Could not delete a previous run's imported copy %s", Copy.File);
			bAllGood = false;
		}
	}
	if (bAllGood)
	{
		DeleteJournal(PluginName, Import);
		QVLog(EQVLogVerbosity::Warning,
			"QVMap: A previous pack of '%s' did not finish. Its original files have been put back.", PluginName);
	}
	return bAllGood;
}
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
	const bool bRecovered = RecoverOne(PluginName, Import);
	if (bRecovered)
	{
		OutRecovered.emplace_back(PluginName);
	}
	return bRecovered;
}
