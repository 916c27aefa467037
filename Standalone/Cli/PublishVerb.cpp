// SPDX-License-Identifier: MIT
#include "Interface/SQVWorkshopTab.h"
#include "Standalone/Cli/JsonFileProblem.h"
#include "Standalone/Cli/LaunchWatch.h"
#include "Standalone/Cli/MapFlow.h"
#include "Standalone/Cli/StandInNote.h"
#include "Workspace/QVMapScanner.h"

#include <map>

namespace QVCli
{
namespace
{
struct FPublishOptions
{
	std::string Map;
	FAnswers Answers;
};

/** The form with nobody in front of it. */
class FUnseenForm : public IQVWorkshopTabView
{
public:
	std::string GetText(EQVWorkshopRow Box) const override
	{
		const auto Found = Texts.find(Box);
		return Found == Texts.end() ? std::string() : Found->second;
	}
	void SetText(EQVWorkshopRow Box, const std::string& Text) override { Texts[Box] = Text; }
	std::vector<std::size_t> GetSelectedScreenshots() const override { return {}; }
	void OnRowChanged(EQVWorkshopRow) override {}

private:
	std::map<EQVWorkshopRow, std::string> Texts;
};

/** Why the mod's record is not to be touched; empty if there is nothing wrong with it. */
std::string FindRecordProblem(const std::string& Mod)
{
	const FQVScanResult Scan = FQVMapScanner::ScanMods();
	const FQVModInfo* Found = Scan.Find(Mod);
	return Found == nullptr ? std::string() : JsonFileProblem(FQVMapWorkshopConfig::GetConfigPath(Found->PluginDir));
}

FQVJson ToJson(const FMapChoice& Map, const FFlowEnd& End, bool bHandedOver, std::string_view Way)
{
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("mod", Map.Mod)
		.Set("map", Map.Package)
		.Set("success", bHandedOver)
		.Set("stopped_at", End.StoppedAt)
		.Set("error", End.Failure)
		.Set("upload", bHandedOver ? FQVMapWorkshopConfig::GetUploadPath() : std::string())
		.Set("project_put_back", End.bPutBack)
		.Set("game", Way);
}

EExitCode RunPublication(FSession& Session, const FMapChoice& Map, const FAnswers& Answers, bool bJson)
{
	const FLaunchWatch Game(Session);
	FUnseenForm Form;
	std::unique_ptr<SQVWorkshopTab> Tab;
	FFlowEnd End = RunFlow(Session, Map, Answers,
		[&]
		{
			Tab = std::make_unique<SQVWorkshopTab>(Form);
			Tab->Press(EQVWorkshopAction::PackAndPublish);
		});
	const bool bTried = Game.WasAsked();
	const bool bHandedOver = bTried && Game.Tell();
	if (bTried && !bHandedOver)
	{
		End.Failure = "the game was not started";
	}
	if (bHandedOver)
	{
		Session.Console.Succeed();
		SayIfStandIn(Session);
	}
	if (bJson)
	{
		Session.Console.Document(ToJson(Map, End, bHandedOver, bTried ? Game.GetWay() : std::string_view()));
	}
	else if (bTried)
	{
		Session.Console.Result("upload  " + FQVMapWorkshopConfig::GetUploadPath());
	}
	return End.Code(bHandedOver);
}

EExitCode Publish(FCommandLine& Line, const FPublishOptions& Options)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	FMapChoice Map;
	if (Session == nullptr || !ChooseMap(*Session, "publish", Options.Map, Map))
	{
		return EExitCode::Failed;
	}
	std::string Obstacle = DescribeUnpackable(Map);
	Obstacle = Obstacle.empty() ? FindRecordProblem(Map.Mod) : Obstacle;
	if (!Obstacle.empty())
	{
		Session->TellFailure(Obstacle);
		return EExitCode::Failed;
	}
	return RunPublication(*Session, Map, Options.Answers, Line.Options.bJson);
}
} // namespace

void AddPublishVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FPublishOptions>();
	CLI::App* Verb = Line.AddVerb(Line.App, "publish",
		"Packs a map and hands it, with its Workshop details, to the game for the Steam Workshop", "qvmap publish Hall",
		[&Line, Options] { return Publish(Line, *Options); });
	Verb->add_option("map", Options->Map, "The map, or a mod with one map (default: the only one)")->type_name("MAP");
	AddAnswers(*Verb, Options->Answers);
	Line.AddFormat(*Verb);
}
} // namespace QVCli
