// SPDX-License-Identifier: MIT
#include "Core/QVString.h"
#include "Diagnostics/QVMapDiagnostics.h"
#include "Engine/QVWorld.h"
#include "Standalone/Cli/CheckReport.h"
#include "Standalone/Cli/MapChoice.h"
#include "Standalone/Cli/ProgressTasks.h"
#include "Standalone/Cli/RegistryScan.h"
#include "Standalone/Cli/TypedPath.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/EngineTools/RawFile.h"
#include "Workspace/QVMapPaths.h"

#include <span>

namespace QVCli
{
using namespace QVFormats;

namespace
{
struct FCheckOptions
{
	std::string Map;
	std::string Format = "text";
	std::string FailOn = "error";
	std::string Output;
	std::string Sublevels = "all";
};

/** The map as the editor's open world; what stands in the way becomes a finding. */
const IQVWorld* OpenMap(FSession& Session, const FMapChoice& Target, bool bSublevels, FQVDiagnosticFindings& Findings)
{
	if (Target.Package.empty())
	{
		return nullptr;
	}
	const FStatus Opened = Session.Engine.OpenMap(Target.Package, {bSublevels});
	if (!Opened)
	{
		Findings.push_back(FQVDiagnosticModel::MakeFinding(EQVDiagCategory::ModContent, EQVDiagSeverity::Error,
			"Content.MapReadable", FQVDiagnosticModel::Text("ContentReadableTitle", "Map file readable"),
			FQVText::FromString(Opened.Error().Message),
			FQVDiagnosticModel::Text("ContentReadableRemedy",
				"What stands in the map was not checked. Restore the file, or open and save the map in the editor.")));
		return nullptr;
	}
	return FQVEngine::Get().Editor->GetOpenWorld();
}

FCheckReport RunCheck(FSession& Session, const FMapChoice& Target, bool bSublevels)
{
	FProgressTasks Tasks(Session.Console, "checking");
	Session.Engine.Interfaces.SlowTasks = &Tasks;
	FQVDiagnosticFindings Findings;
	FQVDiagnosticOptions Options = FQVDiagnosticOptions::Everything();
	Options.ModName = Target.Mod;
	Options.World = OpenMap(Session, Target, bSublevels, Findings);
	FCheckReport Report{FQVMapDiagnostics::RunDiagnostics(Options), Target.Package, {}};
	Session.Engine.Interfaces.SlowTasks = nullptr;
	Report.Report.Findings.insert(Report.Report.Findings.end(), Findings.begin(), Findings.end());
	const std::string Repository = FindRepository(FQVMapPaths::GetProjectDir());
	Report.Root = Repository.empty() ? FQVMapPaths::GetProjectDir() : Repository;
	return Report;
}

std::string Document(const FQVJson& Json)
{
	return FQVString::ReplaceAll(Json.ToPrettyString(), "\r\n", "\n") + "\n";
}

std::string Render(const FCheckReport& Report, const std::string& Format)
{
	if (Format == "json")
	{
		return Document(ToJson(Report));
	}
	if (Format == "sarif")
	{
		return Document(ToSarif(Report, QVMAP_VERSION));
	}
	if (Format == "html")
	{
		return ToHtml(Report);
	}
	return Format == "github" ? ToGithub(Report) : ToText(Report);
}

FStatus Deliver(FConsole& Console, const FCheckOptions& Options, std::string_view Text)
{
	Console.MarkDocumentShown();
	if (!Options.Output.empty())
	{
		return QVEngineTools::WriteRawFile(FullPath(Options.Output), std::as_bytes(std::span(Text)));
	}
	Console.Result(Text.substr(0, Text.size() - (Text.ends_with('\n') ? 1 : 0)));
	return Success();
}

EExitCode Check(FCommandLine& Line, const FCheckOptions& Options)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	FMapChoice Target;
	if (Session == nullptr || !ChooseMap(*Session, "check", Options.Map, Target) || !ScanRegistryOnce(*Session))
	{
		return EExitCode::Failed;
	}
	const FCheckReport Report = RunCheck(*Session, Target, Options.Sublevels == "all");
	const FStatus Delivered = Deliver(Session->Console, Options, Render(Report, Options.Format));
	if (!Delivered)
	{
		Session->TellFailure(Delivered.Error().Message);
		return EExitCode::Failed;
	}
	const FCheckCounts Counts(Report.Report);
	const bool bMet = Counts.Errors > 0 || (Options.FailOn == "warning" && Counts.Warnings > 0);
	return bMet ? EExitCode::Failed : EExitCode::Done;
}
} // namespace

void AddCheckVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FCheckOptions>();
	CLI::App* Verb = Line.AddVerb(Line.App, "check", "What stands between a map and a working pak",
		"qvmap check Hall --fail-on warning", [&Line, Options] { return Check(Line, *Options); });
	Verb->add_option("map", Options->Map, "A map, or a mod with one map (default: the project's only map)")
		->type_name("MAP");
	Verb->add_option_function<std::string>(
			"--format",
			[&Line, Options](const std::string& Format)
			{
				Options->Format = Format;
				Line.Options.bJson = Format == "json";
			},
			"text, json, sarif for code scanning, html as a page, or github for a workflow's annotations")
		->check(CLI::IsMember({"text", "json", "sarif", "html", "github"}));
	Verb->add_option("--fail-on", Options->FailOn, "Exit code 1 if there is an error (default), or also a warning")
		->check(CLI::IsMember({"error", "warning"}));
	Verb->add_option("--sublevels", Options->Sublevels, "Which streamed levels count as loaded: all (default) or none")
		->check(CLI::IsMember({"all", "none"}));
	Verb->add_option("-o,--output", Options->Output, "The file to write, in place of standard output")
		->type_name("FILE");
}
} // namespace QVCli
