// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVSlowTask.h"
#include "HandOff/QVMapPlaytest.h"
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Tests/Support/ContentProject.h"
#include "Tests/Support/ScriptedDialogs.h"
#include "Tests/Support/ScriptedShell.h"

#include <set>

namespace QVTest
{
/** Cancels the check of the map, if the test says so, and nothing else. */
struct FImpatientUser : IQVSlowTasks
{
	struct FTask : IQVSlowTask
	{
		const bool bCancels;

		explicit FTask(bool bInCancels)
			: bCancels(bInCancels)
		{
		}
		bool ShouldCancel() const override { return bCancels; }
	};

	bool bCancels = false;

	std::unique_ptr<IQVSlowTask> Begin(float, const FQVText& Message) override
	{
		return std::make_unique<FTask>(bCancels && Message.GetKey() == "Running");
	}
};

/**
 * The flow over a project with the mods Cave and Shaft, a base release, children that cook and pack, a game that does
 * not run and Steam that takes everything. What the user is shown and what the flow logs is one story.
 */
struct FFlowTest : FContentTest
{
	FScriptedDialogs Dialogs;
	FScriptedShell Shell{Children.Commands};
	FImpatientUser User;
	/** What the game was asked, and who asked. */
	std::vector<std::string> Completed;
	int CookCode = 0;
	/** Files that a cook of Cave leaves. */
	std::set<std::string> Cooked = {"Maps/Hall.umap", "Maps/Hall.uexp", "Rock.uasset"};

	FFlowTest();

	/** Without its start, if it is not to be playable. */
	void PutHall(bool bPlayable, const std::vector<std::string>& Meshes = {});
	/** A mesh of the mod uses one of the project, and Hall uses it. */
	void UseOutsideContent(bool bPlayable = true)
	{
		PutMesh("/Game/Rock");
		PutMesh("/Cave/Own", {"/Game/Rock"});
		PutHall(bPlayable, {"/Cave/Own"});
	}
	FQVPlayRequest Request(const std::string& Mod = "Cave", bool bLaunch = true);
	/** Scans, opens the map, and runs the flow to its end. The story since the last call, folders masked. */
	std::string Run(const FQVPlayRequest& Asked);
	std::string Run() { return Run(Request()); }
	/** The story since the last call. */
	std::string Told();
	/** All of the mods' files with their bytes. */
	std::string Snapshot() const;

private:
	std::string Transcript;

	void WorkAsChild();
	void TakeLog();
};
} // namespace QVTest
