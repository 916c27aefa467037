// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapRequiredActors.h"

#include "Standalone/Formats/Package/LevelPackages.h"
#include "Tests/Support/ContentProject.h"
#include "Tests/Support/ScriptedWorld.h"

using namespace QVTest;

namespace
{
struct FText
{
	std::string_view Rule;
	std::string_view Role;
	std::string_view Key;
	std::string_view Text;
};
constexpr FText Texts[] = {{"StartCheckpoint", "Title", "StartTitle", "One checkpoint set to Start"},
	{"StartCheckpoint", "PassText", "StartPass", "{0} of {1} checkpoint(s) is the Start."},
	{"StartCheckpoint", "TooFewText", "StartNone", "{1} checkpoint(s) placed, none with Type set to Start."},
	{"StartCheckpoint", "TooFewRemedy", "StartNoneRemedy",
		"Select a checkpoint and set Type to Start, or the player will not spawn at a checkpoint and the checkpoint "
		"system will stay inactive."},
	{"StartCheckpoint", "TooManyText", "StartMany", "{0} checkpoints have Type set to Start."},
	{"StartCheckpoint", "TooManyRemedy", "StartManyRemedy",
		"Which one the player spawns at is undefined. Leave one as Start and set the others back to Classic."},
	{"AnyCheckpoint", "Title", "AnyTitle", "Checkpoints placed"},
	{"AnyCheckpoint", "PassText", "AnyPass", "{0} checkpoint(s) placed."},
	{"AnyCheckpoint", "TooFewText", "AnyNone", "No checkpoints in this map."},
	{"AnyCheckpoint", "TooFewRemedy", "AnyNoneRemedy",
		"Valid for a map that only runs to a Map End Trigger, but the checkpoint system stays inactive for the whole "
		"run and the game logs a missing start checkpoint. If that was not deliberate, place a checkpoint and set its "
		"Type to Start."},
	{"PlayerStart", "Title", "PlayerStartTitle", "A PlayerStart in the level"},
	{"PlayerStart", "PassText", "PlayerStartPass", "{0} PlayerStart(s) placed."},
	{"PlayerStart", "TooFewText", "PlayerStartNone", "No PlayerStart in this map."},
	{"PlayerStart", "TooFewRemedy", "PlayerStartNoneRemedy",
		"One is required even though the player does not start there - the Start checkpoint is where they end up. "
		"Without it the map freezes on load. Its position does not matter; the map template ships one named "
		"PlayerStart-DoNotRemove."},
	{"LevelDoor", "Title", "DoorTitle", "A way to finish the run"},
	{"LevelDoor", "PassText", "DoorPass", "{0} Map End Trigger(s) placed."},
	{"LevelDoor", "TooFewText", "DoorNone", "No Map End Trigger in this map."},
	{"LevelDoor", "TooFewRemedy", "DoorNoneRemedy",
		"Nothing ends the run. Place a Map End Trigger where the map should finish."}};

constexpr const char* TriggerPath = "/Script/QUARVEL.MapCheckpointTrigger";
constexpr const char* StartPath = "/Script/Engine.PlayerStart";
constexpr const char* DoorPath = "/Script/QUARVEL.MapEndTrigger";

const FQVText& TextOf(const FQVRequiredActorRule& Rule, std::string_view Role)
{
	const std::pair<std::string_view, const FQVText*> Roles[] = {{"Title", &Rule.Title}, {"PassText", &Rule.PassText},
		{"TooFewText", &Rule.TooFewText}, {"TooFewRemedy", &Rule.TooFewRemedy}, {"TooManyText", &Rule.TooManyText},
		{"TooManyRemedy", &Rule.TooManyRemedy}};
	return *std::find_if(std::begin(Roles), std::end(Roles),
		[Role](const auto& Each) {
			return Each.first == Role;
		})->second;
}

/** The table's text with the two numbers in it. */
std::string Expected(std::string_view Key, int Matching = 0, int All = 0)
{
	const auto* Found =
		std::find_if(std::begin(Texts), std::end(Texts), [Key](const FText& Each) { return Each.Key == Key; });
	return FQVText({}, {}, Found->Text, Matching, All).ToString();
}

/** A world in which a test places actors, and the classes that its engine knows. */
struct FRequiredActorsTest : FToolkitTest
{
	FScriptedWorld World;
	FScriptedClasses Classes;
	FScriptedClass& Trigger = World.AddClass("/Script/QUARVEL", "MapCheckpointTrigger");
	FScriptedClass& PlayerStart = World.AddClass("/Script/Engine", "PlayerStart");
	FScriptedClass& Door = World.AddClass("/Script/QUARVEL", "MapEndTrigger");
	FQVRequiredActorsReport Report;

