// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"
#include "Tests/Support/TestPrograms.h"

#include <algorithm>

using namespace QVTest;
namespace fs = std::filesystem;

namespace
{
/** Something wrong with a sample project that has a base release and a pak of Harbor. */
class FBadProject : public FCliTest
{
protected:
	void SetUp() override
	{
		EnterSample();
		BuildRelease();
		ASSERT_EQ(Run({"-q", "pack", "Docks"}).Code, 0);
	}

	/** Exactly this is told, and the project is as it was before. */
	void ExpectRefusal(const FWords& Words, const std::string& Error) const
	{
		const FTree Before = Snapshot(Folder);
		ExpectFailure(Words, "error: " + Error);
		ExpectSameFiles(Before, Snapshot(Folder));
	}
	/** A pack stops at exactly this question, which is of yes and no. */
	void ExpectQuestion(const std::string& Question, const std::string& Key) const
	{
		const FProgramEnd End = Run({"pack", "Docks"});
		EXPECT_EQ(End.Code, 3);
		EXPECT_EQ(End.Out, "");
		EXPECT_EQ(WithoutProgress(End.Err),
			"question: " + Question + "\n  answer: No, as there is nobody to ask\n  to answer otherwise: --answer " +
				Key + "=Yes, or --yes\n");
	}
};
} // namespace

TEST_F(FBadProject, TheProjectIsFoundOrItsAbsenceExplained)
{
	const fs::path Project = Folder;
	for (const fs::path& Inside : {Project, Project / "Plugins/Cave/Content/Maps"})
	{
		Folder = Inside;
		EXPECT_EQ(Run({"maps"}).Code, 0) << Inside;
	}
	Folder = Temp.Path();
	EXPECT_EQ(Run({"--project", "Пример 1/SampleMaps.uproject", "maps", "-q"}).Code, 0);
	EXPECT_EQ(Run({"maps", "--project", "Пример 1"}).Code, 0);
	const struct
	{
		FWords Words;
		const char* Error;
	} Cases[] = {
		{{"maps"}, "no mapping project found: neither <T> nor a folder above it holds a .uproject file. Go into your "
				   "project, or name it with --project <file>\n"},
		{{"pack", "Docks", "--project", "Missing.uproject"},
			"<T>/Missing.uproject is not there: --project takes a .uproject file or the folder that holds it\n"},
		{{"--project", "Пример 1/Plugins", "maps"}, "<T>/Пример 1/Plugins holds no .uproject file\n"},
		{{"--project", "Пример 1/Plugins/Cave/Cave.uplugin", "maps"},
			"<T>/Пример 1/Plugins/Cave/Cave.uplugin is not a .uproject file: --project takes a .uproject file or the "
			"folder that holds it\n"},
	};
	for (const auto& Case : Cases)
	{
		ExpectRefusal(Case.Words, Case.Error);
	}
	Folder = Project;
	Put("Other.uproject", "{}");
	ExpectRefusal({"maps"}, "<T>/Пример 1 holds 2 .uproject files (Other.uproject, SampleMaps.uproject): name the one "
							"you mean with --project <file>\n");
	EXPECT_EQ(Run({"maps", "--project", "SampleMaps.uproject"}).Code, 0);
}

