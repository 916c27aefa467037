// SPDX-License-Identifier: MIT
#include "Export/QVMapBaseReleaseBuild.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Engine/QVDialogs.h"
#include "Export/QVMapCooker.h"

namespace
{
constexpr double TickPeriod = 0.1;

std::atomic<std::int32_t> bBaseReleaseBuilding{0};

template<class... Args>
FQVText Text(std::string_view Key, std::string_view Source, Args&&... Arguments)
{
	return {"FQVMapToolbar", Key, Source, std::forward<Args>(Arguments)...};
}

/** One build as the game thread sees it. */
struct FWatch
{
	std::shared_ptr<FQVBaseReleaseBuildState> State;
	std::shared_ptr<IQVNotification> Notification;
	FQVMapBaseReleaseBuild::FOnComplete OnComplete;

	/** False when the build has ended. */
	bool Tick() const
	{
		TellProgress();
		if (State->IsRunning())
		{
			return true;
		}
		TellEnd();
		bBaseReleaseBuilding.store(0);
		FQVMapBaseReleaseBuild::OnBuildEnded().Broadcast();
		if (OnComplete)
		{
			OnComplete(State->Result.bSuccess);
		}
		return false;
	}

private:
	void TellProgress() const
	{
		const FQVProgressReport Progress = State->GetProgress();
		if (!Progress.Message.empty())
		{
			Notification->SetText(Text("BaseReleaseBuildProgress", "QVMap: {0}", Progress.Message));
			Notification->SetProgress(Progress.Stage, Progress.Fraction);
			QVLog(
				EQVLogVerbosity::Log, "QVMap: [base release] %.0f%% %s", Progress.Fraction * 100.0f, Progress.Message);
		}
	}

	void TellEnd() const
	{
		const std::string& Error = State->Result.ErrorMessage;
		if (State->Result.bSuccess)
		{
			QVLog(EQVLogVerbosity::Log, "QVMap: Base release built successfully");
			Settle(Text("BaseReleaseSuccess", "QVMap: Base release built successfully!"), EQVCompletionState::Success);
			return;
		}
		QVLog(EQVLogVerbosity::Error, "QVMap: Base release build failed: %s", Error);
		Settle(Text("BaseReleaseFailed", "QVMap: Base release build failed"), EQVCompletionState::Fail);
		FQVEngine::Get().Dialogs->ShowMessage(
			{"QVMap", "BaseReleaseFailedDetail", "Base release build failed:\n\n{0}", Error});
	}

	void Settle(const FQVText& Outcome, EQVCompletionState Completion) const
	{
		Notification->SetText(Outcome);
		Notification->SetCompletionState(Completion);
		Notification->ExpireAndFadeout();
	}
};

void RefuseSecondBuild(const FQVMapBaseReleaseBuild::FOnComplete& OnComplete)
{
	QVLog(EQVLogVerbosity::Warning, "QVMap: Base release build already in progress - ignoring request");
	FQVEngine::Get().Dialogs->ShowMessage(Text("BaseReleaseAlreadyRunning",
		"A base release build is already in progress.\n\nWait for it to finish before starting another one."));
	if (OnComplete)
	{
		OnComplete(false);
	}
}
} // namespace

bool FQVMapBaseReleaseBuild::IsBaseReleaseBuilding()
{
	return bBaseReleaseBuilding.load() != 0;
}

TQVEvent<>& FQVMapBaseReleaseBuild::OnBuildEnded()
{
	static TQVEvent<> Event;
	return Event;
}

void FQVMapBaseReleaseBuild::StartBaseReleaseBuild(FOnComplete OnComplete)
{
	const FQVEngine& Engine = FQVEngine::Get();
	QV_CHECK(Engine.GameThread->IsInGameThread());
	std::int32_t Idle = 0;
	if (!bBaseReleaseBuilding.compare_exchange_strong(Idle, 1))
	{
		RefuseSecondBuild(OnComplete);
		return;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Starting base release build...");
	FWatch Watch;
	Watch.Notification = Engine.Dialogs->AddNotification({
		.Text = Text("BaseReleaseBuildStarting", "QVMap: Building base release..."),
		.Image = "QVMap.QVIcon",
		.CompletionState = EQVCompletionState::Pending,
		.bFireAndForget = false,
	});
	Watch.State = FQVBaseReleaseBuildState::Start(&FQVMapCooker::BuildBaseRelease);
	Watch.OnComplete = std::move(OnComplete);
	Engine.GameThread->AddTicker(TickPeriod, [Watch = std::move(Watch)] { return Watch.Tick(); });
}