	FRequiredActorsTest()
	{
		Engine.Interfaces.Classes = &Classes;
		Trigger.Enumerators = {"Type.Start"};
		Classes.Known = {{TriggerPath, &Trigger}, {StartPath, &PlayerStart}, {DoorPath, &Door}};
	}

	void PlaceCheckpoints(const std::vector<std::optional<std::string>>& Types)
	{
		for (const std::optional<std::string>& Type : Types)
		{
			World.Add("Checkpoint", &Trigger).Type = Type;
		}
	}
	/** `StartCheckpoint Error`, one to a line. */
	std::string Evaluate()
	{
		Report = FQVMapRequiredActors::EvaluateRequiredActors(&World);
		static constexpr const char* Words[] = {"Pass", "Info", "Warning", "Error"};
		std::string Rows;
		for (const FQVRequiredActorRow& Row : Report.Rows)
		{
			Rows += Row.Id.ToString() + " " + Words[static_cast<std::size_t>(Row.Severity)] + "\n";
		}
		return Rows;
	}
	static std::string Summary(int Rows, int Problems, int Skipped, int Unloaded)
	{
		return QVPrintf("QVMap: Required-actor check on 'Hall' -- %d rule(s) evaluated, %d problem(s), %d skipped, %d "
						"unloaded sublevel(s)\n",
			Rows, Problems, Skipped, Unloaded);
	}
};
} // namespace

TEST(RequiredActorRules, AreTheFourOfTheTable)
{
	const std::vector<FQVRequiredActorRule>& Rules = FQVMapRequiredActors::GetRequiredActorRules();
	std::string Text;
	for (const FQVRequiredActorRule& Rule : Rules)
	{
		Text += QVPrintf("%s %s %s=%s %d..%d gate %d severities %d %d\n", Rule.Id.ToView(), Rule.ClassPath,
			Rule.EnumProperty.ToView(), Rule.EnumValue, Rule.MinCount, Rule.MaxCount, static_cast<int>(Rule.Gate),
			static_cast<int>(Rule.TooFewSeverity), static_cast<int>(Rule.TooManySeverity));
	}
	EXPECT_EQ(Text, "StartCheckpoint /Script/QUARVEL.MapCheckpointTrigger Type=Start 1..1 gate 1 severities 3 2\n"
					"AnyCheckpoint /Script/QUARVEL.MapCheckpointTrigger = 1..0 gate 2 severities 2 2\n"
					"PlayerStart /Script/Engine.PlayerStart = 1..0 gate 0 severities 3 2\n"
					"LevelDoor /Script/QUARVEL.MapEndTrigger = 1..0 gate 0 severities 2 2\n");
	std::size_t Given = 0;
	for (const FQVRequiredActorRule& Rule : Rules)
	{
		for (const char* Role : {"Title", "PassText", "TooFewText", "TooFewRemedy", "TooManyText", "TooManyRemedy"})
		{
			Given += TextOf(Rule, Role).GetKey().empty() ? 0U : 1U;
		}
	}
	EXPECT_EQ(Given, std::size(Texts));
	for (const FText& Each : Texts)
	{
		const auto Rule = std::find_if(Rules.begin(), Rules.end(),
			[&Each](const FQVRequiredActorRule& Candidate) { return Candidate.Id == FQVName(Each.Rule); });
		ASSERT_NE(Rule, Rules.end()) << Each.Rule;
		const FQVText& Found = TextOf(*Rule, Each.Role);
		EXPECT_EQ(Found.GetNamespace(), "FQVMapRequiredActors") << Each.Key;
		EXPECT_EQ(Found.GetKey(), Each.Key);
		EXPECT_EQ(Found.GetSource(), Each.Text);
	}
}

