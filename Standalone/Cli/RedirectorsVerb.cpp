// SPDX-License-Identifier: MIT
#include "Content/QVMapRedirectors.h"
#include "Content/QVMapReferenceAudit.h"
#include "Core/QVString.h"
#include "Core/QVText.h"
#include "Standalone/Cli/InspectReport.h"
#include "Standalone/Cli/RegistryScan.h"
#include "Standalone/Cli/Session.h"

namespace QVCli
{
using namespace QVStandalone;

namespace
{
struct FRedirectorsOptions
{
	std::string Map;
	bool bDryRun = false;
	bool bDespiteUnreadable = false;
};

/** The redirectors that a mod's maps meet outside of it, then all that lie in the mod itself. */
std::vector<FQVAssetData> FindRedirectors(const std::string& Mod, const FQVReferenceAudit& Audit)
{
	std::vector<FQVAssetData> Found;
	for (const FQVExternalReference& Leftover : Audit.LeftoverRedirectors)
	{
		Found.push_back(Leftover.Asset);
	}
	std::vector<FQVAssetData> Inside;
	FQVEngine::Get().AssetRegistry->GetAssets({"/" + Mod, FQVName(FQVAssetData::RedirectorClass)}, Inside);
	FQVName Last;
	for (const FQVAssetData& Asset : Inside)
	{
		if (Asset.PackageName != Last) // a blueprint's has three
		{
			Found.push_back(Asset);
		}
		Last = Asset.PackageName;
	}
	return Found;
}

FQVJson NamesJson(const FRedirectorPlan& Plan, std::size_t Place)
{
	FQVJson Json = FQVJson::Array();
	for (const FReferencerFix& Referencer : Plan.Referencers)
	{
		if (std::find(Referencer.Redirectors.begin(), Referencer.Redirectors.end(), Place) !=
			Referencer.Redirectors.end())
		{
			Json.Add(FQVJson(Referencer.Package.ToString()));
		}
	}
	return Json;
}

FQVJson ToJson(const std::string& Mod, const FRedirectorPlan& Plan, bool bApplied)
{
	FQVJson Redirectors = FQVJson::Array();
	for (std::size_t Place = 0; Place < Plan.Redirectors.size(); ++Place)
	{
		const FRedirectorFix& Fix = Plan.Redirectors[Place];
		Redirectors.Add(FQVJson::Object()
							.Set("package", Fix.Package.ToString())
							.Set("target", Fix.Rename.To)
							.Set("file", Fix.File)
							.Set("referencers", NamesJson(Plan, Place))
							.Set("deleted", Fix.bDeleted)
							.Set("obstacle", Fix.Obstacle));
	}
	FQVJson Referencers = FQVJson::Array();
	for (const FReferencerFix& Fix : Plan.Referencers)
	{
		Referencers.Add(FQVJson::Object()
							.Set("package", Fix.Package.ToString())
							.Set("file", Fix.File)
							.Set("references", Fix.References)
							.Set("rewritten", Fix.bRewritten)
							.Set("obstacle", Fix.Obstacle));
	}
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("mod", Mod)
		.Set("applied", bApplied)
		.Set("redirectors", std::move(Redirectors))
		.Set("referencers", std::move(Referencers))
		.Set("backup", Plan.BackupDir);
}

std::string Behind(std::string_view Mark, const std::string& Text)
{
	return Text.empty() ? std::string() : QVPrintf("%s%s", Mark, EscapeControls(Text));
}

void PrintText(FConsole& Console, const FRedirectorPlan& Plan, bool bApplied)
{
	for (std::size_t Place = 0; Place < Plan.Redirectors.size(); ++Place)
	{
		const FRedirectorFix& Fix = Plan.Redirectors[Place];
		const std::string_view Word = Fix.bDeleted ? "deleted" : !Fix.Obstacle.empty() ? "stays" : "redirector";
		Console.Result(QVPrintf("%s  %s%s%s", Word, EscapeControls(Fix.Package.ToView()), Behind(" -> ", Fix.Rename.To),
			Behind("\n    ", Fix.Obstacle)));
	}
	for (const FReferencerFix& Fix : Plan.Referencers)
	{
		const std::string_view Word = Fix.bRewritten								 ? "repointed"
									  : !Fix.Obstacle.empty() || Fix.References == 0 ? "stays"
									  : bApplied									 ? "unchanged"
																					 : "would repoint";
		Console.Result(QVPrintf("%s  %s: %d reference(s)%s", Word, EscapeControls(Fix.Package.ToView()), Fix.References,
			Behind("\n    ", Fix.Obstacle)));
	}
	if (!Plan.BackupDir.empty())
	{
		Console.Result(QVPrintf("the files as they were: %s\n  undo: copy them back over the project", Plan.BackupDir));
	}
}

void Show(FCommandLine& Line, const std::string& Mod, const FRedirectorPlan& Plan, bool bApplied)
{
	if (Line.Options.bJson)
	{
		Line.Console.Document(ToJson(Mod, Plan, bApplied));
		return;
	}
	if (Plan.Redirectors.empty())
	{
		Line.Console.Say(QVPrintf("%s has no redirectors, and its maps meet none", Mod));
	}
	PrintText(Line.Console, Plan, bApplied);
}

/** The mod's redirectors, by the audit; false, with the error told, if there is no telling. */
bool Collect(FSession& Session, FRedirectorsOptions& Options, std::vector<FQVAssetData>& OutRedirectors)
{
	if (!ResolveMod(Session, Options.Map) || !ScanRegistry(Session))
	{
		return false;
	}
	const FQVReferenceAudit Audit = FQVMapReferenceAudit::AuditReferences(Options.Map);
	if (!Audit.bSuccess)
	{
		Session.TellFailure(Audit.ErrorMessage);
		return false;
	}
	OutRedirectors = FindRedirectors(Options.Map, Audit);
	return true;
}

EExitCode List(FCommandLine& Line, FRedirectorsOptions Options)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	std::vector<FQVAssetData> Redirectors;
	if (Session == nullptr || !Collect(*Session, Options, Redirectors))
	{
		return EExitCode::Failed;
	}
	Show(Line, Options.Map, Session->Engine.GetAssetTools().GetRedirectorFixup().Plan(Redirectors), false);
	return EExitCode::Done;
}

EExitCode Fix(FCommandLine& Line, FRedirectorsOptions Options)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	std::vector<FQVAssetData> Redirectors;
	if (Session == nullptr || !Collect(*Session, Options, Redirectors))
	{
		return EExitCode::Failed;
	}
	FAssetTools& Tools = Session->Engine.GetAssetTools();
	Tools.GetRedirectorFixup().bDespiteUnreadable = Options.bDespiteUnreadable;
	if (Options.bDryRun || Redirectors.empty())
	{
		const FRedirectorPlan Plan = Tools.GetRedirectorFixup().Plan(Redirectors);
		Show(Line, Options.Map, Plan, false);
		return Plan.IsWhole() ? EExitCode::Done : EExitCode::Failed;
	}
	FQVText Error;
	if (!FQVMapRedirectors::FixRedirectors(Redirectors, Error))
	{
		Session->TellFailure(Error.ToString());
		return EExitCode::Failed;
	}
	const FRedirectorPlan& Done = Tools.GetLastFixup();
	Show(Line, Options.Map, Done, true);
	if (!Done.IsWhole())
	{
		Session->TellFailure("not every redirector could be fixed");
		return EExitCode::Failed;
	}
	return EExitCode::Done;
}
} // namespace

void AddRedirectorsVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FRedirectorsOptions>();
	CLI::App* Group = Line.AddGroup("redirectors", "Redirectors that moved assets have left behind",
		"qvmap redirectors list Harbor\n  qvmap redirectors fix Harbor --dry-run");
	CLI::App* ListVerb = Line.AddVerb(*Group, "list", "Those in a map, and those that it meets outside of it",
		"qvmap redirectors list Harbor", [&Line, Options] { return List(Line, *Options); });
	CLI::App* FixVerb = Line.AddVerb(*Group, "fix",
		"Repoints whoever refers to them, then deletes those that nothing refers to any more",
		"qvmap redirectors fix Harbor --dry-run", [&Line, Options] { return Fix(Line, *Options); });
	FixVerb->add_flag("--dry-run", Options->bDryRun, "Show what would change; change nothing");
	FixVerb->add_flag("--despite-unreadable", Options->bDespiteUnreadable,
		"Delete redirectors although packages that cannot be read may refer to them");
	for (CLI::App* Verb : {ListVerb, FixVerb})
	{
		Verb->add_option("map", Options->Map, "A mod, or a map of one")->required()->type_name("MAP");
		Line.AddFormat(*Verb);
	}
}
} // namespace QVCli
