// SPDX-License-Identifier: MIT
#include "Export/QVMapUnfinishedSaves.h"

#include "Core/QVPath.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Export/QVMapImportPaths.h"

#include <functional>
#include <map>
#include <set>

namespace
{
constexpr std::string_view Extension = ".tmp";

void DeleteIn(const std::string& Folder, const std::function<bool(std::string_view Target)>& IsTarget)
{
	std::vector<std::string> Found;
	FQVEngine::Get().Files->IterateDirectory(Folder,
		[&](std::string_view Path, bool bIsDirectory)
		{
			const std::string_view Name = FQVPath::GetCleanFilename(Path);
			const std::string_view Unnumbered = FQVPath::WithoutExtension(FQVPath::WithoutExtension(Name));
			if (!bIsDirectory && Name.ends_with(Extension) && IsTarget(Unnumbered))
			{
				Found.emplace_back(Path);
			}
			return true;
		});
	for (const std::string& File : Found)
	{
		FQVEngine::Get().Files->DeleteFile(File, true);
	}
}

void DeleteAmongCopies(const std::string& Root)
{
	std::vector<std::string> Folders{Root};
	FQVEngine::Get().Files->IterateDirectoryRecursively(Root,
		[&Folders](std::string_view Path, bool bIsDirectory)
		{
			if (bIsDirectory)
			{
				Folders.emplace_back(Path);
			}
			return true;
		});
	for (const std::string& Folder : Folders)
	{
		DeleteIn(Folder, [](std::string_view) { return true; });
	}
}
} // namespace

void FQVMapUnfinishedSaves::Delete(std::string_view PluginName, const FQVImportResult& Import)
{
	std::map<std::string, std::set<std::string, std::less<>>> Originals;
	for (const FQVImportBackup& Backup : Import.Backups)
	{
		Originals[std::string(FQVPath::GetPath(Backup.Original))].emplace(FQVPath::GetCleanFilename(Backup.Original));
	}
	for (const auto& [Folder, Names] : Originals)
	{
		DeleteIn(Folder, [&Names = Names](std::string_view Target) { return Names.contains(Target); });
	}
	DeleteAmongCopies(FQVMapImportPaths::GetCopiesFolder(PluginName));
}
