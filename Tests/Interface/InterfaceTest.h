// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapBaseReleaseBuild.h"
#include "Interface/QVMapMods.h"
#include "Interface/SQVMapNewModDialog.h"
#include "Tests/Support/ScriptedDialogs.h"
#include "Tests/Support/ScriptedEditor.h"
#include "Tests/Support/ScriptedGameThread.h"
#include "Tests/Support/ToolkitTest.h"

namespace QVTest
{
/** A toolkit with an editor, dialogs and a time that play a script. Nothing is known of maps in the beginning. */
struct FInterfaceTest : FToolkitTest
{
	FScriptedEditor Editor;
	FScriptedDialogs Dialogs;
	FScriptedGameThread GameThread;

	FInterfaceTest()
	{
		Engine.Interfaces.Editor = &Editor;
		Engine.Interfaces.Dialogs = &Dialogs;
		Engine.Interfaces.GameThread = &GameThread;
		FQVMapMods::InvalidateCache();
	}

	/** A base release is being built from here to EndBuild, and comes to nothing. */
	void BeginBuild()
	{
		GameThread.bHoldsDedicated = true;
		UseScriptedChildren();
		Children.bStarts = false;
		FQVMapBaseReleaseBuild::StartBaseReleaseBuild({});
	}
	void EndBuild()
	{
		GameThread.RunHeld();
		GameThread.Advance(0.1);
		EXPECT_FALSE(FQVMapBaseReleaseBuild::IsBaseReleaseBuilding());
		Recording.Take();
	}

	/** "Key: text", with the project's folder masked. */
	std::string Say(const FQVText& Text) const
	{
		return Project.Mask(Text.GetKey().empty() ? Text.ToString() : Text.GetKey() + ": " + Text.ToString());
	}
};

/** A user in front of the "New Map" window. */
struct FScriptedNewModView : IQVNewModDialogView
{
	/** What the user does while the window is open. */
	std::function<void(SQVMapNewModDialog&)> User;
	int Changes = 0;
	int Shown = 0;
	bool bOpen = false;

	FScriptedNewModView() { SQVMapNewModDialog::SetView(this); }
	FScriptedNewModView(const FScriptedNewModView&) = delete;
	FScriptedNewModView& operator=(const FScriptedNewModView&) = delete;
	~FScriptedNewModView() override { SQVMapNewModDialog::SetView(nullptr); }

	void ShowModal(SQVMapNewModDialog& Dialog) override
	{
		++Shown;
		bOpen = true;
		User(Dialog);
		bOpen = false;
	}
	void OnChanged() override { ++Changes; }
	void Close() override { bOpen = false; }
};
} // namespace QVTest
