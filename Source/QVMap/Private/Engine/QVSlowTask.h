// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVText.h"

#include <memory>

/** Long work that a user may watch and cancel; over when it is destroyed. Game thread. */
class IQVSlowTask
{
public:
	virtual ~IQVSlowTask() = default;

	virtual bool ShouldCancel() const = 0;
	/** The dialog that shows it. Without one the work goes on all the same. */
	virtual void MakeDialog(bool /*bShowCancelButton*/, bool /*bAllowInPlayInEditor*/) {}
	/** What came before is done; a step of so many of the task's units begins. */
	virtual void EnterProgressFrame(float /*Amount*/, const FQVText& /*Message*/) {}
};

/** Begins slow tasks. Game thread. */
class IQVSlowTasks
{
public:
	virtual ~IQVSlowTasks() = default;

	/** Never null. The amount is in units of the task's own. */
	virtual std::unique_ptr<IQVSlowTask> Begin(float AmountOfWork, const FQVText& DefaultMessage) = 0;
};
