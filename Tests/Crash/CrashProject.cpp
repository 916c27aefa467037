// SPDX-License-Identifier: MIT
#include "Tests/Crash/CrashProject.h"

#include "Standalone/Engine/OsPath.h"
#include "Tests/Formats/TestContent.h"

namespace fs = std::filesystem;

namespace QVTest
{
namespace
{
bool IsOwn(const std::string& Path)
{
	const bool bCooked = Path.starts_with("Plugins/") && Path.find("/Saved/") != std::string::npos;
	return !bCooked && (Path.starts_with("Content/") || Path.starts_with("Plugins/") || Path.starts_with("Config/") ||
						   Path.ends_with(".uproject"));
}
} // namespace

FOwnFiles ReadOwnFiles(const fs::path& Project)
{
	FOwnFiles Files;
	for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Project))
	{
		const std::string Path = QVStandalone::FromOsPath(Entry.path().lexically_relative(Project));
		if (!Entry.is_directory() && IsOwn(Path))
		{
			const auto Marks = static_cast<unsigned>(Entry.status().permissions());
			Files[Path] = std::to_string(Marks) + " " + ReadText(Entry.path());
		}
	}
	return Files;
}

void CopyTree(const fs::path& From, const fs::path& To)
{
	fs::create_directory(To);
	for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(From))
	{
		const fs::path Copy = To / Entry.path().lexically_relative(From);
		if (Entry.is_directory())
		{
			fs::create_directory(Copy);
			continue;
		}
		fs::copy_file(Entry.path(), Copy);
		fs::last_write_time(Copy, Entry.last_write_time());
	}
}

FCrashProject::FCrashProject()
{
	Project.AddTemplate();
	Project.AddMod(Mod, {});
	Project.AddMod("Tools", {"Maps/Test"});
	Project.Write("Config/DefaultGame.ini", "[/Script/EngineSettings.GeneralProjectSettings]\nProjectName=Crash\n");
	PutPlayableMap("/Cave/Maps/Hall", {"/Game/Rock", "/Cave/Own", "soft /Tools/Moss", "/Game/OldPile"});
	PutPlayableMap("/Cave/Maps/Annex", {"/Cave/Own"});
	PutMesh("/Cave/Own", {"/Game/Rock"}, 2000);
	PutMesh("/Game/Rock", {"/Game/Stein_Größe"}, 5000);
	PutMesh("/Game/Stein_Größe", {"/Game/Rock"});
	PutMesh("/Game/Props/Deep/Pile");
	PutRedirector("/Game/OldPile", "/Game/Props/Deep/Pile");
	PutMesh("/Game/Unused");
	PutMesh("/Tools/Moss");
	fs::permissions(Folder() / "Plugins/Cave/Content/Own.uasset", fs::perms::owner_read | fs::perms::owner_write);
}

fs::path FCrashProject::Folder() const
{
	return QVStandalone::ToOsPath(Project.ProjectDir());
}

fs::path FCrashProject::Journal(const fs::path& Project)
{
	return Project / Journals / Mod;
}
} // namespace QVTest
