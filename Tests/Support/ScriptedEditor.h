// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVPrintf.h"
#include "Engine/QVLevelEditor.h"
#include "Standalone/Engine/Editor.h"
#include "Tests/Support/ScriptedWorld.h"

#include <set>

namespace QVTest
{
/** An editor that notes what it is asked to do, and in which a level is open as soon as its name is said. */
class FScriptedEditor : public QVStandalone::FEditor, IQVLevelEditor
{
public:
	/** The one that is open, if bHasWorld. */
	FScriptedWorld World;
	bool bHasWorld = false;
	bool bHasLevelEditor = true;
	bool bAutosaving = false;
	/** The user goes on at the question whether to save. */
	bool bSaves = true;
	/** Where the user saves a level to; empty: nowhere. */
	std::string SaveAs;
	/** Called in NewLevel and its like, with the package's name; false: that fails. */
	std::function<bool(const std::string&)> OnLevel;
	/** One line each. */
	std::string Asked;

	FScriptedEditor()
	{
		SetLevelEditor(this);
		SetUnattended(false);
	}

	/** As a user does it. */
	void Open(const std::string& Package)
	{
		bHasWorld = true;
		World.Package = Package;
		World.Name = Package.substr(Package.rfind('/') + 1);
		MapOpened.Broadcast();
	}
	std::string TakeAsked() { return std::exchange(Asked, {}); }

	const IQVWorld* GetOpenWorld() const override { return bHasWorld ? &World : nullptr; }
	FQVSubscription OnMapOpened(std::function<void()> Handler) override { return MapOpened.Subscribe(Handler); }
	bool SaveDirtyPackages(const FQVSaveDirtyPackages& Options) override
	{
		Asked += QVPrintf("save%s%s%s%s\n", Options.bPromptUserToSave ? " prompt" : "",
			Options.bSaveMapPackages ? " maps" : "", Options.bSaveContentPackages ? " content" : "",
			Options.bCanBeDeclined ? " declinable" : "");
		return bSaves || !Options.bPromptUserToSave;
	}
	bool SaveLevelAs(const IQVLevel& Level, std::string& OutFilename) override
	{
		Asked += &Level == &World.Level ? "save level as\n" : "save another level as\n";
		OutFilename = SaveAs;
		return !SaveAs.empty();
	}
	IQVLevelEditor* GetLevelEditor() override { return bHasLevelEditor ? this : nullptr; }
	bool IsAutosaving() const override { return bAutosaving; }

	bool NewLevel(std::string_view PackageName, bool bIsPartitionedWorld) override
	{
		Asked += QVPrintf("new %s%s\n", PackageName, bIsPartitionedWorld ? " partitioned" : "");
		return Make(PackageName);
	}
	bool NewLevelFromTemplate(std::string_view PackageName, std::string_view Template) override
	{
		Asked += QVPrintf("new %s from %s\n", PackageName, Template);
		return Make(PackageName);
	}
	bool LoadLevel(std::string_view PackageName) override
	{
		Asked += QVPrintf("load %s\n", PackageName);
		return Make(PackageName);
	}

private:
	TQVEvent<> MapOpened;

	bool Make(std::string_view PackageName)
	{
		const bool bMade = !OnLevel || OnLevel(std::string(PackageName));
		if (bMade)
		{
			Open(std::string(PackageName));
		}
		return bMade;
	}
};
} // namespace QVTest
