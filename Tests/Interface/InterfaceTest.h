// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapBaseReleaseBuild.h"
#include "Interface/QVMapMods.h"
#include "Interface/SQVMapNewModDialog.h"
#include "Tests/Support/ScriptedDialogs.h"
#include "Tests/Support/ScriptedEditor.h"
#include "Tests/Support/ToolkitTest.h"

namespace QVTest
{
/** A toolkit with an editor and dialogs that play a script. Nothing is known of maps in the beginning. */
struct FInterfaceTest : FToolkitTest
{
	FScriptedEditor Editor;
	FScriptedDialogs Dialogs;

	FInterfaceTest()
	{
		Engine.Interfaces.Editor = &Editor;
		Engine.Interfaces.Dialogs = &Dialogs;
		FQVMapMods::InvalidateCache();
	}

	/** A base release is being built from here to EndBuild. */
	void BeginBuild() { FQVMapBaseReleaseBuild::bBuilding = true; }
	void EndBuild()
	{
		FQVMapBaseReleaseBuild::bBuilding = false;
		FQVMapBaseReleaseBuild::OnBuildEnded().Broadcast();
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
