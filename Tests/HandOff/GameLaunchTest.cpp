// SPDX-License-Identifier: MIT
#include "HandOff/QVMapPlaytest.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Support/ScopedEnvironment.h"
#include "Tests/Support/TestPrograms.h"
#include "Tests/Support/ToolkitTest.h"
#include "Workspace/QVMapConfig.h"

using QVStandalone::ToOsPath;
namespace fs = std::filesystem;

namespace
{
/** A game that is a real program, and a desktop whose opener is one too. */
struct FGameLaunchTest : QVTest::FToolkitTest
{
	const QVTest::FScopedEnvironment RuntimeVariable{"XDG_RUNTIME_DIR", Project.At("run")};
	const QVTest::FScopedEnvironment PathVariable{"PATH", Project.At("bin")};

	FGameLaunchTest()
	{
		Project.MakeFolder("run");
		Project.MakeFolder("The Game");
		QVTest::PlaceTestChild(ToOsPath(Game()));
		Project.Write("bin/xdg-open", "#!/bin/sh\nprintf '%s\\n' \"$@\" >>\"$0.seen\"\nexit 4\n");
		fs::permissions(ToOsPath(Project.At("bin/xdg-open")), fs::perms::owner_all);
	}

	std::string Game() const { return Project.At("The Game/QUARVEL.exe"); }
	void ScriptGame(std::string_view Script) const { Project.Write("The Game/QUARVEL.exe.script", Script); }

	/** Files that another process makes come when they come. */
	bool Appears(std::string_view File) const
	{
		for (int Round = 0; Round < 3000 && !Project.Exists(File); ++Round)
		{
			Engine.Interfaces.Processes->Sleep(0.01);
		}
		return Project.Exists(File);
	}
};
} // namespace

TEST_F(FGameLaunchTest, ARunningGameGetsEachRequestByItsPipe)
{
	ScriptGame(QVPrintf("listen %s\nwrite %s|\nrecord %s\nrecord %s\nwrite %s|\n", QVTest::GamePipe(Project.At("run")),
		Project.At("listening"), Project.At("first"), Project.At("second"), Project.At("done")));
	FQVProcHandle Running = Engine.Interfaces.Processes->CreateDetachedProc(Game(), "", "");
	ASSERT_TRUE(Running.IsValid());
	ASSERT_TRUE(Appears("listening"));
	FQVMapPlaytest::LaunchGameWithPak("Cave", R"(C:\Höhle 1\Cave.pak)", "Hall", "/Game/Cave/Maps/Hall");
	ASSERT_TRUE(Appears("first")); // a game that is busy is not waited for
	FQVMapPlaytest::LaunchGameForWorkshopUpload("C:/upload.json");
	ASSERT_TRUE(Appears("done"));
	EXPECT_EQ(Project.Read("first"),
		"quarvel://loadmap?pak=C:/H%C3%B6hle%201/Cave.pak&map=Hall&mapname=/Game/Cave/Maps/Hall");
	EXPECT_EQ(Project.Read("second"), "quarvel://workshop_upload?config=C:/upload.json");
	EXPECT_EQ(Logged(), "QVMap: Sent to running game via named pipe\n"
						"QVMap: Workshop upload sent to running game via pipe\n");
	EXPECT_FALSE(Project.Exists("bin/xdg-open.seen"));
}

TEST_F(FGameLaunchTest, AConfiguredExecutableStartsInItsOwnFolder)
{
	FQVMapConfig::SetGameExePath(Game());
	Recording.Take();
	ScriptGame("arguments seen\nwrite done|\n");
	FQVMapPlaytest::LaunchGameWithPak("Cave", "C:/Höhle 1/Cave.pak", "Hall", "/Game/Cave/Maps/Hall");
	ASSERT_TRUE(Appears("The Game/done"));
	EXPECT_EQ(Project.Read("The Game/seen"),
		"-loadpak=C:/Höhle 1/Cave.pak\n-map=Hall\n-mapname=/Game/Cave/Maps/Hall\n-log\n");
	EXPECT_EQ(Complaints(), "");
	EXPECT_FALSE(Project.Exists("bin/xdg-open.seen"));
}

TEST_F(FGameLaunchTest, WithoutAGameTheDesktopIsAskedAndItsRefusalTold)
{
	QV_SKIP_ON_WINDOWS("would start the Steam of this machine");
	Project.Write("no program", "");
	FQVMapConfig::SetGameExePath(Project.At("no program"));
	Recording.Take();
	FQVMapPlaytest::LaunchGameForWorkshopUpload("/x y/upload.json");
	EXPECT_EQ(Project.Read("bin/xdg-open.seen"),
		"steam://run/7188263//-workshop_upload%3D%22%2Fx%20y%2Fupload.json%22%20-log/\n"
		"quarvel://workshop_upload?config=/x%20y/upload.json\n");
	EXPECT_EQ(Complaints(), "Warning: QVMap: Failed to launch game exe, falling back\n"
							"Warning: QVMap: Steam URL launch failed with error 4, falling back\n"
							"Error: QVMap: Workshop deep link failed with error 4\n");
}
