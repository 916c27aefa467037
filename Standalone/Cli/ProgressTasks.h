// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVSlowTask.h"
#include "Standalone/Cli/Console.h"
#include "Standalone/Engine/Interrupt.h"

namespace QVCli
{
/** Slow tasks as progress on the terminal, under one name for the stage; the user's interrupt cancels. */
class FProgressTasks : public IQVSlowTasks
{
public:
	FProgressTasks(FConsole& InConsole, std::string_view InStage)
		: Console(InConsole)
		, Stage(InStage)
	{
	}
	std::unique_ptr<IQVSlowTask> Begin(float AmountOfWork, const FQVText&) override
	{
		return std::make_unique<FTask>(*this, AmountOfWork);
	}

private:
	class FTask : public IQVSlowTask
	{
	public:
		FTask(FProgressTasks& InOwner, float InTotal)
			: Owner(InOwner)
			, Total(InTotal)
		{
		}
		bool ShouldCancel() const override { return QVStandalone::FInterrupt::IsRaised(); }
		void EnterProgressFrame(float Amount, const FQVText& Message) override
		{
			Owner.Console.Progress(Owner.Stage, Done / Total, Message.ToString());
			Done += Amount;
		}

	private:
		FProgressTasks& Owner;
		const float Total;
		float Done = 0.0F;
	};

	FConsole& Console;
	const std::string Stage;
};
} // namespace QVCli
