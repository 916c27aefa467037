// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapDiagnostics.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Diagnostics/QVMapContentChecks.h"
#include "Diagnostics/QVMapEnvironmentChecks.h"
#include "Diagnostics/QVMapLastExportChecks.h"
#include "Diagnostics/QVMapReferenceChecks.h"
#include "Engine/QVClock.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVSlowTask.h"
#include "Workspace/QVMapReadiness.h"

#include <algorithm>

namespace
{
struct FGroup
{
	bool FQVDiagnosticOptions::*Flag;
	std::string_view FrameKey;
	std::string_view Frame;
	void (*Run)(const FQVDiagnosticOptions&, FQVDiagnosticFindings&);
};

constexpr FGroup Groups[] = {
	{&FQVDiagnosticOptions::bEnvironment, "FrameEnv", "Checking engine and base release...",
		&FQVMapEnvironmentChecks::CheckEnvironment},
	{&FQVDiagnosticOptions::bContent, "FrameContent", "Checking map content...", &FQVMapContentChecks::CheckMapContent},
	{&FQVDiagnosticOptions::bReferences, "FrameRefs", "Tracing asset references...",
		&FQVMapReferenceChecks::CheckReferences},
	{&FQVDiagnosticOptions::bLastExport, "FrameExport", "Reading the last export...",
		&FQVMapLastExportChecks::CheckLastExport},
};

/** A task that nobody sees. */
struct FUnwatched : IQVSlowTask
{
	bool ShouldCancel() const override { return false; }
};

FQVDiagnosticOptions Completed(FQVDiagnosticOptions Options)
{
	std::string Map;
	FQVText Reason;
	if (Options.ModName.empty())
	{
		// without a map the groups tell of its absence themselves
		FQVMapReadiness::ResolveOpenMap(Options.ModName, Map, Reason);
	}
	IQVEditor* Editor = FQVEngine::Get().Editor;
	if (Options.World == nullptr && Options.bUseEditorWorld && Editor != nullptr)
	{
		Options.World = Editor->GetOpenWorld();
	}
	return Options;
}

std::unique_ptr<IQVSlowTask> BeginTask(const FQVDiagnosticOptions& Options)
{
	const auto Chosen = std::ranges::count_if(Groups, [&](const FGroup& Group) { return Options.*Group.Flag; });
	const float Units = static_cast<float>(std::max<std::ptrdiff_t>(Chosen, 1));
	IQVSlowTasks* Tasks = FQVEngine::Get().SlowTasks;
	const FQVText Message = FQVDiagnosticModel::Text("Running", "QVMap: running diagnostics...");
	std::unique_ptr<IQVSlowTask> Task = Tasks != nullptr ? Tasks->Begin(Units, Message) : nullptr;
	if (Task == nullptr)
	{
		Task = std::make_unique<FUnwatched>();
	}
	if (Options.bShowDialog)
	{
		Task->MakeDialog(true, false);
	}
	return Task;
}
} // namespace

FQVDiagnosticReport FQVMapDiagnostics::RunDiagnostics(const FQVDiagnosticOptions& AskedFor)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	FQVDiagnosticReport Report;
	Report.Timestamp = FQVEngine::Get().Clock->Now();
	const FQVDiagnosticOptions Options = Completed(AskedFor);
	Report.ModName = Options.ModName;
	const std::unique_ptr<IQVSlowTask> Task = BeginTask(Options);
	for (const FGroup& Group : Groups)
	{
		if (!(Options.*Group.Flag) || Report.bCancelled)
		{
			continue;
		}
		Report.bCancelled = Task->ShouldCancel();
		if (!Report.bCancelled)
		{
			Task->EnterProgressFrame(1.0F, Text(Group.FrameKey, Group.Frame));
			Group.Run(Options, Report.Findings);
		}
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Diagnostics for '%s' -- %d error(s), %d warning(s), %d pass(es)%s",
		Report.ModName, CountBySeverity(Report, EQVDiagSeverity::Error),
		CountBySeverity(Report, EQVDiagSeverity::Warning), CountBySeverity(Report, EQVDiagSeverity::Pass),
		Report.bCancelled ? " (cancelled)" : "");
	return Report;
}
