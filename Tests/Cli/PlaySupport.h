// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVString.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Cli/CliTest.h"
#include "Tests/Support/TestPrograms.h"

namespace QVTest
{
/** A game that is a real program, and a desktop whose opener is one too. */
class FPlay : public FScriptedToolsTest
{
protected:
	FPlay()
	{
		Project.MakeFolder("run");
		Environment["XDG_RUNTIME_DIR"] = Project.At("run");
		Environment["PATH"] = Project.At("bin");
		std::filesystem::create_directories(QVStandalone::ToOsPath(Project.At("The Game")));
		PlaceTestChild(QVStandalone::ToOsPath(Game));
		LetDesktopEndWith(4);
	}

	const std::string Game = Project.At("The Game/QUARVEL.exe");
	const std::string Pipe = GamePipe(Project.At("run"));
	/** "/", or that of the drive. */
	const std::string Root = QVStandalone::FromOsPath(Folder.root_path());

	void ScriptGame(const FWords& Commands) const
	{
		Project.Write("The Game/QUARVEL.exe.script", FQVString::Join(Commands, "\n"));
	}
	void LetDesktopEndWith(int Code) const
	{
		Project.Write(
			"bin/xdg-open", "#!/bin/sh\nprintf '%s\\n' \"$@\" >>\"$0.seen\"\nexit " + std::to_string(Code) + "\n");
		std::filesystem::permissions(
			QVStandalone::ToOsPath(Project.At("bin/xdg-open")), std::filesystem::perms::owner_all);
	}
	/** What the desktop was asked to open. */
	std::string Opened() const { return Project.Read("bin/xdg-open.seen"); }
	std::string PakPath() const { return Paks().empty() ? "" : QVStandalone::FromOsPath(Paks().front()); }
};
} // namespace QVTest
