// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVDialogs.h"
#include "Engine/QVEditor.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/World.h"

#include <memory>

namespace QVStandalone
{
/** The open map, as its file has it: there is no editor that could change it, and nothing compiles in the background.
 */
class FEditor : public IQVEditor
{
public:
	void FinishAllCompilation() override {}
	const IQVWorld* GetOpenWorld() const override { return World.get(); }
	/** Nothing ever is dirty. */
	bool SaveDirtyPackages() override { return true; }
	/** Always refused: what compiles a blueprint is the real editor. */
	IQVBlueprint* GetLevelScriptBlueprint(const IQVLevel& Level, FQVText& OutRefusal) override;
	void BeginTransaction(const FQVText&) override {}
	void EndTransaction() override {}

	/** Null closes the open one. */
	void SetOpenWorld(std::unique_ptr<FWorld> NewWorld) { World = std::move(NewWorld); }

private:
	std::unique_ptr<FWorld> World;
};

/** There is no desktop either: no file dialog can be shown, and a message goes to the log. */
class FNoDialogs : public IQVDialogs
{
public:
	void ShowMessage(const FQVText& Message) override { LogEngine(EQVLogVerbosity::Warning, "%s", Message.ToString()); }
	bool HasDesktop() const override { return false; }
	std::optional<std::string> OpenFileDialog(std::string_view, std::string_view) override { return std::nullopt; }
};
} // namespace QVStandalone
