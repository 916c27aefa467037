// SPDX-License-Identifier: MIT
#include "Core/QVString.h"
#include "Standalone/Cli/DotText.h"
#include "Standalone/Cli/Graphviz.h"
#include "Standalone/Cli/ReferenceReport.h"
#include "Standalone/Cli/RegistryScan.h"
#include "Standalone/Cli/Session.h"
#include "Standalone/Cli/SvgDrawing.h"
#include "Standalone/Cli/TypedPath.h"
#include "Standalone/EngineTools/RawFile.h"

#include <span>

namespace QVCli
{
using namespace QVFormats;

namespace
{
struct FReferencesOptions
{
	std::string Map;
	std::string Format = "text";
	std::string Output;
	std::string Layout = "auto";
	bool bAll = false;
};

/** Beyond these Graphviz takes long, and its picture has no shape that a screen has. */
constexpr std::size_t MostNodesForGraphviz = 60;
constexpr std::size_t MostEdgesForGraphviz = 150;

TResult<std::string> Draw(const FReferencesOptions& Options, const FReferenceGraph& Graph)
{
	const bool bSmall = Graph.Nodes.size() <= MostNodesForGraphviz && Graph.Edges.size() <= MostEdgesForGraphviz;
	const bool bForced = Options.Layout == "graphviz";
	const std::string Graphviz = bForced || (Options.Layout == "auto" && bSmall) ? FindGraphviz() : std::string();
	if (!Graphviz.empty())
	{
		return DrawWithGraphviz(Graphviz, ToDot(Graph));
	}
	if (bForced)
	{
		return FError{"Graphviz' program 'dot' is in none of the folders of PATH: install it, or use --layout own"};
	}
	return ToSvg(Graph);
}

TResult<std::string> Render(const FReferencesOptions& Options, const FReferenceReport& Report)
{
	if (Options.Format == "json")
	{
		return FQVString::ReplaceAll(ToJson(Report).ToPrettyString(), "\r\n", "\n") + "\n";
	}
	if (Options.Format == "text")
	{
		return ToText(Report, Options.bAll);
	}
	const FReferenceGraph Graph = MakeReferenceGraph(Report.Mod, Report.Audit, Options.bAll);
	return Options.Format == "dot" ? TResult<std::string>(ToDot(Graph)) : Draw(Options, Graph);
}

/** To the file, or to standard output. */
FStatus Deliver(FConsole& Console, const FReferencesOptions& Options, std::string_view Text)
{
	if (!Options.Output.empty())
	{
		return QVEngineTools::WriteRawFile(FullPath(Options.Output), std::as_bytes(std::span(Text)));
	}
	Console.Result(Text.substr(0, Text.size() - (Text.ends_with('\n') ? 1 : 0)));
	return Success();
}

/** Warnings name each, and say why; what that means for this result they do not. */
void TellUnreadable(FConsole& Console, const FReferenceReport& Report)
{
	const std::size_t Count = Report.Unreadable.size();
	if (Count != 0)
	{
		Console.Say(QVPrintf("note: %s could not be read: what %s to is not known",
			Count == 1 ? std::string("1 package") : QVPrintf("%d packages", Count),
			Count == 1 ? "it refers" : "they refer"));
	}
}

void TellNextSteps(FConsole& Console, const FReferenceReport& Report)
{
	if (!Report.Audit.LeftoverRedirectors.empty())
	{
		Console.Say(QVPrintf("  fix: qvmap redirectors fix %s", Report.Mod));
	}
	if (!Report.Audit.UntrustedExternal.empty())
	{
		Console.Say(QVPrintf("  fix: move what is missing in the game below /%s/", Report.Mod));
	}
}

EExitCode ShowReferences(FCommandLine& Line, FReferencesOptions Options)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	if (Session == nullptr || !ResolveMod(*Session, Options.Map) || !ScanRegistryOnce(*Session))
	{
		return EExitCode::Failed;
	}
	FReferenceReport Report{Options.Map, FQVMapReferenceAudit::AuditReferences(Options.Map), {}};
	if (!Report.Audit.bSuccess)
	{
		Session->TellFailure(Report.Audit.ErrorMessage);
		return EExitCode::Failed;
	}
	Report.Unreadable = Session->Engine.GetAssetRegistry().GetUnreadable();
	const TResult<std::string> Text = Render(Options, Report);
	const FStatus Delivered = Text ? Deliver(Session->Console, Options, *Text) : FStatus(Text.Error());
	if (!Delivered)
	{
		Session->TellFailure(Delivered.Error().Message);
		return EExitCode::Failed;
	}
	TellUnreadable(Session->Console, Report);
	TellNextSteps(Session->Console, Report);
	return EExitCode::Done;
}
} // namespace

void AddReferencesVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FReferencesOptions>();
	CLI::App* Verb = Line.AddVerb(Line.App, "references", "What a mod's maps reach, and what of that the game lacks",
		"qvmap references Harbor --format svg --output Harbor.svg",
		[&Line, Options] { return ShowReferences(Line, *Options); });
	Verb->add_option("map", Options->Map, "A mod, or a map of one")->required()->type_name("MAP");
	Verb->add_option_function<std::string>(
			"--format",
			[&Line, Options](const std::string& Format)
			{
				Options->Format = Format;
				Line.Options.bJson = Format == "json";
			},
			"text, json, or the graph: dot for Graphviz, svg as a picture")
		->check(CLI::IsMember({"text", "json", "dot", "svg"}));
	Verb->add_option("-o,--output", Options->Output, "The file to write, in place of standard output")
		->type_name("FILE");
	Verb->add_option("--layout", Options->Layout,
			"How to draw: auto, own, or graphviz. auto is Graphviz for a small graph if it is installed")
		->check(CLI::IsMember({"auto", "own", "graphviz"}));
	Verb->add_flag("--all", Options->bAll, "Each package, also those of the mod and those that are in every game");
}
} // namespace QVCli
