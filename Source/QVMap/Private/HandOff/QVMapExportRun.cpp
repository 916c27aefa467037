// SPDX-License-Identifier: MIT
#include "HandOff/QVMapExportRun.h"

#include "Core/QVLog.h"
#include "Engine/QVDialogs.h"
#include "Export/QVMapPipeline.h"
#include "HandOff/QVMapGameLaunch.h"

namespace
{
constexpr double TickPeriod = 0.1;
constexpr std::int32_t ExportVersion = 1;

template<class... Args>
FQVText Text(std::string_view Key, std::string_view Source, Args&&... Arguments)
{
	return {"QVMap", Key, Source, std::forward<Args>(Arguments)...};
}

/** One export as the game thread sees it. */
struct FWatch
{
	FQVPlayRequest Request;
	std::shared_ptr<FQVImportScope> Import;
	std::shared_ptr<FQVExportState> State;
	std::shared_ptr<IQVNotification> Notification;

	/** False when the run is over. */
	bool Tick() const
	{
		TellProgress();
		if (State->IsRunning())
		{
			return true;
		}
		const FQVExportResult& Result = State->Result;
		if (!Result.bSuccess)
		{
			TellFailure(Result.ErrorMessage);
		}
		else if (TellSuccess(Result); ShallBeUsed(Result))
		{
			Use(Result);
		}
		return false;
	}

private:
	void TellProgress() const
	{
		const FQVProgressReport Progress = State->GetProgress();
		if (!Progress.Message.empty())
		{
			Notification->SetText(Text("ExportProgress", "QVMap: {0}", Progress.Message));
			Notification->SetProgress(Progress.Stage, Progress.Fraction);
			QVLog(EQVLogVerbosity::Log, "QVMap: [%s] %s", Progress.Stage, Progress.Message);
		}
	}

	void Settle(const FQVText& Outcome, EQVCompletionState Completion) const
	{
		Notification->SetText(Outcome);
		Notification->SetCompletionState(Completion);
		Notification->ExpireAndFadeout();
	}

	void TellFailure(const std::string& Error) const
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: Export failed: %s", Error);
		Settle(Text("ExportFailed", "QVMap: {0} export failed", Request.ModName), EQVCompletionState::Fail);
		FQVEngine::Get().Dialogs->ShowMessage(
			Text("ExportFailedDetail", "Failed to pack {0}:\n\n{1}", Request.ModName, Error));
	}

	void TellSuccess(const FQVExportResult& Result) const
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Export successful: %s", Result.PakPath);
		Settle(Text("ExportSuccess", "QVMap: {0} packed successfully!", Request.ModName), EQVCompletionState::Success);
	}

	/** A pak that looks empty is used only if the user wants it. */
	bool ShallBeUsed(const FQVExportResult& Result) const
	{
		if (!Result.Content.HasProblem())
		{
			return true;
		}
		const std::string Content = Result.Content.Describe();
		QVLog(EQVLogVerbosity::Warning, "QVMap: '%s' packed but looks empty - %s", Request.ModName, Content);
		const FQVCustomDialog Dialog{
			.Title = Text("EmptyPakTitle", "Check This Map Before Using It"),
			.Body = Text("EmptyPakBody",
				"{0} packed, but the result is unlikely to work in game:\n\n{1}\n{2}\n\nPacking again often fixes it.",
				Request.ModName, Result.Content.DescribeProblems(), Content),
			.Buttons = {Text("EmptyPakStop", "Stop"), Text("EmptyPakContinue", "Use It Anyway")},
			.Cancel = 0,
			.GoOn = 1,
		};
		if (FQVEngine::Get().Dialogs->ShowCustomDialog(Dialog) != Dialog.GoOn)
		{
			QVLog(EQVLogVerbosity::Log, "QVMap: Stopped after packing - the pak looked empty and was not used");
			return false;
		}
		QVLog(EQVLogVerbosity::Warning, "QVMap: Using '%s' despite the empty-pak check", Request.ModName);
		return true;
	}

	void Use(const FQVExportResult& Result) const
	{
		if (Request.bLaunch)
		{
			FQVMapGameLaunch::LaunchGameWithPak(Request.ModName, Result.PakPath, Request.MapName, Request.GamePath);
		}
		if (Request.OnComplete)
		{
			Request.OnComplete(Result);
		}
	}
};
} // namespace

void FQVMapExportRun::Start(
	const FQVPlayRequest& Request, const FQVNameSet& UsedPackages, const std::shared_ptr<FQVImportScope>& Import)
{
	const FQVEngine& Engine = FQVEngine::Get();
	FWatch Watch{Request, Import, nullptr, nullptr};
	Watch.Notification = Engine.Dialogs->AddNotification({
		.Text = Text("ExportStarting", "QVMap: Packing {0}...", Request.ModName),
		.Image = "QVMap.QVIcon",
		.CompletionState = EQVCompletionState::Pending,
		.bFireAndForget = false,
		.FadeOutDuration = 1.0,
	});
	Watch.State = FQVExportState::Start(
		[ModName = Request.ModName, StartMap = Request.GamePath, UsedPackages](const FQVExportProgress& Progress)
		{ return FQVMapPipeline::ExportMod(ModName, ExportVersion, UsedPackages, Progress, StartMap); });
	Engine.GameThread->AddTicker(TickPeriod, [Watch = std::move(Watch)] { return Watch.Tick(); });
}
