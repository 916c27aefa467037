// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapSetupChecklist.h"

#include "Diagnostics/QVMapEnvironmentChecks.h"
#include "Workspace/QVMapConfig.h"
#include "Workspace/QVMapScanner.h"

#include <algorithm>

namespace
{
constexpr std::string_view Namespace = "FQVMapSetupChecklist";

/** A step, and the environment's checks that answer it: the worst of them does. */
struct FStep
{
	std::string_view Id;
	std::string_view Key;
	std::string_view Title;
	std::vector<FQVName> Checks;
};

const std::vector<FStep>& Steps()
{
	static const std::vector<FStep> List = {
		{"Setup.EngineTools", "EngineTools", "Engine tools", {FQVName("Env.UnrealPak"), FQVName("Env.EditorCmd")}},
		{"Setup.Bridge", "Bridge", "Bridge plugin", {FQVName("Env.Bridge")}},
		{"Setup.BaseGameContent", "BaseGameContent", "Base game content", {FQVName("Env.Template")}},
		{"Setup.BaseRelease", "BaseRelease", "Base release", {FQVName("Env.BaseRelease")}},
		{"Setup.OutputFolder", "OutputFolder", "Output folder", {FQVName("Env.OutputWritable")}},
		{"Setup.GameLaunch", "GameLaunch", "Game launch", {FQVName("Env.GameLaunch")}},
		{"Setup.MapTemplate", "MapTemplate", "New map template", {FQVName("Env.MapTemplate")}},
	};
	return List;
}

/** The step's row, from the worst of its checks. */
FQVDiagnosticFinding MakeRow(const FStep& Step, const FQVDiagnosticFindings& Environment)
{
	FQVDiagnosticFinding Row;
	for (const FQVDiagnosticFinding& Finding : Environment)
	{
		const bool bOfStep = std::ranges::find(Step.Checks, Finding.Id) != Step.Checks.end();
		if (bOfStep && (Row.Id.IsNone() || Finding.Severity > Row.Severity))
		{
			Row = Finding;
		}
	}
	Row.Id = FQVName(Step.Id);
	Row.Title = {Namespace, Step.Key, Step.Title};
	return Row;
}

FQVDiagnosticFinding FirstMap()
{
	constexpr std::string_view Id = "Setup.FirstMap";
	FQVText Title(Namespace, "FirstMap", "First map");
	const FQVScanResult Scan = FQVMapScanner::ScanMods();
	std::size_t Maps = 0;
	for (const FQVModInfo& Mod : Scan.Mods)
	{
		Maps += Mod.Maps.size();
	}
	if (Maps > 0)
	{
		return FQVDiagnosticModel::MakePassFinding(EQVDiagCategory::Environment, Id, std::move(Title),
			{Namespace, "FirstMapPass", "{0} map(s) in {1} plugin(s).", Maps, Scan.Mods.size()});
	}
	return FQVDiagnosticModel::MakeFinding(EQVDiagCategory::Environment, EQVDiagSeverity::Error, Id, std::move(Title),
		{Namespace, "FirstMapNone", "No plugin of this project holds a map yet."},
		{Namespace, "FirstMapRemedy", "Use New Map to create one."});
}
} // namespace

FQVDiagnosticFindings FQVMapSetupChecklist::Evaluate(const FQVDiagnosticActions& Actions)
{
	FQVDiagnosticOptions Options;
	Options.Actions = Actions;
	FQVDiagnosticFindings Environment;
	FQVMapEnvironmentChecks::CheckEnvironment(Options, Environment);
	FQVDiagnosticFindings Rows;
	for (const FStep& Step : Steps())
	{
		Rows.push_back(MakeRow(Step, Environment));
	}
	Rows.push_back(FirstMap());
	return Rows;
}

bool FQVMapSetupChecklist::IsComplete(const FQVDiagnosticFindings& Rows)
{
	return std::ranges::none_of(
		Rows, [](const FQVDiagnosticFinding& Row) { return Row.Severity == EQVDiagSeverity::Error; });
}

bool FQVMapSetupChecklist::ShouldShowAtStart(const FQVDiagnosticFindings& Rows)
{
	return FQVMapConfig::GetShowSetupOnStartup() && !IsComplete(Rows);
}
