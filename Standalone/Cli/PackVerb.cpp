// SPDX-License-Identifier: MIT
#include "Core/QVString.h"
#include "Core/QVText.h"
#include "Export/QVMapLastExport.h"
#include "HandOff/QVMapPlaytest.h"
#include "Standalone/Cli/LaunchWatch.h"
#include "Standalone/Cli/MapFlow.h"
#include "Standalone/Cli/PackDryRun.h"
#include "Standalone/Cli/RegistryScan.h"
#include "Standalone/Cli/StandInNote.h"

#include <optional>

namespace QVCli
{
namespace
{
struct FPackOptions
{
	std::string Map;
	FAnswers Answers;
	bool bDryRun = false;
	/** The game is started when the pak is done. */
	bool bPlay = false;
};

/** One pack and what came of it. */
struct FPackEnd
{
	FMapChoice Map;
	FFlowEnd Flow;
	/** Set if the pak may be used. */
	std::optional<FQVExportResult> Result;
	/** Empty if no export was begun. */
	FQVLastExportRecord Record;
	/** By which way the game was reached; empty if it was not to be. */
	std::string GameWay;

	/** Empty if there is none. */
	const std::string& PakPath() const { return Result ? Result->PakPath : Record.PakPath; }
};

FQVJson ToJson(const FPackEnd& End)
{
	const FQVPakContentSummary Content = End.Result ? End.Result->Content : FQVPakContentSummary();
	const FQVLastExportRecord& Record = End.Record;
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("mod", End.Map.Mod)
		.Set("map", End.Map.Package)
		.Set("success", End.Result.has_value())
		.Set("stopped_at", End.Flow.StoppedAt)
		.Set("failed_stage", Record.FailedStage)
		.Set("error", Record.ErrorMessage.empty() ? End.Flow.Failure : Record.ErrorMessage)
		.Set("pak", End.PakPath())
		.Set("pak_bytes", Content.PakBytes)
		.Set("files", Content.FileCount)
		.Set("map_files", Content.MapFiles)
		.Set("payload_files", Content.PayloadFiles)
		.Set("shader_archives", Content.ShaderArchives)
		.Set("filter_unused_active", Record.bFilterUnusedActive)
		.Set("files_skipped", Record.FilesSkipped)
		.Set("unpackable_files", FQVJson::Array(Content.UnpackableFiles))
		.Set("log", Record.LogPath)
		.Set("project_put_back", End.Flow.bPutBack)
		.Set("game", End.GameWay);
}

void PrintText(FConsole& Console, const FPackEnd& End)
{
	Console.Result(QVPrintf("pak  %s", End.PakPath()));
	if (End.Result)
	{
		Console.Result(QVPrintf("     %s", End.Result->Content.Describe()));
	}
	if (End.Record.bFilterUnusedActive)
	{
		Console.Result(QVPrintf("     %d file(s) that no map uses were left out", End.Record.FilesSkipped));
	}
	if (End.Record.bSuccess)
	{
		Console.Result(QVPrintf("log  %s", End.Record.LogPath.empty() ? "(could not be written)" : End.Record.LogPath));
	}
}

/** The record that this run has written; an empty one if it has written none, or another mod's run did so after it. */
FQVLastExportRecord ReadNewRecord(const FQVLastExportRecord& Before, const std::string& Mod)
{
	FQVLastExportRecord Now;
	FQVMapLastExport::ReadLastExportRecord(Now);
	const bool bNew = Now.Timestamp != Before.Timestamp || Now.PakPath != Before.PakPath;
	return bNew && FQVString::EqualsIgnoreCase(Now.PluginName, Mod) ? Now : FQVLastExportRecord();
}

FPackEnd RunPack(FSession& Session, const FMapChoice& Map, const FPackOptions& Options)
{
	FPackEnd End{Map, {}, {}, {}, {}};
	FQVLastExportRecord Before;
	FQVMapLastExport::ReadLastExportRecord(Before);
	const FLaunchWatch Game(Session);
	FQVPlayRequest Request{Map.Mod, Map.Name(), Map.GamePath(), Options.bPlay, {}};
	Request.OnComplete = [&End](const FQVExportResult& Result) { End.Result = Result; };
	End.Flow = RunFlow(Session, Map, Options.Answers, [&Request] { FQVMapPlaytest::RunExport(Request); });
	End.Record = ReadNewRecord(Before, Map.Mod);
	if (Options.bPlay && End.Result)
	{
		End.GameWay = Game.GetWay();
		End.Flow.Failure = Game.Tell() ? std::string() : "the game was not started";
	}
	return End;
}

EExitCode Pack(FCommandLine& Line, const FPackOptions& Options)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	FMapChoice Map;
	if (Session == nullptr || !ChooseMap(*Session, Options.bPlay ? "play" : "pack", Options.Map, Map))
	{
		return EExitCode::Failed;
	}
	if (const std::string Obstacle = DescribeUnpackable(Map); !Obstacle.empty())
	{
		Session->TellFailure(Obstacle);
		return EExitCode::Failed;
	}
	if (Options.bDryRun)
	{
		return ScanRegistry(*Session) ? TellImportPlan(*Session, Map.Mod, Line.Options.bJson) : EExitCode::Failed;
	}
	const FPackEnd End = RunPack(*Session, Map, Options);
	FConsole& Console = Session->Console;
	if (End.Result)
	{
		Console.Succeed();
		SayIfStandIn(*Session);
	}
	if (Line.Options.bJson)
	{
		Console.Document(ToJson(End));
	}
	else if (End.Result || End.Record.bSuccess)
	{
		PrintText(Console, End);
	}
	const bool bPlayed = !Options.bPlay || End.Flow.Failure.empty();
	return End.Flow.Code(End.Result && bPlayed);
}

CLI::App* AddFlowVerb(FCommandLine& Line, const std::string& Name, const std::string& Description,
	const std::shared_ptr<FPackOptions>& Options)
{
	CLI::App* Verb =
		Line.AddVerb(Line.App, Name, Description, QVPrintf("qvmap %s Hall --answer PreflightTitle=PackAnyway", Name),
			[&Line, Options] { return Pack(Line, *Options); });
	Verb->add_option(
			"map", Options->Map, "The map that the game starts with, or a mod with one map (default: the only one)")
		->type_name("MAP");
	AddAnswers(*Verb, Options->Answers);
	Line.AddFormat(*Verb);
	return Verb;
}
} // namespace

void AddPackVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FPackOptions>();
	AddFlowVerb(Line, "pack", "Checks a map, cooks its mod and packs it into one .pak", Options)
		->add_flag("--dry-run", Options->bDryRun,
			"Only say what the pack would bring in from elsewhere in the project and what it would change meanwhile");
}

void AddPlayVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FPackOptions>();
	Options->bPlay = true;
	AddFlowVerb(Line, "play", "Packs a map and starts the game with it", Options);
}
} // namespace QVCli
