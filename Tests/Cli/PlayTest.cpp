// SPDX-License-Identifier: MIT
#include "Tests/Cli/PlaySupport.h"

#include <nlohmann/json.hpp>

using namespace QVTest;
using FJson = nlohmann::json;
using QVStandalone::ToOsPath;

TEST_F(FPlay, ARunningGameIsSentThePakAndTheMap)
{
	ScriptGame({"listen " + Pipe, "write " + Project.At("listening") + "|", "record " + Project.At("first"),
		"record " + Project.At("second")});
	FProgramStart How = Start({});
	How.File = ToOsPath(Game);
	FProgram Running(How);
	WaitUntil([this] { return Project.Exists("listening"); });

	const FProgramEnd End = Run({"play", "Cave"});
	EXPECT_EQ(End.Code, 0) << End.Err;
	EXPECT_EQ(WithoutProgress(End.Err), "game  it is running and was sent the request\n");
	EXPECT_EQ(End.Out, "pak  <Project>/Saved/QVPak/Output/Cave_<Id>.pak\n     3 file(s) packed, 0.00 MB.\n"
					   "log  <Project>/Saved/QVPak/Logs/Cave_<Time>.log\n");
	WaitUntil([this] { return Project.Exists("first"); });
	const std::string Sent = Project.Read("first");
	EXPECT_TRUE(Sent.starts_with("quarvel://loadmap?pak=" + Root)) << Sent;
	EXPECT_TRUE(Sent.ends_with("/" + Paks().at(0).filename().string() + "&map=Hall&mapname=/Game/Cave/Maps/Hall"))
		<< Sent;

	const FJson Json = FJson::parse(Run({"play", "Cave", "--format", "json"}).Out);
	EXPECT_EQ(Json["game"], "pipe");
	EXPECT_EQ(Json["success"], true);
	EXPECT_EQ(Finish(Running).Code, 0);
	EXPECT_NE(Project.Read("second"), Sent) << "another pak";
	EXPECT_EQ(Opened(), "");
}

TEST_F(FPlay, AConfiguredGameIsStarted)
{
	Put("Saved/QVPak/config.json", R"({"game_exe_path": ")" + Game + R"("})");
	ScriptGame({"arguments seen", "write done|"});
	const FProgramEnd End = Run({"play", "/Cave/Maps/Hall", "--format", "json"});
	EXPECT_EQ(End.Code, 0) << End.Err;
	EXPECT_EQ(WithoutProgress(End.Err), "game  started: <Project>/The Game/QUARVEL.exe\n");
	EXPECT_EQ(FJson::parse(End.Out)["game"], "executable");
	WaitUntil([this] { return Project.Exists("The Game/done"); });
	EXPECT_EQ(
		Project.Read("The Game/seen"), "-loadpak=" + PakPath() + "\n-map=Hall\n-mapname=/Game/Cave/Maps/Hall\n-log\n");
	EXPECT_EQ(Opened(), "");
}

TEST_F(FPlay, WithoutAGameSteamIsAskedThenTheDesktop)
{
	QV_SKIP_ON_WINDOWS("would start the Steam of this machine");
	LetDesktopEndWith(0);
	const FProgramEnd End = Run({"play", "--format", "json"});
	EXPECT_EQ(End.Code, 0) << End.Err;
	EXPECT_EQ(WithoutProgress(End.Err), "game  asked for at Steam\n");
	EXPECT_EQ(FJson::parse(End.Out)["game"], "steam");
	EXPECT_TRUE(Opened().starts_with("steam://run/")) << Opened();
	EXPECT_EQ(FQVString::NonEmptyLines(Opened()).size(), 1U);
}

TEST_F(FPlay, WhereNothingGoesThroughThePakStaysAndAdviceIsGiven)
{
	QV_SKIP_ON_WINDOWS("would start the Steam of this machine");
	const FProgramEnd End = Run({"play", "Cave"});
	EXPECT_EQ(End.Code, 1);
	EXPECT_NE(End.Err.find("\nerror: The game was not started: it does not run, and no way to start it went through\n"
						   "  cause: xdg-open could not open steam://run/"),
		std::string::npos)
		<< End.Err;
	EXPECT_TRUE(End.Err.ends_with("\n  fix: start the game and play again, or qvmap settings set game_exe_path <the "
								  "game's program>\n"))
		<< End.Err;
	EXPECT_TRUE(End.Out.starts_with("pak  <Project>/Saved/QVPak/Output/Cave_<Id>.pak\n")) << End.Out;
	EXPECT_EQ(FQVString::NonEmptyLines(Opened()).size(), 2U) << "Steam, then the deep link";

	const FProgramEnd AsJson = Run({"play", "Cave", "--format", "json"});
	EXPECT_EQ(AsJson.Code, 1);
	const FJson Json = FJson::parse(AsJson.Out);
	EXPECT_EQ(Json["game"], "none");
	EXPECT_EQ(Json["success"], true) << "the pak may be used";
	EXPECT_EQ(Json["error"], "the game was not started");
	EXPECT_EQ(Json["pak"].get<std::string>().find("<Project>/Saved/QVPak/Output/Cave_"), 0U);
	EXPECT_EQ(Paks().size(), 1U);
}

TEST_F(FPlay, NoGameIsStartedWithoutAGoodPak)
{
	QV_SKIP_ON_WINDOWS("would start the Steam of this machine");
	LetDesktopEndWith(0);
	Project.ScriptEditorCmd({CookMapAlone});
	const FProgramEnd Stopped = Run({"-q", "play", "Cave", "--format", "json"});
	EXPECT_EQ(Stopped.Code, 3);
	EXPECT_EQ(FJson::parse(Stopped.Out)["game"], "");
	EXPECT_EQ(Opened(), "");
	EXPECT_EQ(Run({"-q", "play", "Cave", "--answer", "EmptyPakTitle=EmptyPakContinue"}).Code, 0);
	EXPECT_NE(Opened(), "");

	Project.Remove("bin/xdg-open.seen");
	Project.ScriptEditorCmd({"print oh", "exit 3"});
	Expect({"-q", "play", "Cave"}, 1, "",
		"error: Failed to pack Cave: Cook failed: Cook failed with return code 3\n  the tool's last lines:\n    oh\n");
	EXPECT_EQ(Run({"-q", "play", "Cve"}).Code, 1);
	EXPECT_EQ(Opened(), "");
}