TEST_F(FRequiredActorsTest, SaysNothingWithoutAWorld)
{
	EXPECT_FALSE(FQVMapRequiredActors::EvaluateRequiredActors(nullptr).bEvaluated);
	EXPECT_EQ(Logged(), "");
}

TEST_F(FRequiredActorsTest, SaysNothingWithoutTheBridge)
{
	Project.Remove("Plugins/QUARVEL");
	EXPECT_EQ(Evaluate(), "");
	EXPECT_FALSE(Report.bEvaluated);
	EXPECT_FALSE(FQVMapRequiredActors::HasProblems(Report));
	EXPECT_EQ(FQVMapRequiredActors::FormatProblems(Report), "");
	EXPECT_EQ(Logged(), "");
}

TEST_F(FRequiredActorsTest, SaysNothingWhileTheBridgeIsSwitchedOff)
{
	Project.Write("MapWork.uproject", R"({"Plugins": [{"Name": "QUARVEL", "Enabled": false}]})");
	EXPECT_EQ(Evaluate(), "");
	EXPECT_FALSE(Report.bEvaluated);
}

TEST_F(FRequiredActorsTest, PassesACompleteMap)
{
	PlaceCheckpoints({"Start", "Classic", "Classic"});
	World.Add("Start", &PlayerStart);
	World.Add("Start_1", &PlayerStart);
	World.Add("Door", &Door);
	EXPECT_EQ(Evaluate(), "StartCheckpoint Pass\nPlayerStart Pass\nLevelDoor Pass\n");
	EXPECT_EQ(Report.Rows[0].Title.ToString(), Expected("StartTitle"));
	EXPECT_EQ(Report.Rows[0].Detail.ToString(), Expected("StartPass", 1, 3));
	EXPECT_EQ(Report.Rows[1].Detail.ToString(), Expected("PlayerStartPass", 2, 2));
	EXPECT_EQ(Report.Rows[2].Detail.ToString(), Expected("DoorPass", 1, 1));
	EXPECT_EQ(Report.Rows[0].Remedy.ToString() + Report.Rows[1].Remedy.ToString(), "");
	EXPECT_EQ(Logged(), Summary(3, 0, 0, 0));
}

TEST_F(FRequiredActorsTest, NamesWhatIsMissing)
{
	EXPECT_EQ(Evaluate(), "AnyCheckpoint Warning\nPlayerStart Error\nLevelDoor Warning\n");
	EXPECT_TRUE(FQVMapRequiredActors::HasProblems(Report) && FQVMapRequiredActors::HasErrors(Report));
	EXPECT_EQ(FQVMapRequiredActors::FormatProblems(Report),
		"  • " + Expected("AnyNone") + "\n     " + Expected("AnyNoneRemedy") + "\n  • " + Expected("PlayerStartNone") +
			"\n     " + Expected("PlayerStartNoneRemedy") + "\n  • " + Expected("DoorNone") + "\n     " +
			Expected("DoorNoneRemedy") + "\n");
	EXPECT_EQ(Logged(), Summary(3, 3, 0, 0));
}

TEST_F(FRequiredActorsTest, CountsStartCheckpoints)
{
	struct FCase
	{
		std::vector<std::optional<std::string>> Types;
		const char* Row;
		std::string Detail;
		std::string Remedy;
	};
	const FCase Cases[] = {
		{{"Classic"}, "StartCheckpoint Error\n", Expected("StartNone", 0, 1), Expected("StartNoneRemedy")},
		{{"Start", "Start"}, "StartCheckpoint Warning\n", Expected("StartMany", 2, 2), Expected("StartManyRemedy")},
		{{"Start"}, "StartCheckpoint Pass\n", Expected("StartPass", 1, 1), ""}};
	for (const FCase& Case : Cases)
	{
		World.Level.Actors.clear();
		PlaceCheckpoints(Case.Types);
		World.Add("Start", &PlayerStart);
		World.Add("Door", &Door);
		EXPECT_EQ(Evaluate(), Case.Row + std::string("PlayerStart Pass\nLevelDoor Pass\n"));
		EXPECT_EQ(Report.Rows[0].Detail.ToString(), Case.Detail);
		EXPECT_EQ(Report.Rows[0].Remedy.ToString(), Case.Remedy);
	}
}

