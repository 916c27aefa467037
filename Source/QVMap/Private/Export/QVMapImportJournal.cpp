// SPDX-License-Identifier: MIT
#include "Export/QVMapImportJournal.h"

#include "Core/QVJson.h"
#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVClock.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVJsonReader.h"
#include "Export/QVMapImportPaths.h"
#include "Workspace/QVMapPaths.h"

#include <algorithm>
#include <charconv>
#include <map>

namespace
{
std::string StampsPath(std::string_view PluginName)
{
	return FQVPath::Combine(FQVMapImportPaths::GetJournalFolder(PluginName), "saved.json");
}

bool LoadJson(const std::string& Path, FQVJson& Out, bool& bOutThere)
{
	std::string Text;
	std::string Error;
	bOutThere = FQVEngine::Get().Files->LoadFileToString(Text, Path);
	return bOutThere && FQVEngine::Get().JsonReader->Parse(Text, Out, Error) && Out.IsObject();
}

template<class FVisit>
void ForEachObject(const FQVJson& Json, std::string_view Key, const FVisit& Visit)
{
	const FQVJson* List = Json.Find(Key);
	const FQVJson::FArray* Elements = List != nullptr ? List->AsArray() : nullptr;
	if (Elements == nullptr)
	{
		return;
	}
	for (const FQVJson& Element : *Elements)
	{
		if (Element.IsObject())
		{
			Visit(Element);
		}
	}
}

FQVJson BackupsToJson(const std::vector<FQVImportBackup>& Backups)
{
	FQVJson List = FQVJson::Array();
	for (const FQVImportBackup& Backup : Backups)
	{
		List.Add(FQVJson::Object()
					 .Set("package", Backup.Package.ToView())
					 .Set("original", Backup.Original)
					 .Set("backup", Backup.Backup));
	}
	return List;
}

FQVJson ImportedToJson(const std::vector<FQVImportedPackage>& Imported)
{
	FQVJson List = FQVJson::Array();
	for (const FQVImportedPackage& Package : Imported)
	{
		List.Add(FQVJson::Object()
					 .Set("source", Package.Source.ToView())
					 .Set("imported", Package.Imported.ToView())
					 .Set("file", Package.File));
	}
	return List;
}

bool IsBelow(std::string_view Path, std::string_view Folder)
{
	const std::string Normal = FQVPath::ConvertRelativePathToFull(Folder, Path);
	return FQVString::EqualsIgnoreCase(Normal, Path) && Normal.size() > Folder.size() + 1 &&
		   FQVString::StartsWithIgnoreCase(Normal, std::string(Folder) + "/");
}

/** The paths of a manifest, held against where project and backup folder are now. */
class FManifestPaths
{
public:
	FManifestPaths(std::string_view PluginName, const std::vector<FQVImportBackup>& Backups)
		: Project(FQVMapPaths::GetProjectDir())
		, Folder(FQVMapImportPaths::GetJournalFolder(PluginName))
		, Copies(FQVMapImportPaths::GetCopiesFolder(PluginName))
	{
		const std::string_view Inner = std::string_view(Folder).substr(Project.size());
		const std::string_view Named = Backups.empty() ? std::string_view() : FQVPath::GetPath(Backups.front().Backup);
		if (FQVString::EndsWithIgnoreCase(Named, Inner))
		{
			OldFolder = Named;
			OldProject = Named.substr(0, Named.size() - Inner.size());
		}
	}

	/** False if the path leads out of the project. */
	bool Accept(std::string& Path) const
	{
		Follow(Path, OldProject, Project);
		return IsBelow(Path, Project);
	}
	/** A copy lies where copies do, and nowhere else. */
	bool AcceptCopy(std::string& Path) const
	{
		Follow(Path, OldProject, Project);
		return IsBelow(Path, Copies);
	}
	/** A backup lies in the backup folder, and nowhere else. */
	bool AcceptBackup(std::string& Path) const
	{
		Follow(Path, OldFolder, Folder);
		return IsBelow(Path, Folder);
	}

private:
	std::string Project;
	std::string Folder;
	std::string Copies;
	std::string OldProject;
	std::string OldFolder;

