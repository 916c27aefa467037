// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"
#include "Export/QVMapProgress.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

/** How far work in the background is. */
struct FQVProgressReport
{
	/** A word. */
	std::string Stage;
	/** 0 to 1. */
	float Fraction = 0.0F;
	/** Empty until the first report. */
	std::string Message;
};

/** Work on a thread of its own and what it tells whoever watches it from the game thread; both hold it. */
template<class TResult>
struct TQVBackgroundRun
{
	/** 1 from the start; cleared by the work as its very last act. */
	std::atomic<std::int32_t> bRunning{1};
	/** Complete once bRunning is 0; nobody's before. */
	TResult Result{};

	bool IsRunning() const { return bRunning.load() != 0; }
	FQVProgressReport GetProgress() const
	{
		const std::lock_guard Guard(ProgressLock);
		return Progress;
	}

	/** Game thread. Work takes the delegate by which it tells how far it is, and gives the result. */
	template<class TWork>
	static std::shared_ptr<TQVBackgroundRun> Start(TWork Work)
	{
		auto Run = std::make_shared<TQVBackgroundRun>();
		FQVEngine::Get().GameThread->RunOnDedicatedThread(
			[Run, Work = std::move(Work)]
			{
				TResult Outcome = Work(FQVCookProgress(
					[Run = Run.get()](std::string_view Stage, float Fraction, std::string_view Message)
					{
						const std::lock_guard Guard(Run->ProgressLock);
						Run->Progress = {std::string(Stage), Fraction, std::string(Message)};
					}));
				Run->Result = std::move(Outcome);
				Run->bRunning.store(0);
			});
		return Run;
	}

private:
	mutable std::mutex ProgressLock;
	FQVProgressReport Progress;
};
