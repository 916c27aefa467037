// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapRequiredActors.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Core/QVString.h"
#include "Engine/QVClasses.h"
#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVPlugins.h"
#include "Engine/QVWorld.h"

#include <algorithm>

namespace
{
constexpr std::string_view BridgePlugin = "QUARVEL";

FQVText WithCounts(const FQVText& Pattern, std::int32_t Matching, std::int32_t All)
{
	return FQVText(Pattern.GetNamespace(), Pattern.GetKey(), Pattern.GetSource(), Matching, All);
}

/** Counts the actors of one world, rule by rule. */
class FRuleEvaluation
{
public:
	explicit FRuleEvaluation(const IQVWorld& InWorld)
		: World(InWorld)
	{
		Report.bEvaluated = true;
	}

	FQVRequiredActorsReport Report;

	void Run()
	{
		FindUnloadedSublevels();
		for (const FQVRequiredActorRule& Rule : FQVMapRequiredActors::GetRequiredActorRules())
		{
			Evaluate(Rule);
		}
		if (!Report.UnloadedSublevels.empty())
		{
			SoftenErrors();
		}
	}

private:
	struct FCount
	{
		std::int32_t All = 0;
		std::int32_t Matching = 0;
		/** Actors of which the engine cannot tell whether they match. */
		std::int32_t Unknown = 0;
	};

	const IQVWorld& World;
	std::vector<const IQVActor*> Actors;

	void FindUnloadedSublevels()
	{
		std::vector<FQVStreamingLevel> Levels;
		World.GetStreamingLevels(Levels);
		for (const FQVStreamingLevel& Level : Levels)
		{
			if (!Level.bLoaded)
			{
				Report.UnloadedSublevels.push_back(Level.WorldAssetPackageName);
			}
		}
	}

	static const IQVClass* FindClass(const std::string& ClassPath)
	{
		IQVClasses& Classes = *FQVEngine::Get().Classes;
		const IQVClass* Found = Classes.FindClass(ClassPath);
		const bool bNative = FQVString::StartsWithIgnoreCase(ClassPath, "/Script/");
		return Found == nullptr && !bNative ? Classes.LoadClass(ClassPath) : Found;
	}

	void Evaluate(const FQVRequiredActorRule& Rule)
	{
		const IQVClass* Class = FindClass(Rule.ClassPath);
		if (Class == nullptr)
		{
			Report.Unresolved.push_back(Rule.ClassPath);
			return;
		}
		if (!Rule.EnumProperty.IsNone() && !Class->HasEnumProperty(Rule.EnumProperty.ToView(), Rule.EnumValue))
		{
			SetAside(Rule);
			return;
		}
		const FCount Count = CountActors(Rule, *Class);
		const bool bShut = (Rule.Gate == EQVRuleGate::OnlyIfAnyPlaced && Count.All == 0) ||
						   (Rule.Gate == EQVRuleGate::OnlyIfNonePlaced && Count.All > 0);
		if (!bShut && Count.Unknown > 0)
		{
			SetAside(Rule);
		}
		else if (!bShut)
		{
			Report.Rows.push_back(MakeRow(Rule, Count));
		}
	}

	void SetAside(const FQVRequiredActorRule& Rule)
	{
		QVLog(EQVLogVerbosity::Warning,
			"QVMap: Required-actor rule '%s' skipped - %s has no readable enum property '%s' with value '%s'",
			Rule.Id.ToView(), Rule.ClassPath, Rule.EnumProperty.ToView(), Rule.EnumValue);
		Report.Unresolved.push_back(QVPrintf("%s.%s", Rule.ClassPath, Rule.EnumProperty.ToView()));
	}

	FCount CountActors(const FQVRequiredActorRule& Rule, const IQVClass& Class)
	{
		World.GetAllActorsOfClass(Class, Actors);
		FCount Count;
		Count.All = static_cast<std::int32_t>(Actors.size());
		if (Rule.EnumProperty.IsNone())
		{
			Count.Matching = Count.All;
			return Count;
		}
		for (const IQVActor* Actor : Actors)
		{
			const std::optional<bool> bMatches = Actor->IsEnumPropertySetTo(Rule.EnumProperty.ToView(), Rule.EnumValue);
			Count.Matching += bMatches.value_or(false) ? 1 : 0;
			Count.Unknown += bMatches ? 0 : 1;
		}
		return Count;
	}