	static void Follow(std::string& Path, std::string_view From, std::string_view To)
	{
		if (!From.empty() && FQVString::StartsWithIgnoreCase(Path, std::string(From) + "/"))
		{
			Path = std::string(To).append(Path, From.size());
		}
	}
};

/** A path that leads out of where it may lead; empty if there is none. */
std::string FindStrayPath(std::string_view PluginName, FQVImportResult& Result)
{
	const FManifestPaths Paths(PluginName, Result.Backups);
	for (FQVImportBackup& Backup : Result.Backups)
	{
		if (!Paths.Accept(Backup.Original))
		{
			return Backup.Original;
		}
		if (!Paths.AcceptBackup(Backup.Backup))
		{
			return Backup.Backup;
		}
	}
	for (FQVImportedPackage& Package : Result.Imported)
	{
		if (!Package.File.empty() && !Paths.AcceptCopy(Package.File))
		{
			return Package.File;
		}
	}
	return {};
}

void ReadLists(const FQVJson& Json, FQVImportResult& Out)
{
	ForEachObject(Json, "backups",
		[&Out](const FQVJson& Entry)
		{
			Out.Backups.push_back({FQVName(Entry.GetString("package")), Entry.GetString("original"),
				Entry.GetString("backup"), FQVFileStamp()});
		});
	ForEachObject(Json, "imported",
		[&Out](const FQVJson& Entry)
		{
			Out.Imported.push_back({FQVName(Entry.GetString("source")), FQVName(Entry.GetString("imported")),
				Entry.GetString("file"), FQVFileStamp()});
		});
}

/** Written as text, since a number of JSON has not enough digits for a time. */
std::int64_t ReadInteger(const FQVJson& Entry, std::string_view Key)
{
	const std::string Text = Entry.GetString(Key);
	std::int64_t Value = -1;
	std::from_chars(Text.data(), Text.data() + Text.size(), Value);
	return Value;
}

void ReadStamps(std::string_view PluginName, FQVImportResult& Result)
{
	FQVJson Json;
	bool bThere = false;
	if (!LoadJson(StampsPath(PluginName), Json, bThere))
	{
		return;
	}
	std::map<std::string, FQVFileStamp> Stamps;
	ForEachObject(Json, "files",
		[&Stamps](const FQVJson& Entry) {
			Stamps[Entry.GetString("name")] = {ReadInteger(Entry, "size"), FQVDateTime(ReadInteger(Entry, "ticks"))};
		});
	for (FQVImportBackup& Backup : Result.Backups)
	{
		Backup.Saved = Stamps[Backup.Package.ToString()];
	}
	for (FQVImportedPackage& Copy : Result.Imported)
	{
		Copy.Saved = Stamps[Copy.Imported.ToString()];
	}
}
} // namespace

bool FQVMapImportJournal::HasCopies(std::string_view PluginName)
{
	bool bFound = false;
	FQVEngine::Get().Files->IterateDirectoryRecursively(FQVMapImportPaths::GetCopiesFolder(PluginName),
		[&bFound](std::string_view, bool bIsDirectory)
		{
			bFound = bFound || !bIsDirectory;
			return !bFound;
		});
	return bFound;
}

std::vector<std::string> FQVMapImportJournal::ListPlugins()
{
	std::vector<std::string> Names;
	FQVEngine::Get().Files->IterateDirectory(FQVMapImportPaths::GetJournalRoot(),
		[&Names](std::string_view Path, bool bIsDirectory)
		{
			if (bIsDirectory)
			{
				Names.emplace_back(FQVPath::GetCleanFilename(Path));
			}
			return true;
		});
	std::sort(Names.begin(), Names.end());
	return Names;
}

bool FQVMapImportJournal::WriteImportManifest(std::string_view PluginName, const FQVImportResult& Result)
{
	const FQVJson Json = FQVJson::Object()
							 .Set("schema_version", SchemaVersion)
							 .Set("plugin", PluginName)
							 .Set("created", FQVEngine::Get().Clock->UtcNow().ToIso8601())
							 .Set("backups", BackupsToJson(Result.Backups))
							 .Set("imported", ImportedToJson(Result.Imported));
	return FQVEngine::Get().Files->SaveStringToFile(
		Json.ToPrettyString(), FQVMapImportPaths::GetManifestPath(PluginName));
}

bool FQVMapImportJournal::ReadImportManifest(std::string_view PluginName, FQVImportResult& OutResult)
{
	FQVJson Json;
	bool bThere = false;
	if (!LoadJson(FQVMapImportPaths::GetManifestPath(PluginName), Json, bThere))
	{
		if (bThere)
		{
			QVLog(EQVLogVerbosity::Warning, "QVMap: Import manifest for %s is unreadable", PluginName);
		}
		return false;
	}
	const auto Schema = static_cast<std::int32_t>(std::clamp(Json.TryNumber("schema_version").value_or(0), -1e9, 1e9));
	if (Schema != SchemaVersion)
	{
		QVLog(EQVLogVerbosity::Warning, "QVMap: Import manifest for %s is schema %d, expected %d - leaving it alone",
			PluginName, Schema, SchemaVersion);
		return false;
	}
	FQVImportResult Result;
	ReadLists(Json, Result);
	if (const std::string Stray = FindStrayPath(PluginName, Result); !Stray.empty())
	{
		QVLog(EQVLogVerbosity::Warning,
			"QVMap: Import manifest for %s names a path outside of where it may lead - leaving it alone: %s",
			PluginName, Stray);
		return false;
	}
	ReadStamps(PluginName, Result);
	OutResult.Backups = std::move(Result.Backups);
	OutResult.Imported = std::move(Result.Imported);
	return true;
}

void FQVMapImportJournal::WriteStamps(std::string_view PluginName, const FQVImportResult& Result)
{
	FQVJson Files = FQVJson::Array();
	const auto Add = [&Files](FQVName Package, const FQVFileStamp& Saved)
	{
		Files.Add(FQVJson::Object()
					  .Set("name", Package.ToView())
					  .Set("size", std::to_string(Saved.Size))
					  .Set("ticks", std::to_string(Saved.Time.GetTicks())));
	};
	for (const FQVImportBackup& Backup : Result.Backups)
	{
		Add(Backup.Package, Backup.Saved);
	}
	for (const FQVImportedPackage& Copy : Result.Imported)
	{
		Add(Copy.Imported, Copy.Saved);
	}
	FQVEngine::Get().Files->SaveStringToFile(
		FQVJson::Object().Set("files", std::move(Files)).ToPrettyString(), StampsPath(PluginName));
}