TEST_F(FBadProject, AModThatCannotBePackedIsExplained)
{
	Put("Plugins/NoDescriptor/Content/Maps/Hall.umap", "");
	Put("Plugins/My Map/notes.txt", "");
	Put("Plugins/NoContent/NoContent.uplugin", "{}");
	Put("Plugins/NoMaps/NoMaps.uplugin", "{}");
	Put("Plugins/NoMaps/Content/Props/Lamp.uasset", "");
	Put("Plugins/Engine/Engine.uplugin", "{}");
	Put("Plugins/Engine/Content/Maps/Hall.umap", "");
	const struct
	{
		FWords Words;
		const char* Error;
	} Cases[] = {
		{{"Harbr"}, "there is no mod or map 'Harbr': see qvmap maps\n  did you mean 'Harbor'?\n"},
		{{"Dock"}, "there is no mod or map 'Dock': see qvmap maps\n  did you mean 'Docks'?\n"},
		{{"Elsewhere"}, "there is no mod or map 'Elsewhere': see qvmap maps\n"},
		{{"../Cave"}, "there is no mod or map '../Cave': see qvmap maps\n"},
		{{}, "the project has 3 maps: name one\n  qvmap pack /Cave/Maps/Hall\n  qvmap pack /Harbor/Maps/Docks\n"
			 "  qvmap pack /Harbor/Maps/Pier\n"},
		{{"harbor"}, "'harbor' has 2 maps: name one by its package\n  qvmap pack /Harbor/Maps/Docks\n"
					 "  qvmap pack /Harbor/Maps/Pier\n"},
		{{"NoDescriptor"},
			"No plugin found for 'NoDescriptor'. You can only export maps that live inside a Plugin folder.\n"},
		{{"NoContent"}, "No maps found in plugin: NoContent\n"},
		{{"NoMaps"}, "No maps found in plugin: NoMaps\n"},
		{{"Engine"}, "Plugin name 'Engine' is reserved and cannot be used for mods.\n"},
		{{"QUARVEL"}, "Plugin name 'QUARVEL' is reserved and cannot be used for mods.\n"},
		{{"My Map"}, "Plugin name 'My Map' contains invalid character ' '. Allowed: letters, numbers, underscore, "
					 "hyphen.\n"},
		{{"Docks", "--engine", "empty", "--yes", "--quiet"},
			"Failed to pack Harbor: Cook failed: UnrealEditor-Cmd.exe not found: "
			"<T>/Пример 1/empty/Binaries/Win64/UnrealEditor-Cmd.exe\n"},
		{{"Docks", "--engine", "missing"}, "--engine names <T>/Пример 1/missing, which is not a folder: give the "
										   "engine's folder, the one that holds Binaries/Win64\n"},
	};
	fs::create_directory(Folder / "empty");
	for (const auto& Case : Cases)
	{
		FWords Words = Case.Words;
		Words.insert(Words.begin(), "pack");
		ExpectRefusal(Words, Case.Error);
	}
	ExpectRefusal({"base-release", "build", "--engine", "empty"},
		"UnrealEditor-Cmd.exe not found: <T>/Пример 1/empty/Binaries/Win64/UnrealEditor-Cmd.exe\n");
	Environment["QVMAP_ENGINE_DIR"] = "missing";
	ExpectRefusal({"maps"}, "QVMAP_ENGINE_DIR names <T>/Пример 1/missing, which is not a folder: give the engine's "
							"folder, the one that holds Binaries/Win64\n");
}

TEST_F(FBadProject, ABrokenPackageIsNamedAndNothingIsPacked)
{
	for (const char* Broken : {"", "no package"})
	{
		Put("Plugins/Harbor/Content/Meshes/Boat.uasset", Broken);
		const FTree Before = Snapshot(Folder);
		const FProgramEnd Asked = Run({"-q", "pack", "Docks"});
		EXPECT_EQ(Asked.Code, 3);
		EXPECT_TRUE(Asked.Err.starts_with("question: Map Check\n  Docks: 1 error(s), 0 warning(s).\n\n"
										  "    \u2022 Packages readable\n"))
			<< Asked.Err;
		ExpectSameFiles(Before, Snapshot(Folder));
		const FProgramEnd End = Run({"-q", "pack", "Docks", "--yes"});
		EXPECT_EQ(End.Code, 1);
		EXPECT_TRUE(End.Err.starts_with("error: Failed to pack Harbor: Cook failed: Cook failed with return code 1\n"))
			<< End.Err;
		EXPECT_NE(End.Err.find("\n    LogCook: Error: <T>/Пример 1/Plugins/Harbor/Content/Meshes/Boat.uasset "),
			std::string::npos)
			<< End.Err;
		ExpectSameFiles(Before, Snapshot(Folder));
	}
}

TEST_F(FBadProject, AReadOnlyDescriptorStopsTheReleaseAndAllModsAreBack)
{
	fs::permissions(Folder / "Plugins/Harbor/Harbor.uplugin", fs::perms(0444));
	ExpectRefusal({"base-release", "build"},
		"Failed to disable mod plugin 'Harbor' for base release build. Ensure the plugin files are not read-only or in "
		"use.\n  cause: <T>/Пример 1/Plugins/Harbor/Harbor.uplugin could not be renamed: Permission denied\n");
}

