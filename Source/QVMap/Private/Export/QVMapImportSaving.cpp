// SPDX-License-Identifier: MIT
#include "Export/QVMapImportSaving.h"

#include "Core/QVPrintf.h"
#include "Engine/QVAssetRegistry.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVSlowTask.h"
#include "Export/QVMapPackageSaver.h"

#include <algorithm>

std::string FQVMapImportSaving::SaveSome(std::span<const FQVName> Some, std::vector<std::string>& OutSaved) const
{
	for (const FQVName Package : Some)
	{
		if (Task != nullptr)
		{
			Task->EnterProgressFrame(1, FQVText::FromString(Package.ToString()));
		}
		if (Task != nullptr && Task->ShouldCancel())
		{
			return "Cancelled.";
		}
	}
	std::string Error;
	return FQVMapPackageSaver::SavePackagesToDisk(Some, OutSaved, Error)
			   ? std::string()
			   : QVPrintf("Could not save the map after bringing its content in (%s). Check that none of the files "
						  "are read-only, then pack again.",
					 Error);
}

std::string FQVMapImportSaving::Save(const std::vector<FQVName>& Repointed, const std::vector<FQVName>& Copies)
{
	constexpr std::size_t AtOnce = 64; // a file keeps the disk busy longer than us
	std::vector<FQVName> All = Repointed;
	All.insert(All.end(), Copies.begin(), Copies.end());
	FQVEngine::Get().Editor->FinishAllCompilation();
	std::vector<std::string> Saved;
	std::string Error;
	while (Error.empty() && Saved.size() < All.size())
	{
		// no copy is written before all of the user's own packages are
		const std::size_t End = Saved.size() < Repointed.size() ? Repointed.size() : All.size();
		const std::size_t Count = std::min(AtOnce, End - Saved.size());
		Error = SaveSome(std::span(All).subspan(Saved.size(), Count), Saved);
	}
	NoteStamps(All, Saved);
	std::erase(Saved, std::string());
	FQVEngine::Get().AssetRegistry->ScanModifiedAssetFiles(Saved);
	return Error;
}

/** Saved: of the first packages, as many as there are. */
void FQVMapImportSaving::NoteStamps(std::span<const FQVName> All, std::span<const std::string> Saved)
{
	const std::unordered_map<FQVName, FQVFileStamp*> Stamps = StampsByPackage();
	for (std::size_t Place = 0; Place < Saved.size(); ++Place)
	{
		if (const auto Stamp = Stamps.find(All[Place]); Stamp != Stamps.end() && !Saved[Place].empty())
		{
			*Stamp->second = FQVMapForeignFiles::StampOf(Saved[Place]);
		}
	}
}

std::unordered_map<FQVName, FQVFileStamp*> FQVMapImportSaving::StampsByPackage()
{
	std::unordered_map<FQVName, FQVFileStamp*> Stamps;
	for (FQVImportBackup& Backup : Result.Backups)
	{
		Stamps[Backup.Package] = &Backup.Saved;
	}
	for (FQVImportedPackage& Copy : Result.Imported)
	{
		Stamps[Copy.Imported] = &Copy.Saved;
	}
	return Stamps;
}