	static FQVRequiredActorRow MakeRow(const FQVRequiredActorRule& Rule, const FCount& Count)
	{
		const auto Text = [&Count](const FQVText& Pattern) { return WithCounts(Pattern, Count.Matching, Count.All); };
		FQVRequiredActorRow Row{Rule.Id, EQVDiagSeverity::Pass, Rule.Title, Text(Rule.PassText), {}};
		if (Count.Matching < Rule.MinCount)
		{
			Row.Severity = Rule.TooFewSeverity;
			Row.Detail = Text(Rule.TooFewText);
			Row.Remedy = Text(Rule.TooFewRemedy);
		}
		else if (Rule.MaxCount >= 1 && Count.Matching > Rule.MaxCount)
		{
			Row.Severity = Rule.TooManySeverity;
			Row.Detail = Text(Rule.TooManyText);
			Row.Remedy = Text(Rule.TooManyRemedy);
		}
		return Row;
	}

	/** A count that may simply be incomplete stops nobody. */
	void SoftenErrors()
	{
		const std::string Names = FQVString::Join(Report.UnloadedSublevels, ", ");
		for (FQVRequiredActorRow& Row : Report.Rows)
		{
			if (Row.Severity == EQVDiagSeverity::Error)
			{
				Row.Severity = EQVDiagSeverity::Warning;
				Row.Remedy = FQVText("FQVMapRequiredActors", "SublevelCaveat",
					"{0}\n\nActors in these sublevels were not counted because they are not loaded: {1}. Load them and "
					"check again.",
					Row.Remedy, Names);
			}
		}
	}
};
} // namespace

FQVRequiredActorsReport FQVMapRequiredActors::EvaluateRequiredActors(const IQVWorld* World)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	const std::optional<FQVPluginInfo> Bridge = FQVEngine::Get().Plugins->FindPlugin(BridgePlugin);
	if (World == nullptr || !Bridge || !Bridge->bEnabled)
	{
		return {};
	}
	FRuleEvaluation Evaluation(*World);
	Evaluation.Run();
	const FQVRequiredActorsReport& Report = Evaluation.Report;
	const auto Problems = std::count_if(Report.Rows.begin(), Report.Rows.end(),
		[](const FQVRequiredActorRow& Row) { return Row.Severity != EQVDiagSeverity::Pass; });
	QVLog(EQVLogVerbosity::Log,
		"QVMap: Required-actor check on '%s' -- %d rule(s) evaluated, %d problem(s), %d skipped, %d unloaded "
		"sublevel(s)",
		World->GetName(), Report.Rows.size(), Problems, Report.Unresolved.size(), Report.UnloadedSublevels.size());
	return std::move(Evaluation.Report);
}

bool FQVMapRequiredActors::HasProblems(const FQVRequiredActorsReport& Report)
{
	return std::any_of(Report.Rows.begin(), Report.Rows.end(),
		[](const FQVRequiredActorRow& Row) { return Row.Severity != EQVDiagSeverity::Pass; });
}

bool FQVMapRequiredActors::HasErrors(const FQVRequiredActorsReport& Report)
{
	return std::any_of(Report.Rows.begin(), Report.Rows.end(),
		[](const FQVRequiredActorRow& Row) { return Row.Severity == EQVDiagSeverity::Error; });
}

std::string FQVMapRequiredActors::FormatProblems(const FQVRequiredActorsReport& Report)
{
	std::string Text;
	for (const FQVRequiredActorRow& Row : Report.Rows)
	{
		if (Row.Severity == EQVDiagSeverity::Pass)
		{
			continue;
		}
		Text += QVPrintf("  • %s\n", Row.Detail.ToString());
		const std::string Remedy = Row.Remedy.ToString();
		Text += Remedy.empty() ? "" : QVPrintf("     %s\n", Remedy);
	}
	return Text;
}
