// SPDX-License-Identifier: MIT
#include "Workspace/QVMapPaths.h"

#include "Tests/Support/ToolkitTest.h"

using FPathsTest = QVTest::FToolkitTest;

TEST_F(FPathsTest, KnowWhereEverythingLies)
{
	const struct
	{
		std::string Path;
		const char* Expected;
	} Cases[] = {
		{FQVMapPaths::GetProjectDir(), "<Project>"},
		{FQVMapPaths::GetProjectName(), "MapWork"},
		{FQVMapPaths::GetProjectFilePath(), "<Project>/MapWork.uproject"},
		{FQVMapPaths::GetProjectContentDir(), "<Project>/Content"},
		{FQVMapPaths::GetPluginsDir(), "<Project>/Plugins"},
		{FQVMapPaths::GetReleasesDir(), "<Project>/Releases"},
		{FQVMapPaths::GetBaseReleaseDir(), "<Project>/Releases/1.0"},
		{FQVMapPaths::GetDevelopmentRegistryPath(),
			"<Project>/Releases/1.0/Windows/Metadata/DevelopmentAssetRegistry.bin"},
		{FQVMapPaths::GetRuntimeRegistryPath(), "<Project>/Releases/1.0/Windows/AssetRegistry.bin"},
		{std::string(FQVMapPaths::GetCookPlatformName()), "Windows"},
		{FQVMapPaths::GetCookRoot(), "<Project>/Saved/Cooked/Windows/MapWork"},
		{FQVMapPaths::GetWorkDir(), "<Project>/Saved/QVPak"},
		{FQVMapPaths::GetLogsDir(), "<Project>/Saved/QVPak/Logs"},
		{FQVMapPaths::GetOutputDir(), "<Project>/Saved/QVPak/Output"},
		{FQVMapPaths::GetTempDir(), "<Project>/Saved/QVPak/Temp"},
		{FQVMapPaths::GetEditorCmdPath(), "<Engine>/Binaries/Win64/UnrealEditor-Cmd.exe"},
		{FQVMapPaths::GetUnrealPakPath(), "<Engine>/Binaries/Win64/UnrealPak.exe"},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(Project.Mask(Case.Path), Case.Expected);
	}
	EXPECT_FALSE(Project.Exists("Saved")) << "asking makes no folder";
}

TEST_F(FPathsTest, FindsACookedPluginInTheFirstPlaceThatExists)
{
	const std::string Places[] = {
		"Plugins/Cave/Saved/Cooked/Windows/MapWork/Plugins/Cave/Content",
		"Saved/Cooked/Windows/MapWork/Plugins/Cave/Content",
		"Saved/Cooked/Windows/MapWork/Content/Mods/Cave",
		"Saved/Cooked/Windows/MapWork/Plugins/Cave/Content/Mods/Cave",
	};
	EXPECT_EQ(FQVMapPaths::FindCookedPluginDir("Cave"), Project.At(Places[0]));
	EXPECT_EQ(Logged(), "") << "the first place, although it is not there";
	// the fourth place lies inside the second, so it can never be the first that exists
	for (const std::string& Place : {Places[2], Places[1], Places[0]})
	{
		Project.MakeFolder(Place);
		EXPECT_EQ(FQVMapPaths::FindCookedPluginDir("Cave"), Project.At(Place));
		EXPECT_EQ(Logged(), "QVMap: Found cooked plugin dir at: <Project>/" + Place + "\n");
	}
}

TEST_F(FPathsTest, EnsureDirectoryMakesOnlyWhatIsMissing)
{
	int Made = 0;
	Files.Refuse = [&Made](std::string_view Operation, std::string_view)
	{
		Made += Operation == "create" ? 1 : 0;
		return false;
	};
	EXPECT_TRUE(FQVMapPaths::EnsureDirectory(Project.At("Saved/Höhle/x")));
	EXPECT_TRUE(Project.Exists("Saved/Höhle/x"));
	EXPECT_TRUE(FQVMapPaths::EnsureDirectory(Project.At("Saved/Höhle/x")));
	EXPECT_EQ(Made, 1);
	Project.Write("file", "");
	EXPECT_FALSE(FQVMapPaths::EnsureDirectory(Project.At("file")));
	EXPECT_FALSE(FQVMapPaths::EnsureDirectory(Project.At("file/below")));
}
