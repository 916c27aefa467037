// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVEvent.h"
#include "Core/QVText.h"

#include <string>

class IQVBlueprint;
class IQVLevel;
class IQVLevelEditor;
class IQVWorld;

/** What is to be saved, and whether the user is asked. */
struct FQVSaveDirtyPackages
{
	bool bPromptUserToSave = false;
	bool bSaveMapPackages = true;
	bool bSaveContentPackages = true;
	/** Whoever is asked may go on without saving. */
	bool bCanBeDeclined = true;
};

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
	/** Saves what is dirty. False if something could not be saved, or if the user has cancelled. */
	virtual bool SaveDirtyPackages(const FQVSaveDirtyPackages& Options = {}) = 0;
	/** Asks for a place and saves the level there. False if the user has cancelled, or if it could not be saved. */
	virtual bool SaveLevelAs(const IQVLevel& Level, std::string& OutFilename) = 0;
	/** Null if the editor has none. */
	virtual IQVLevelEditor* GetLevelEditor() = 0;
	/** Nobody is there to be asked. */
	virtual bool IsUnattended() const = 0;
	/** It is saving copies of unsaved work by itself. */
	virtual bool IsAutosaving() const = 0;

	/**
	 * A level's blueprint, not created if there is none. Null with OutRefusal untouched: there is none; null with a
	 * refusal: there is one, and why this engine cannot edit it.
	 */
	virtual IQVBlueprint* GetLevelScriptBlueprint(const IQVLevel& Level, FQVText& OutRefusal) = 0;
	/** What is done from here to EndTransaction is undone in one step under this title. */
	virtual void BeginTransaction(const FQVText& Title) = 0;
	virtual void EndTransaction() = 0;
};
