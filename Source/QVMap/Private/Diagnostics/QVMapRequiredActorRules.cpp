// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapRequiredActors.h"

namespace
{
FQVText RuleText(std::string_view Key, std::string_view Source)
{
	return FQVText("FQVMapRequiredActors", Key, Source);
}

FQVRequiredActorRule StartCheckpointRule()
{
	FQVRequiredActorRule Rule;
	Rule.Id = FQVName("StartCheckpoint");
	Rule.ClassPath = "/Script/QUARVEL.MapCheckpointTrigger";
	Rule.EnumProperty = FQVName("Type");
	Rule.EnumValue = "Start";
	Rule.MinCount = 1;
	Rule.MaxCount = 1;
	Rule.Gate = EQVRuleGate::OnlyIfAnyPlaced;
	Rule.TooFewSeverity = EQVDiagSeverity::Error;
	Rule.Title = RuleText("StartTitle", "One checkpoint set to Start");
	Rule.PassText = RuleText("StartPass", "{0} of {1} checkpoint(s) is the Start.");
	Rule.TooFewText = RuleText("StartNone", "{1} checkpoint(s) placed, none with Type set to Start.");
	Rule.TooFewRemedy = RuleText("StartNoneRemedy",
		"Select a checkpoint and set Type to Start, or the player will not spawn at a checkpoint and the checkpoint "
		"system will stay inactive.");
	Rule.TooManyText = RuleText("StartMany", "{0} checkpoints have Type set to Start.");
	Rule.TooManyRemedy = RuleText("StartManyRemedy",
		"Which one the player spawns at is undefined. Leave one as Start and set the others back to Classic.");
	return Rule;
}

FQVRequiredActorRule AnyCheckpointRule()
{
	FQVRequiredActorRule Rule;
	Rule.Id = FQVName("AnyCheckpoint");
	Rule.ClassPath = "/Script/QUARVEL.MapCheckpointTrigger";
	Rule.MinCount = 1;
	Rule.Gate = EQVRuleGate::OnlyIfNonePlaced;
	Rule.Title = RuleText("AnyTitle", "Checkpoints placed");
	Rule.PassText = RuleText("AnyPass", "{0} checkpoint(s) placed.");
	Rule.TooFewText = RuleText("AnyNone", "No checkpoints in this map.");
	Rule.TooFewRemedy = RuleText("AnyNoneRemedy",
		"Valid for a map that only runs to a Map End Trigger, but the checkpoint system stays inactive for the whole "
		"run and the game logs a missing start checkpoint. If that was not deliberate, place a checkpoint and set its "
		"Type to Start.");
	return Rule;
}

FQVRequiredActorRule PlayerStartRule()
{
	FQVRequiredActorRule Rule;
	Rule.Id = FQVName("PlayerStart");
	Rule.ClassPath = "/Script/Engine.PlayerStart";
	Rule.MinCount = 1;
	Rule.TooFewSeverity = EQVDiagSeverity::Error;
	Rule.Title = RuleText("PlayerStartTitle", "A PlayerStart in the level");
	Rule.PassText = RuleText("PlayerStartPass", "{0} PlayerStart(s) placed.");
	Rule.TooFewText = RuleText("PlayerStartNone", "No PlayerStart in this map.");
	Rule.TooFewRemedy = RuleText("PlayerStartNoneRemedy",
		"One is required even though the player does not start there - the Start checkpoint is where they end up. "
		"Without it the map freezes on load. Its position does not matter; the map template ships one named "
		"PlayerStart-DoNotRemove.");
	return Rule;
}

FQVRequiredActorRule LevelDoorRule()
{
	FQVRequiredActorRule Rule;
	Rule.Id = FQVName("LevelDoor");
	Rule.ClassPath = "/Script/QUARVEL.MapEndTrigger";
	Rule.MinCount = 1;
	Rule.Title = RuleText("DoorTitle", "A way to finish the run");
	Rule.PassText = RuleText("DoorPass", "{0} Map End Trigger(s) placed.");
	Rule.TooFewText = RuleText("DoorNone", "No Map End Trigger in this map.");
	Rule.TooFewRemedy =
		RuleText("DoorNoneRemedy", "Nothing ends the run. Place a Map End Trigger where the map should finish.");
	return Rule;
}
} // namespace

const std::vector<FQVRequiredActorRule>& FQVMapRequiredActors::GetRequiredActorRules()
{
	static const std::vector<FQVRequiredActorRule> Rules = {
		StartCheckpointRule(), AnyCheckpointRule(), PlayerStartRule(), LevelDoorRule()};
	return Rules;
}
