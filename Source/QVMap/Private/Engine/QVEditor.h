// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVEvent.h"
#include "Core/QVText.h"

class IQVBlueprint;
class IQVLevel;
class IQVWorld;

/** The editor around the open level. Game thread. */
class IQVEditor
{
public:
	virtual ~IQVEditor() = default;

	/** Finishes all asset compilation that runs in the background and flushes the rendering commands. */
	virtual void FinishAllCompilation() = 0;

	/** Null without a world. */
	virtual const IQVWorld* GetOpenWorld() const = 0;
	/** The handler is called each time a map has been opened, as long as the subscription is held. */
	[[nodiscard]] virtual FQVSubscription OnMapOpened(std::function<void()> Handler) = 0;
	/** Saves what is dirty, maps and content, without asking. False if something could not be saved. */
	virtual bool SaveDirtyPackages() = 0;

	/**
	 * A level's blueprint, not created if there is none. Null with OutRefusal untouched: there is none; null with a
	 * refusal: there is one, and why this engine cannot edit it.
	 */
	virtual IQVBlueprint* GetLevelScriptBlueprint(const IQVLevel& Level, FQVText& OutRefusal) = 0;
	/** What is done from here to EndTransaction is undone in one step under this title. */
	virtual void BeginTransaction(const FQVText& Title) = 0;
	virtual void EndTransaction() = 0;
};
