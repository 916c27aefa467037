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
};

std::vector<FPending> FindPending()
{
	std::vector<FPending> All;
	for (const std::string& Mod : FQVMapImportJournal::ListPlugins())
	{
		FPending& Each = All.emplace_back();
		Each.Mod = Mod;
		Each.bReadable = FQVMapImportJournal::ReadImportManifest(Mod, Each.Import);
	}
	return All;
}

/** Copies that a pack which was cut off while it saved them could not note any more. */
std::vector<std::string> FindStrayCopies(const std::vector<FPending>& Pending)
{
	std::vector<std::string> Strays;
	FQVEngine::Get().Files->IterateDirectory(FQVMapPaths::GetPluginsDir(),
		[&](std::string_view Plugin, bool bIsDirectory)
		{
			const std::string_view Mod = FQVPath::GetCleanFilename(Plugin);
			const bool bUndone = std::all_of(Pending.begin(), Pending.end(),
				[Mod](const FPending& Each) { return Each.Mod != Mod || Each.bRecovered; });
			if (bIsDirectory && bUndone && FQVMapImportJournal::HasCopies(Mod))
			{
				Strays.push_back(FQVMapImportPaths::GetCopiesFolder(Mod));
			}
			return true;
		});
	return Strays;
}

FQVJson ToJson(const std::vector<FPending>& Pending, const std::vector<std::string>& Strays)
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
					 .Set("originals", std::move(Files))
					 .Set("copies", Each.Import.Imported.size())
					 .Set("backup_folder", FQVMapImportPaths::GetJournalFolder(Each.Mod)));
	}
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("interrupted", std::move(List))
		.Set("stray_copies", FQVJson::Array(Strays));
}

void PrintOne(FConsole& Console, const FPending& Each, bool bDryRun)
{
	if (!Each.bReadable)
	{
		Console.Result(QVPrintf(
			"%s: left alone; its originals are in %s", Each.Mod, FQVMapImportPaths::GetJournalFolder(Each.Mod)));
		return;
	}
	const std::string_view Did = Each.bRecovered ? "put back" : bDryRun ? "would be put back" : "NOT put back";
	Console.Result(QVPrintf("%s: %d file(s) %s, %d copy(s) to delete", Each.Mod, Each.Import.Backups.size(), Did,
		Each.Import.Imported.size()));
	for (const FQVImportBackup& Backup : Each.Import.Backups)
	{
		Console.Result("  " + Backup.Original);
	}
}

void PrintStrays(FConsole& Console, const std::vector<std::string>& Strays, bool bRemoved)
{
	for (const std::string& Folder : Strays)
	{
		Console.Result(QVPrintf("%s: %s", Folder,
			bRemoved ? "deleted" : "copies that an interrupted pack left; qvmap recover --remove-copies deletes them"));
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
	const std::vector<std::string> Strays = FindStrayCopies(Pending);
	bool bRemoved = Options.bRemoveCopies && !Options.bDryRun;
	for (const std::string& Folder : Strays)
	{
		bRemoved = bRemoved && Session->Engine.Interfaces.Files->DeleteDirectory(Folder);
	}
	if (Line.Options.bJson)
	{
		Console.Document(ToJson(Pending, Strays));
	}
	else
	{
		for (const FPending& Each : Pending)
		{
			PrintOne(Console, Each, Options.bDryRun);
		}
		PrintStrays(Console, Strays, bRemoved);
		if (Pending.empty() && Strays.empty())
		{
			Console.Result("Nothing to put back.");
		}
	}
	if (!bAllGood || (Options.bRemoveCopies && !Options.bDryRun && !bRemoved && !Strays.empty()))
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