TEST_F(FBadProject, ABadBaseReleaseIsRefusedByName)
{
	const std::string Registry = "Releases/1.0/Windows/Metadata/DevelopmentAssetRegistry.bin";
	const std::string Good = Get(Registry);
	const std::string Unreadable = "The base release asset registry at <T>/Пример 1/" + Registry +
								   " could not be read. It is likely corrupt or was written by a different engine "
								   "version. Rebuild the base release.";
	std::string OtherVersion = Good;
	OtherVersion[16] = '\x7F';
	for (const std::string& Bytes : {std::string(), Good.substr(0, Good.size() / 2), OtherVersion})
	{
		Put(Registry, Bytes);
		const FTree Before = Snapshot(Folder);
		const FProgramEnd Status = Run({"base-release", "status"});
		EXPECT_EQ(Status.Code, 1);
		const std::string Told = WithoutProgress(Status.Err);
		EXPECT_TRUE(Told.starts_with("error: " + Unreadable + "\n  cause: <T>/Пример 1/" + Registry + " ")) << Told;
		EXPECT_TRUE(Told.ends_with("\n  fix: qvmap base-release build\n")) << Told;
		EXPECT_EQ(std::count(Told.begin(), Told.end(), '\n'), 3) << Told;
		ExpectQuestion("Base Release Required\n  The base release can't be used:\n\n  " + Unreadable +
						   "\n\n  Rebuilding cooks the base game and can take a while.\n\n  Rebuild it now?",
			"BaseReleaseMissingTitle");
		ExpectSameFiles(Before, Snapshot(Folder));
	}
	ASSERT_EQ(Run({"-q", "pack", "Docks", "--answer", "BaseReleaseMissingTitle=yes"}).Code, 0);
	EXPECT_EQ(Run({"-q", "base-release", "status"}).Code, 0);

	const std::string Descriptor = Get("Plugins/QUARVEL/QUARVEL.uplugin");
	std::string Newer = Descriptor;
	Newer.replace(Newer.find("1.0.0"), 5, "1.0.1");
	Put("Plugins/QUARVEL/QUARVEL.uplugin", Newer);
	const FTree Before = Snapshot(Folder);
	ExpectQuestion(
		"Base Release Out Of Date\n  The base release was built against different plugin versions:\n\n"
		"  QUARVEL: base release 1.0.0, installed 1.0.1\n\n  Packing against it can produce a map that loads "
		"and then crashes on the first frame. Rebuilding cooks the base game and can take a while.\n\n"
		"  Rebuild it now?",
		"BaseReleaseStaleTitle");
	ExpectSameFiles(Before, Snapshot(Folder));
	Expect({"base-release", "status", "-q"}, 1,
		"base release  <T>/Пример 1/Releases/1.0\npackages      5\nregistry      <T>/Пример 1/" + Registry +
			", 1,526 bytes, <Date> UTC\n",
		"error: The base release is out of date: QUARVEL: base release 1.0.0, installed 1.0.1\n");
	EXPECT_EQ(Run({"-q", "pack", "Docks", "--yes"}).Code, 0);
	EXPECT_EQ(Run({"-q", "base-release", "status"}).Code, 0);
}

TEST_F(FBadProject, WhereNothingCanBeWrittenTheFolderIsNamed)
{
	fs::remove_all(Folder / "Saved");
	Put("Saved", "in the way");
	const std::string Saved = "<T>/Пример 1/Saved";
	ExpectRefusal({"-q", "pack", "Docks"}, "Could not create the backup folder: " + Saved +
											   "/QVPak/Temp/ImportBackup\n  cause: no log is kept: " + Saved +
											   "/Logs/QVMap.log: Not a directory\n  cause: " + Saved +
											   "/QVPak/Temp/ImportBackup could not be created: Not a directory\n");
	const FTree Before = Snapshot(Folder);
	for (const FWords& Words : {FWords{"base-release", "build"}, FWords{"settings", "set", "verbose_logging", "true"}})
	{
		const FProgramEnd End = Run(Words);
		EXPECT_EQ(End.Code, 1);
		EXPECT_NE(End.Err.find(": Not a directory\n"), std::string::npos) << End.Err;
		ExpectSameFiles(Before, Snapshot(Folder));
	}
	EXPECT_EQ(Run({"maps"}).Code, 0);
}

TEST_F(FBadProject, AFullDiskChangesNothing)
{
	QV_SKIP_ON_WINDOWS("no full disk is played here");
	const FTree Before = Snapshot(Folder);
	const std::tuple<FWords, std::uint64_t, const char*, const char*> Cases[] = {
		{{"-q", "pack", "Docks"}, 200'000,
			"error: Failed to pack Harbor: Cook failed: Cook failed with return code 1\n",
			"/Meshes/Boat.uexp could not be written: File too large\n"},
		{{"-q", "pack", "Docks"}, 100, "error: Failed to pack Harbor: Failed to generate manifest\n",
			"/Temp/Harbor_manifest.json could not be written: File too large\n"},
		{{"-q", "base-release", "build"}, 1'000, "error: Base release cook failed with return code 1\n",
			"/Metadata/DevelopmentAssetRegistry.bin could not be written: File too large\n"},
	};
	for (const auto& [Words, Limit, Error, Cause] : Cases)
	{
		MostFileBytes = Limit;
		const FProgramEnd End = Run(Words);
		EXPECT_EQ(End.Code, 1);
		EXPECT_TRUE(End.Err.starts_with(Error)) << End.Err;
		EXPECT_NE(End.Err.find(Cause), std::string::npos) << End.Err;
		ExpectSameFiles(Before, Snapshot(Folder));
	}
	MostFileBytes.reset();
	EXPECT_EQ(Run({"-q", "pack", "Docks"}).Code, 0) << "with room again, all is well";
}
