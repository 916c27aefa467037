// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticReport.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class IQVWorld;

/** When a rule applies at all. */
enum class EQVRuleGate : std::uint8_t
{
	Always = 0,
	/** At least one actor of the class exists. */
	OnlyIfAnyPlaced = 1,
	/** No actor of the class exists. */
	OnlyIfNonePlaced = 2
};

/** How many actors of a class a map wants. In the texts {0} is the matching actors, {1} all actors of the class. */
struct FQVRequiredActorRule
{
	/** A finding's id is "Content." and this. */
	FQVName Id;
	std::string ClassPath;
	/** If not none, an actor matches only when this enum property is EnumValue. */
	FQVName EnumProperty;
	std::string EnumValue;
	/** Of matching actors; a maximum below 1 is none. */
	std::int32_t MinCount = 0;
	std::int32_t MaxCount = 0;
	EQVRuleGate Gate = EQVRuleGate::Always;
	EQVDiagSeverity TooFewSeverity = EQVDiagSeverity::Warning;
	EQVDiagSeverity TooManySeverity = EQVDiagSeverity::Warning;
	FQVText Title;
	FQVText PassText;
	FQVText TooFewText;
	FQVText TooFewRemedy;
	/** These two are empty without a maximum. */
	FQVText TooManyText;
	FQVText TooManyRemedy;
};

/** What became of one rule. */
struct FQVRequiredActorRow
{
	FQVName Id;
	EQVDiagSeverity Severity = EQVDiagSeverity::Pass;
	FQVText Title;
	FQVText Detail;
	/** Empty on a pass. */
	FQVText Remedy;
};

struct FQVRequiredActorsReport
{
	/** The bridge plugin is enabled, and the rules ran. */
	bool bEvaluated = false;
	/** In the order of the rules; none for a rule whose gate is shut or that could not be used. */
	std::vector<FQVRequiredActorRow> Rows;
	/** Classes, and properties as "<class path>.<property>", that the rules could not use. */
	std::vector<std::string> Unresolved;
	/** Package names of sublevels that are not loaded: their actors are not counted. */
	std::vector<std::string> UnloadedSublevels;
};

/** The actors that a playable map needs. */
struct FQVMapRequiredActors
{
	/** Any thread. */
	static const std::vector<FQVRequiredActorRule>& GetRequiredActorRules();
	/** Game thread. Counts the world's actors against the rules. World may be null: nothing is evaluated. */
	static FQVRequiredActorsReport EvaluateRequiredActors(const IQVWorld* World);

	static bool HasProblems(const FQVRequiredActorsReport& Report);
	static bool HasErrors(const FQVRequiredActorsReport& Report);
	/** One bullet for each problem, its remedy below it. */
	static std::string FormatProblems(const FQVRequiredActorsReport& Report);
};
