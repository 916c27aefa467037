// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVEditor.h"
#include "Engine/QVLevelEditor.h"
#include "Standalone/Engine/EditorWorld.h"
#include "Standalone/Engine/LevelScriptBlueprint.h"

#include <functional>
#include <memory>
#include <vector>

namespace QVStandalone
{
/** The open map, as its file has it: there is no editor with it, and nothing compiles in the background. */
class FEditor : public IQVEditor
{
public:
	using FReadWorld = std::function<QVFormats::TResult<FWorldReading>()>;

	void FinishAllCompilation() override {}
	const IQVWorld* GetOpenWorld() const override { return World.get(); }
	FQVSubscription OnMapOpened(std::function<void()> Handler) override
	{
		return MapOpened.Subscribe(std::move(Handler));
	}
	/** Nothing ever is dirty. */
	bool SaveDirtyPackages(const FQVSaveDirtyPackages&) override { return true; }
	/** Nobody can be asked for a place here. */
	bool SaveLevelAs(const IQVLevel& Level, std::string& OutFilename) override;
	IQVLevelEditor* GetLevelEditor() override { return LevelEditor; }
	bool IsUnattended() const override { return bUnattended; }
	bool IsAutosaving() const override { return false; }
	/**
	 * What compiles a blueprint is the real editor: refused where no engine is installed that could be asked, and where
	 * it is known that it cannot be done. Compile does it in the map's file, see FLevelScriptBlueprint; the open map
	 * has no code then. Good until the next call, or until another map is opened.
	 */
	IQVBlueprint* GetLevelScriptBlueprint(const IQVLevel& Level, FQVText& OutRefusal) override;
	void BeginTransaction(const FQVText&) override {}
	void EndTransaction() override {}

	/** Null closes the open one; any other has been opened then. ReadAgain: reads the same map once more; empty only
	 * with null. */
	void SetOpenWorld(std::unique_ptr<FWorld> NewWorld, FReadWorld ReadAgain = {});
	/** Packages were saved or put back on the disk: the open map shows what its files hold now. */
	void RenewOpenWorld();
	/** Outlives the editor; there is none in the beginning. */
	void SetLevelEditor(IQVLevelEditor* NewLevelEditor) { LevelEditor = NewLevelEditor; }
	/** For a program that has a user in front of it; in the beginning nobody is there. */
	void SetUnattended(bool bNew) { bUnattended = bNew; }

private:
	IQVLevelEditor* LevelEditor = nullptr;
	bool bUnattended = true;
	std::unique_ptr<FEditorWorld> World;
	FReadWorld ReadWorld;
	std::unique_ptr<FLevelScriptBlueprint> Blueprint;
	TQVEvent<> MapOpened;
};
} // namespace QVStandalone
