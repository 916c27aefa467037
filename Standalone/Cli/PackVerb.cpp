// SPDX-License-Identifier: MIT
#include "Content/QVMapDependencyAnalyzer.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Core/QVText.h"
#include "Export/QVMapImportPaths.h"
#include "Export/QVMapImportScope.h"
#include "Export/QVMapLastExport.h"
#include "Export/QVMapPipeline.h"
#include "Standalone/Cli/NearestWord.h"
#include "Standalone/Cli/PackDryRun.h"
#include "Standalone/Cli/ProgressTasks.h"
#include "Standalone/Cli/RegistryScan.h"
#include "Standalone/Cli/Session.h"
#include "Standalone/Cli/StandInNote.h"
#include "Workspace/QVMapConfig.h"
#include "Workspace/QVMapPaths.h"

namespace QVCli
{
namespace
{
constexpr std::int32_t ExportVersion = 1;

struct FPackOptions
{
	std::string Mod;
	std::string StartMap;
	/** The mod that was probably meant, if there is none of that name. */
	std::string NearestMod;
	/** The project has that mod. */
	bool bKnown = false;
	bool bDryRun = false;
};

/** The map's game path, from its name, package name or game path; empty if the mod has no such map. */
std::string ResolveStartMap(const FQVModInfo& Mod, std::string_view Wanted)
{
	for (const FQVMapInfo& Map : Mod.Maps)
	{
		for (const std::string& Name : {Map.Name, Map.CookPath, Map.GamePath})
		{
			if (FQVString::EqualsIgnoreCase(Name, Wanted))
			{
				return Map.GamePath;
			}
		}
	}
	return {};
}

std::vector<std::string> ModNames(const FQVScanResult& Scan)
{
	std::vector<std::string> Names;
	for (const FQVModInfo& Mod : Scan.Mods)
	{
		Names.push_back(Mod.Name);
	}
	return Names;
}

/** Turns what the user typed into what the export takes; false, with the error told, if that cannot be. */
bool ResolveArguments(FConsole& Console, FPackOptions& Options)
{
	const FQVScanResult Scan = FQVMapScanner::ScanMods();
	const FQVModInfo* Mod = Scan.Find(Options.Mod);
	if (Mod == nullptr)
	{
		// what exactly is wrong with it, the export says better; a likely typing mistake is for us to see
		Options.NearestMod = NearestWord(Options.Mod, ModNames(Scan));
		return true;
	}
	Options.bKnown = true;
	Options.Mod = Mod->Name;
	if (Options.StartMap.empty())
	{
		return true;
	}
	const std::string StartMap = ResolveStartMap(*Mod, Options.StartMap);
	if (StartMap.empty())
	{
		Console.Fail(QVPrintf("%s has no map '%s': see qvmap maps", Mod->Name, Options.StartMap));
		return false;
	}
	Options.StartMap = StartMap;
	return true;
}

FQVJson ToJson(const FPackOptions& Options, const FQVExportResult& Result, const FQVLastExportRecord& Record)
{
	const FQVPakContentSummary& Content = Result.Content;
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("mod", Options.Mod)
		.Set("success", Result.bSuccess)
		.Set("failed_stage", Record.FailedStage)
		.Set("error", Result.ErrorMessage)
		.Set("pak", Result.PakPath)
		.Set("pak_bytes", Content.PakBytes)
		.Set("files", Content.FileCount)
		.Set("map_files", Content.MapFiles)
		.Set("payload_files", Content.PayloadFiles)
		.Set("shader_archives", Content.ShaderArchives)
		.Set("filter_unused_active", Record.bFilterUnusedActive)
		.Set("files_skipped", Record.FilesSkipped)
		.Set("unpackable_files", FQVJson::Array(Content.UnpackableFiles))
		.Set("log", Record.LogPath);
}

void PrintText(FConsole& Console, const FQVExportResult& Result, const FQVLastExportRecord& Record)
{
	Console.Result(QVPrintf("pak  %s", Result.PakPath));
	Console.Result(QVPrintf("     %s", Result.Content.Describe()));
	if (Record.bFilterUnusedActive)
	{
		Console.Result(QVPrintf("     %d file(s) that no map uses were left out", Record.FilesSkipped));
	}
	Console.Result(QVPrintf("log  %s", Record.LogPath.empty() ? "(could not be written)" : Record.LogPath));
}

/** The record of this run; an empty one if it could not be written, since then an older run's lies in its place. */
FQVLastExportRecord ReadRecord(const FQVExportResult& Result)
{
	FQVLastExportRecord Record;
	const bool bOfThisRun = FQVMapLastExport::ReadLastExportRecord(Record) && Record.bSuccess == Result.bSuccess &&
							Record.ErrorMessage == Result.ErrorMessage && Record.PakPath == Result.PakPath;
	return bOfThisRun ? Record : FQVLastExportRecord();
}

void TellFailure(FSession& Session, const FPackOptions& Options, const std::string& Error)
{
	const bool bOfBaseRelease = Error.find("Build Base Release") != std::string::npos;
	// the last paragraph tells of a menu, which there is none of here
	Session.TellFailure(bOfBaseRelease ? Error.substr(0, Error.rfind("\n\n")) : Error);
	if (bOfBaseRelease)
	{
		Session.Console.Say("  fix: qvmap base-release build");
	}
	if (!Options.NearestMod.empty())
	{
		Session.Console.Say(QVPrintf("  did you mean '%s'?", Options.NearestMod));
	}
}

/** What the export is to keep; empty for all. What a package that cannot be read refers to is not known. */
FQVNameSet FindUsedPackages(FSession& Session, const std::string& Mod)
{
	const std::string Content = FQVPath::Combine(FQVMapPaths::GetPluginsDir(), Mod, "Content/");
	for (const QVStandalone::FUnreadablePackage& Unreadable : Session.Engine.GetAssetRegistry().GetUnreadable())
	{
		if (FQVString::StartsWithIgnoreCase(Unreadable.File, Content))
		{
			Session.Console.Warn(
				QVPrintf("nothing is left out of the pak, since it is not known what this refers to: %s %s",
					Unreadable.File, Unreadable.Reason));
			return {};
		}
	}
	return FQVMapDependencyAnalyzer::GatherUsedPackages(Mod);
}

/** What the mod needs for the length of the pack: nobody else at it, and what it uses from elsewhere. */
class FPackPreparation
{
public:
	/** False, with the reason told, if it cannot be had. */
	bool Prepare(FSession& Session, const std::string& Mod)
	{
		// without a base release there will be no pack, which the export says
		if (!FQVMapConfig::GetImportExternalAssets() || !FQVMapPaths::IsBaseReleaseValid())
		{
			Lock = FQVMapPackLock(Mod);
			return Lock.IsHeld() || Refuse(Session, Lock.GetObstacle());
		}
		FProgressTasks Tasks(Session.Console, "importing");
		Session.Engine.Interfaces.SlowTasks = &Tasks;
		Import.emplace(Mod);
		Session.Engine.Interfaces.SlowTasks = nullptr;
		return Import->GetResult().bSuccess || Refuse(Session, Import->GetResult().ErrorMessage);
	}

