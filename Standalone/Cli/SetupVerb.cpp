// SPDX-License-Identifier: MIT
#include "Core/QVString.h"
#include "Diagnostics/QVMapSetupChecklist.h"
#include "Standalone/Cli/InspectReport.h"
#include "Standalone/Cli/RegistryScan.h"
#include "Standalone/Cli/Session.h"
#include "Standalone/Cli/TextColumns.h"
#include "Workspace/QVMapConfig.h"
#include "Workspace/QVMapPaths.h"

namespace QVCli
{
namespace
{
constexpr std::size_t StateColumns = 10;
constexpr std::size_t TitleColumns = 20;

/** By severity; what can be left as it is counts as done. */
std::string_view StateOf(const FQVDiagnosticFinding& Row)
{
	constexpr std::string_view States[] = {"done", "default", "advised", "missing"};
	return States[static_cast<std::size_t>(Row.Severity)];
}

/** The verb of this program that does it; empty if none does. */
std::string_view CommandFor(const FQVDiagnosticFinding& Row)
{
	if (Row.Severity < EQVDiagSeverity::Warning)
	{
		return {};
	}
	if (Row.Id == FQVName("Setup.BaseRelease"))
	{
		return "qvmap base-release build";
	}
	return Row.Id == FQVName("Setup.GameLaunch") ? "qvmap settings set game_exe_path FILE" : std::string_view();
}

void PrintText(FConsole& Console, const FQVDiagnosticFindings& Rows)
{
	const std::string Inner(StateColumns, ' ');
	for (const FQVDiagnosticFinding& Row : Rows)
	{
		Console.Result(PadColumns(StateOf(Row), StateColumns) + PadColumns(Row.Title.ToString(), TitleColumns) +
					   EscapeControls(Row.Detail.ToString()));
		const bool bToDo = Row.Severity >= EQVDiagSeverity::Warning;
		if (bToDo)
		{
			Console.Result(Inner + "fix: " + EscapeControls(Row.Remedy.ToString()));
		}
		if (!CommandFor(Row).empty())
		{
			Console.Result(Inner + "run: " + std::string(CommandFor(Row)));
		}
	}
}

FQVJson ToJson(const FQVDiagnosticFindings& Rows)
{
	FQVJson Steps = FQVJson::Array();
	for (const FQVDiagnosticFinding& Row : Rows)
	{
		Steps.Add(FQVJson::Object()
					  .Set("id", Row.Id.ToView())
					  .Set("state", StateOf(Row))
					  .Set("title", Row.Title.ToString())
					  .Set("detail", Row.Detail.ToString())
					  .Set("remedy", Row.Remedy.ToString())
					  .Set("command", CommandFor(Row)));
	}
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("project", FQVMapPaths::GetProjectFilePath())
		.Set("complete", FQVMapSetupChecklist::IsComplete(Rows))
		.Set("show_setup_on_startup", FQVMapConfig::GetShowSetupOnStartup())
		.Set("steps", std::move(Steps));
}

EExitCode ShowSetup(FCommandLine& Line)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	if (Session == nullptr || !ScanRegistry(*Session))
	{
		return EExitCode::Failed;
	}
	const FQVDiagnosticFindings Rows = FQVMapSetupChecklist::Evaluate({});
	if (Line.Options.bJson)
	{
		Session->Console.Document(ToJson(Rows));
	}
	else
	{
		PrintText(Session->Console, Rows);
	}
	return FQVMapSetupChecklist::IsComplete(Rows) ? EExitCode::Done : EExitCode::Failed;
}
} // namespace

void AddSetupVerb(FCommandLine& Line)
{
	CLI::App* Verb = Line.AddVerb(Line.App, "setup", "What is still missing before maps can be packed and played",
		"qvmap setup --project MyMaps/MyMaps.uproject", [&Line] { return ShowSetup(Line); });
	Line.AddFormat(*Verb);
}
} // namespace QVCli
