// SPDX-License-Identifier: MIT
#include "Export/QVMapImportUndo.h"

#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
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

/** A map that was saved anew while it was repointed is nobody's but the user's: it goes only where a copy is kept. */
bool PrepareToPutBack(const FQVImportBackup& Backup)
{
	const FQVFileStamp Now = FQVMapForeignFiles::StampOf(Backup.Original);
	const bool bKept = Now.Size < 0 || Now == Backup.Saved || HoldTheSame(Backup.Original, Backup.Backup) ||
					   FQVMapForeignFiles::Keep(Backup.Original);
	return bKept && FQVMapPaths::EnsureDirectory(FQVPath::GetPath(Backup.Original));
}

/** A mod that was renamed or moved away meanwhile would come to stand there twice, one of them with the copies. */
bool HasModFolder(const FQVImportBackup& Backup)
{
	const std::string_view Package = Backup.Package.ToView();
	const std::string_view Mod = Package.substr(1, Package.find('/', 1) - 1);
	return Files().DirectoryExists(FQVPath::Combine(FQVMapPaths::GetPluginsDir(), Mod));
}

void TellModFolderGone(const FQVImportBackup& Backup)
{
	QVLog(EQVLogVerbosity::Error,
		"QVMap: The folder of the mod that held %s is not there any more. Move it back to have its original files put "
		"back; if it was deleted on purpose, delete the originals too: %s",
		Backup.Original, FQVPath::GetPath(Backup.Backup));
}
} // namespace

bool FQVMapImportUndo::IsThere(const std::string& File)
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

std::vector<const FQVImportBackup*> FQVMapImportUndo::PutBack(std::span<const FQVImportBackup* const> Backups)
{
	if (!Backups.empty() && !HasModFolder(*Backups.front()))
	{
		TellModFolderGone(*Backups.front());
		return {Backups.begin(), Backups.end()};
	}
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

std::vector<std::string> FQVMapImportUndo::DeleteCopies(std::span<const FQVImportedPackage> Copies)
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

void FQVMapImportUndo::DeleteJournal(std::string_view PluginName)
{
	const std::string Copies = FQVMapImportPaths::GetCopiesFolder(PluginName);
	if (Files().DirectoryExists(Copies) && !FQVMapImportJournal::HasCopies(PluginName))
	{
		Files().DeleteDirectory(Copies); // nothing but empty folders
	}
	Files().DeleteDirectory(FQVMapImportPaths::GetJournalFolder(PluginName));
}