	/** The project is as it was again. False, with where to find the originals told, if it is not. */
	bool Finish(FSession& Session, const std::string& Mod)
	{
		Import.reset();
		const std::string Journal = FQVMapImportPaths::GetJournalFolder(Mod);
		if (!Session.Engine.Interfaces.Files->FileExists(FQVMapImportPaths::GetManifestPath(Mod)))
		{
			return true;
		}
		Session.Console.Fail(
			QVPrintf("%s could not be put back as it was. Its original files are in %s", Mod, Journal));
		Session.Console.Say("  fix: qvmap recover");
		return false;
	}

private:
	FQVMapPackLock Lock;
	std::optional<FQVImportScope> Import;

	static bool Refuse(FSession& Session, const std::string& Reason)
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: Could not bring outside content in: %s", Reason);
		Session.TellFailure(Reason);
		return false;
	}
};

EExitCode TellUnknown(FSession& Session, const FPackOptions& Options)
{
	TellFailure(Session, Options, QVPrintf("there is no mod '%s': see qvmap maps", Options.Mod));
	return EExitCode::Failed;
}

EExitCode Pack(FCommandLine& Line, FPackOptions Options)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	if (Session == nullptr || !ResolveArguments(Session->Console, Options))
	{
		return EExitCode::Failed;
	}
	FConsole& Console = Session->Console;
	const bool bKnown = Options.bKnown;
	const bool bAsksRegistry =
		Options.bDryRun || FQVMapConfig::GetImportExternalAssets() || FQVMapConfig::GetFilterUnusedAssets();
	FPackPreparation Preparation;
	FQVNameSet UsedPackages;
	if (bKnown && bAsksRegistry && !ScanRegistry(*Session))
	{
		return EExitCode::Failed;
	}
	if (Options.bDryRun)
	{
		return bKnown ? TellImportPlan(*Session, Options.Mod, Line.Options.bJson) : TellUnknown(*Session, Options);
	}
	if (bKnown && !Preparation.Prepare(*Session, Options.Mod))
	{
		return EExitCode::Failed;
	}
	if (bKnown && FQVMapConfig::GetFilterUnusedAssets())
	{
		UsedPackages = FindUsedPackages(*Session, Options.Mod);
	}
	FQVExportResult Result;
	const FQVExportProgress Progress([&Console](std::string_view Stage, float Fraction, std::string_view Message)
		{ Console.Progress(Stage, Fraction, Message); });
	Session->RunBlocking([&]
		{ Result = FQVMapPipeline::ExportMod(Options.Mod, ExportVersion, UsedPackages, Progress, Options.StartMap); });

	const bool bWhole = !bKnown || Preparation.Finish(*Session, Options.Mod);
	const FQVLastExportRecord Record = ReadRecord(Result);
	if (Line.Options.bJson)
	{
		Console.Document(ToJson(Options, Result, Record).Set("project_put_back", bWhole));
	}
	if (!Result.bSuccess)
	{
		TellFailure(*Session, Options, Result.ErrorMessage);
		return EExitCode::Failed;
	}
	Console.Succeed();
	if (Result.Content.HasProblem())
	{
		Console.Warn("the pak may not work:\n" + Result.Content.DescribeProblems());
	}
	SayIfStandIn(*Session);
	if (!Line.Options.bJson)
	{
		PrintText(Console, Result, Record);
	}
	return bWhole ? EExitCode::Done : EExitCode::Failed;
}
} // namespace

void AddPackVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FPackOptions>();
	CLI::App* Verb = Line.AddVerb(Line.App, "pack", "Cooks a mod and packs it into one .pak", "qvmap pack Harbor",
		[&Line, Options] { return Pack(Line, *Options); });
	Verb->add_option("mod", Options->Mod, "The mod: a folder's name below Plugins")->required()->type_name("MOD");
	Verb->add_option("--start-map", Options->StartMap, "The map that the game starts with, one of the mod's")
		->type_name("MAP");
	Verb->add_flag("--dry-run", Options->bDryRun,
		"Only say what the pack would bring in from elsewhere in the project and what it would change meanwhile");
	Line.AddFormat(*Verb);
}
} // namespace QVCli
