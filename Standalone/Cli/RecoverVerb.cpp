// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"
#include "Engine/QVFiles.h"
#include "Export/QVMapImportJournal.h"
#include "Export/QVMapImportPaths.h"
#include "Export/QVMapImportRestore.h"
#include "Standalone/Cli/Session.h"
#include "Workspace/QVMapPaths.h"

#include <algorithm>

namespace QVCli
{
namespace
{
struct FRecoverOptions
{
	bool bDryRun = false;
	bool bRemoveCopies = false;
};

/** One unfinished pack, before anything is done about it. */
struct FPending
{
	std::string Mod;
	bool bReadable = false;
	FQVImportResult Import;
	bool bRecovered = false;
	/** Of originals, how many have a backup. */
	std::size_t Backups = 0;
};

/** Copies that a pack which was cut off while it saved them could not note any more. */
struct FStrayCopies
{
	std::string Folder;
	bool bRemoved = false;
};

std::vector<FPending> FindPending()
{
	std::vector<FPending> All;
	for (const std::string& Mod : FQVMapImportJournal::ListPlugins())
	{
		FPending& Each = All.emplace_back();
		Each.Mod = Mod;
		Each.bReadable = FQVMapImportJournal::ReadImportManifest(Mod, Each.Import);
		for (const FQVImportBackup& Backup : Each.Import.Backups)
		{
			Each.Backups += FQVEngine::Get().Files->FileExists(Backup.Backup) ? 1 : 0;
		}
	}
	return All;
}

/** Nothing of it is left to be put back. */
bool IsOver(const FPending& Each)
{
	return Each.bRecovered || !FQVEngine::Get().Files->FileExists(FQVMapImportPaths::GetManifestPath(Each.Mod));
}

/** What stands in the way of a mod that is not recovered, for the user. */
std::string DescribeObstacle(const FPending& Each)
{
	if (!FQVMapPackLock(Each.Mod).IsHeld())
	{
		return "being packed by another run: left alone";
	}
	const std::string Folder = FQVMapImportPaths::GetJournalFolder(Each.Mod);
	if (IsOver(Each))
	{
		return QVPrintf("nothing of it was changed yet; what is left in %s can be deleted", Folder);
	}
	return QVPrintf("%s; its originals are in %s", Each.bReadable ? "NOT put back" : "left alone", Folder);
}

/** Under the mod's lock, since a pack that runs has its copies there too. */
bool RemoveCopies(const std::string& Mod)
{
	const FQVMapPackLock Lock(Mod);
	const IQVFiles& Files = *FQVEngine::Get().Files;
	return Lock.IsHeld() && !Files.FileExists(FQVMapImportPaths::GetManifestPath(Mod)) &&
		   FQVEngine::Get().Files->DeleteDirectory(FQVMapImportPaths::GetCopiesFolder(Mod));
}

std::vector<FStrayCopies> FindStrayCopies(const std::vector<FPending>& Pending, bool bRemove)
{
	std::vector<FStrayCopies> Strays;
	FQVEngine::Get().Files->IterateDirectory(FQVMapPaths::GetPluginsDir(),
		[&](std::string_view Plugin, bool bIsDirectory)
		{
			const std::string Mod(FQVPath::GetCleanFilename(Plugin));
			const bool bUndone = std::all_of(Pending.begin(), Pending.end(),
				[&Mod](const FPending& Each) { return Each.Mod != Mod || Each.bRecovered; });
			if (bIsDirectory && bUndone && FQVMapImportJournal::HasCopies(Mod))
			{
				Strays.push_back({FQVMapImportPaths::GetCopiesFolder(Mod), bRemove && RemoveCopies(Mod)});
			}
			return true;
		});
	return Strays;
}

FQVJson ToJson(const std::vector<FPending>& Pending, const std::vector<FStrayCopies>& Strays)
{
	FQVJson List = FQVJson::Array();
	for (const FPending& Each : Pending)
	{
		FQVJson Files = FQVJson::Array();
		for (const FQVImportBackup& Backup : Each.Import.Backups)
		{
			Files.Add(FQVJson(Backup.Original));
		}
		List.Add(FQVJson::Object()
					 .Set("mod", Each.Mod)
					 .Set("readable", Each.bReadable)
					 .Set("recovered", Each.bRecovered)
					 .Set("obstacle", Each.bRecovered ? std::string() : DescribeObstacle(Each))
					 .Set("originals", std::move(Files))
					 .Set("copies", Each.Import.Imported.size())
					 .Set("backup_folder", FQVMapImportPaths::GetJournalFolder(Each.Mod)));
	}
	FQVJson Copies = FQVJson::Array();
	for (const FStrayCopies& Each : Strays)
	{
		Copies.Add(FQVJson::Object().Set("folder", Each.Folder).Set("removed", Each.bRemoved));
	}
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("interrupted", std::move(List))
		.Set("stray_copies", std::move(Copies));
}

void PrintOne(FConsole& Console, const FPending& Each, bool bDryRun)
{
	if (!Each.bRecovered && !(bDryRun && Each.bReadable))
	{
		Console.Result(QVPrintf("%s: %s", Each.Mod, DescribeObstacle(Each)));
		return;
	}
	Console.Result(QVPrintf("%s: %d of %d file(s) %s, %d copy(s) %s", Each.Mod, Each.Backups,
		Each.Import.Backups.size(), bDryRun ? "would be put back" : "put back", Each.Import.Imported.size(),
		bDryRun ? "would be deleted" : "deleted"));
	for (const FQVImportBackup& Backup : Each.Import.Backups)
	{
		Console.Result("  " + Backup.Original);
	}
}

void PrintText(
	FConsole& Console, const std::vector<FPending>& Pending, const std::vector<FStrayCopies>& Strays, bool bDryRun)
{
	for (const FPending& Each : Pending)
	{
		PrintOne(Console, Each, bDryRun);
	}
	for (const FStrayCopies& Each : Strays)
	{
		Console.Result(QVPrintf("%s: %s", Each.Folder,
			Each.bRemoved ? "deleted"
						  : "copies that an interrupted pack left; qvmap recover --remove-copies deletes them"));
	}
	if (Pending.empty() && Strays.empty())
	{
		Console.Result("Nothing to put back.");
	}
}

EExitCode Recover(FCommandLine& Line, const FRecoverOptions& Options)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line, FSession::ERecovery::None);
	if (Session == nullptr)
	{
		return EExitCode::Failed;
	}
	FConsole& Console = Session->Console;
	std::vector<FPending> Pending = FindPending();
	std::vector<std::string> Recovered;
	const bool bAllGood = Options.bDryRun || FQVMapImportRestore::RecoverInterruptedImports(Recovered);
	for (FPending& Each : Pending)
	{
		Each.bRecovered = std::find(Recovered.begin(), Recovered.end(), Each.Mod) != Recovered.end();
	}
	const bool bRemove = Options.bRemoveCopies && !Options.bDryRun;
	const std::vector<FStrayCopies> Strays = FindStrayCopies(Pending, bRemove);
	Line.Options.bJson ? Console.Document(ToJson(Pending, Strays))
					   : PrintText(Console, Pending, Strays, Options.bDryRun);
	const bool bRemoved =
		!bRemove || std::all_of(Strays.begin(), Strays.end(), [](const FStrayCopies& Each) { return Each.bRemoved; });
	const bool bRecovered = Options.bDryRun || std::all_of(Pending.begin(), Pending.end(), IsOver);
	if (!bAllGood || !bRemoved || !bRecovered)
	{
		Console.Fail("not everything could be put back: see above, close what holds the files, then run it again");
		return EExitCode::Failed;
	}
	Console.Succeed();
	return EExitCode::Done;
}
} // namespace

void AddRecoverVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FRecoverOptions>();
	CLI::App* Verb = Line.AddVerb(Line.App, "recover", "Puts back what an interrupted pack left changed",
		"qvmap recover --dry-run", [&Line, Options] { return Recover(Line, *Options); });
	Verb->add_flag("--dry-run", Options->bDryRun, "Only say what would be put back");
	Verb->add_flag("--remove-copies", Options->bRemoveCopies,
		"Also delete copies that a pack cut off in the middle of saving them left in a mod");
	Line.AddFormat(*Verb);
}
} // namespace QVCli