TEST_F(FRequiredActorsTest, SetsRulesAsideThatCannotBeUsed)
{
	const std::string Skipped = "Warning: QVMap: Required-actor rule 'StartCheckpoint' skipped - "
								"/Script/QUARVEL.MapCheckpointTrigger has no readable enum property 'Type' with value "
								"'Start'\n";
	PlaceCheckpoints({"Start", std::nullopt});
	World.Add("Start", &PlayerStart);
	Classes.Known.erase(DoorPath);
	EXPECT_EQ(Evaluate(), "PlayerStart Pass\n");
	EXPECT_EQ(Report.Unresolved, (std::vector<std::string>{"/Script/QUARVEL.MapCheckpointTrigger.Type", DoorPath}));
	EXPECT_EQ(Logged(), Skipped + Summary(1, 0, 2, 0));
	Trigger.Enumerators.clear();
	EXPECT_EQ(Evaluate(), "PlayerStart Pass\n");
	EXPECT_EQ(Logged(), Skipped + Summary(1, 0, 2, 0));
}

TEST_F(FRequiredActorsTest, SoftensErrorsWhereSublevelsAreNotLoaded)
{
	World.Streaming = {{"/Cave/Maps/A", false}, {"/Cave/Maps/B", true}, {"/Cave/Maps/C", false}};
	World.Add("Door", &Door);
	EXPECT_EQ(Evaluate(), "AnyCheckpoint Warning\nPlayerStart Warning\nLevelDoor Pass\n");
	EXPECT_EQ(Report.UnloadedSublevels, (std::vector<std::string>{"/Cave/Maps/A", "/Cave/Maps/C"}));
	EXPECT_FALSE(FQVMapRequiredActors::HasErrors(Report));
	EXPECT_EQ(Report.Rows[0].Remedy.ToString(), Expected("AnyNoneRemedy"));
	EXPECT_EQ(Report.Rows[1].Remedy.GetKey(), "SublevelCaveat");
	EXPECT_EQ(Report.Rows[1].Remedy.ToString(), Expected("PlayerStartNoneRemedy") +
													"\n\nActors in these sublevels were not counted because they are "
													"not loaded: /Cave/Maps/A, /Cave/Maps/C. Load "
													"them and check again.");
	EXPECT_EQ(Logged(), Summary(3, 2, 0, 2));
}

/** The rules over a map's file, on the engine that reads it. */
TEST_F(FContentTest, RequiredActorsOfAMapFile)
{
	Project.AddMod("Cave", {});
	QVFormats::FLevelPackageSpec Spec;
	Spec.PackageName = "/Cave/Maps/Hall";
	Spec.Actors = {{"A", TriggerPath, false, false, "Type", "ECheckpointType::Start"}, {"B", TriggerPath},
		{"Start", StartPath}, {"Door", DoorPath}};
	const std::vector<std::byte> Bytes = QVFormats::BuildLevelPackage(Spec);
	Project.Write(FileOf(Spec.PackageName, ".umap"), {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	Scan();
	ASSERT_TRUE(Engine.OpenMap("/Cave/Maps/Hall"));
	const auto Report = FQVMapRequiredActors::EvaluateRequiredActors(Engine.Interfaces.Editor->GetOpenWorld());
	EXPECT_EQ(Report.Rows.size(), 3U);
	EXPECT_FALSE(FQVMapRequiredActors::HasProblems(Report));
	EXPECT_EQ(Report.Rows[0].Detail.ToString(), Expected("StartPass", 1, 2));
	EXPECT_TRUE(Report.Unresolved.empty());
}
