// SPDX-License-Identifier: MIT
#include "HandOff/QVMapPlaytest.h"

#include "Tests/Support/ScriptedShell.h"
#include "Tests/Support/ToolkitTest.h"

using QVTest::FScriptedShell;
using FPlay = FQVMapPlaytest;

namespace
{
constexpr std::string_view ConfigFile = "Saved/QVPak/config.json";
constexpr std::string_view GameFile = "The Game/QUARVEL.exe";
const std::string NoPipe = "QVMap: Game pipe not available (game not running?)\n";

/** A request in all its forms, and how the log speaks of it. */
struct FRequest
{
	void (*Launch)();
	std::string Link;
	std::string Arguments;
	std::string EncodedArguments;
	std::string SentToPipe;
	std::string LabelSuffix;
	std::string LaunchingExe;
	std::string LaunchedExe;
	std::string LinkWord;
};

const FRequest Load = {
	[] { FPlay::LaunchGameWithPak("Cave", "C:/Out/Cave.pak", "Hall", "/Game/Cave/Maps/Hall"); },
	"quarvel://loadmap?pak=C:/Out/Cave.pak&map=Hall&mapname=/Game/Cave/Maps/Hall",
	R"(-loadpak="C:/Out/Cave.pak" -map="Hall" -mapname="/Game/Cave/Maps/Hall" -log)",
	"-loadpak%3D%22C%3A%2FOut%2FCave.pak%22%20-map%3D%22Hall%22%20-mapname%3D%22%2FGame%2FCave%2FMaps%2FHall%22%20-log",
	"QVMap: Sent to running game via named pipe\n",
	"",
	"QVMap: Launching with configured exe: ",
	"QVMap: Game launched successfully!\n",
	"Deep link",
};

const FRequest Upload = {
	[] { FPlay::LaunchGameForWorkshopUpload("C:/Out/upload.json"); },
	"quarvel://workshop_upload?config=C:/Out/upload.json",
	R"(-workshop_upload="C:/Out/upload.json" -log)",
	"-workshop_upload%3D%22C%3A%2FOut%2Fupload.json%22%20-log",
	"QVMap: Workshop upload sent to running game via pipe\n",
	" for Workshop upload",
	"QVMap: Launching game for Workshop upload: ",
	"QVMap: Game launched for Workshop upload\n",
	"Workshop deep link",
};

struct FPlaytestTest : QVTest::FToolkitTest
{
	FScriptedShell Shell{Children.Commands};

	FPlaytestTest()
	{
		UseScriptedChildren();
		Engine.Interfaces.Shell = &Shell;
		Project.Write(GameFile, "");
	}

	void Configure(bool bDemo, bool bConsole, const std::string& Exe)
	{
		Project.Write(ConfigFile, QVPrintf(R"({"use_demo_appid": %s, "runtime_console": %s, "game_exe_path": "%s"})",
									  FQVString::BoolWord(bDemo), FQVString::BoolWord(bConsole), Exe));
	}

	/** What was handed to pipe, shell and processes since the last call. */
	std::vector<std::string> Calls()
	{
		std::vector<std::string> Made = std::exchange(Children.Commands, {});
		for (std::string& Call : Made)
		{
			Call = Project.Mask(Call);
		}
		return Made;
	}

	struct FStep
	{
		std::string Call;
		std::string Log;
	};

	/** A step as "exe-": the way, and whether it went through. */
	static FStep Expected(const FRequest& Request, const std::string& Step)
	{
		const bool bWent = Step.back() == '+';
		const std::string Way = Step.substr(0, Step.size() - 1);
		if (Way == "pipe")
		{
			return {R"(write \\.\pipe\QUARVEL_PakLoader )" + Request.Link,
				bWent				 ? Request.SentToPipe
				: Step.back() == '!' ? "Warning: QVMap: Failed to write to game pipe\n"
									 : NoPipe};
		}
		if (Way == "exe")
		{
			return {"in <Project>/The Game: <Project>/The Game/QUARVEL.exe " + Request.Arguments,
				Request.LaunchingExe + "<Project>/The Game/QUARVEL.exe " + Request.Arguments + "\n" +
					(bWent ? Request.LaunchedExe : "Warning: QVMap: Failed to launch game exe, falling back\n")};
		}
		if (Way == "link")
		{
			return {
				"open " + Request.Link, "QVMap: Launching via deep link: " + Request.Link + "\n" +
											(bWent ? "QVMap: " + Request.LinkWord + " dispatched\n"
												   : "Error: QVMap: " + Request.LinkWord + " failed with error 2\n")};
		}
		const std::string Url =
			QVPrintf("steam://run/%s//%s/", Way == "demo" ? "7301146" : "7188263", Request.EncodedArguments);
		return {"open " + Url, "QVMap: Launching " + Way + Request.LabelSuffix + " via Steam URL: " + Url + "\n" +
								   (bWent ? "QVMap: Steam URL dispatched\n"
										  : "Warning: QVMap: Steam URL launch failed with error 32, falling back\n")};
	}
};

enum class EExe
{
	None,
	Gone,
	Folder,
	Fails,
	Starts
};
} // namespace

TEST_F(FPlaytestTest, TheFirstWayThatGoesThroughEndsTheChain)
{
	constexpr EQVPipeWrite NotOpened = EQVPipeWrite::NotOpened;
	const struct
	{
		EQVPipeWrite Pipe;
		bool bDemo;
		EExe Exe;
		int Steam;
		int Link;
		std::string Steps;
	} Cases[] = {
		{NotOpened, false, EExe::None, 33, 33, "pipe- game+"},
		{NotOpened, false, EExe::Starts, 33, 33, "pipe- exe+"},
		{NotOpened, false, EExe::Gone, 33, 33, "pipe- game+"},
		{NotOpened, false, EExe::Folder, 33, 33, "pipe- game+"},
		{NotOpened, false, EExe::Fails, 33, 33, "pipe- exe- game+"},
		{NotOpened, false, EExe::Fails, 32, 33, "pipe- exe- game- link+"},
		{NotOpened, false, EExe::None, 32, 2, "pipe- game- link-"},
		{NotOpened, true, EExe::None, 33, 33, "pipe- demo+"},
		{NotOpened, true, EExe::Starts, 33, 33, "pipe- demo+"},
		{NotOpened, true, EExe::Starts, 32, 33, "pipe- demo- exe+"},
		{NotOpened, true, EExe::None, 32, 33, "pipe- demo- link+"},
		{NotOpened, true, EExe::Fails, 32, 2, "pipe- demo- exe- link-"},
		{EQVPipeWrite::Written, false, EExe::Starts, 33, 33, "pipe+"},
		{EQVPipeWrite::Written, true, EExe::Starts, 33, 33, "pipe+"},
		{EQVPipeWrite::Failed, false, EExe::None, 33, 33, "pipe! game+"},
		{EQVPipeWrite::Failed, true, EExe::Starts, 32, 33, "pipe! demo- exe+"},
	};
	for (const auto& Case : Cases)
	{
		const std::string_view Exe = Case.Exe == EExe::Gone ? "gone.exe" : Case.Exe == EExe::Folder ? "" : GameFile;
		Configure(Case.bDemo, false, Case.Exe == EExe::None ? "" : Project.At(Exe));
		Shell.Pipe = Case.Pipe;
		Shell.Steam = Case.Steam;
		Shell.Other = Case.Link;
		Children.bStarts = Case.Exe != EExe::Fails;
		for (const FRequest* Request : {&Load, &Upload})
		{
			std::vector<std::string> ExpectedCalls;
			std::string ExpectedLog;
			std::istringstream Steps(Case.Steps);
			for (std::string Step; Steps >> Step;)
			{
				ExpectedCalls.push_back(Expected(*Request, Step).Call);
				ExpectedLog += Expected(*Request, Step).Log;
			}
			Request->Launch();
			EXPECT_EQ(Calls(), ExpectedCalls) << Case.Steps;
			EXPECT_EQ(Logged(), ExpectedLog) << Case.Steps;
			EXPECT_EQ(Children.OpenHandles, 0) << "the game's handle is not kept";
		}
	}
}

TEST_F(FPlaytestTest, WithoutASettingsFileTheFullGameIsLaunched)
{
	Load.Launch();
	EXPECT_EQ(Calls(), (std::vector{Expected(Load, "pipe-").Call, Expected(Load, "game+").Call}));
	EXPECT_FALSE(Project.Exists("Saved"));
}

TEST_F(FPlaytestTest, EachFormHasItsText)
{
	const struct
	{
		std::function<void()> Launch;
		bool bConsole;
		std::string Link;
		std::string Arguments;
	} Cases[] = {
		{[] {
			 FPlay::LaunchGameWithPak("Höhle", R"(C:\Meine Maps/Höhle 洞.pak)", "Hall_2", "/Game/Höhle/Maps/Hall_2");
		 },
			false,
			"quarvel://loadmap?pak=C:/Meine%20Maps/H%C3%B6hle%20%E6%B4%9E.pak&map=Hall_2"
			"&mapname=/Game/H%C3%B6hle/Maps/Hall_2",
			R"(-loadpak="C:\Meine Maps/Höhle 洞.pak" -map="Hall_2" -mapname="/Game/Höhle/Maps/Hall_2" -log)"},
		{[] { FPlay::LaunchGameWithPak("M", "/100%/a&b=c#d.pak", "M", "/M/M"); }, true,
			"quarvel://loadmap?pak=/100%25/a%26b%3Dc%23d.pak&map=M&mapname=/M/M -console",
			R"(-loadpak="/100%/a&b=c#d.pak" -map="M" -mapname="/M/M" -log -console)"},
		{[] { FPlay::LaunchGameForWorkshopUpload(R"(C:\Meine Maps\upload.json)"); }, false,
			"quarvel://workshop_upload?config=C:/Meine%20Maps/upload.json",
			R"(-workshop_upload="C:/Meine Maps/upload.json" -log)"},
		{[] { FPlay::LaunchGameForWorkshopUpload("/x/upload.json"); }, true,
			"quarvel://workshop_upload?config=/x/upload.json -console",
			R"(-workshop_upload="/x/upload.json" -log -console)"},
	};
	Shell.Steam = 0;
	Children.bStarts = false;
	for (const auto& Case : Cases)
	{
		Configure(false, Case.bConsole, Project.At(GameFile));
		Case.Launch();
		std::string Steam = FQVString::ReplaceAll(FPlay::UrlEncode(Case.Arguments), "/", "%2F");
		Steam = FQVString::ReplaceAll(Steam, ":", "%3A");
		EXPECT_EQ(Calls(), (std::vector{R"(write \\.\pipe\QUARVEL_PakLoader )" + Case.Link,
							   "in <Project>/The Game: <Project>/The Game/QUARVEL.exe " + Case.Arguments,
							   "open steam://run/7188263//" + Steam + "/", "open " + Case.Link}));
	}
}

TEST_F(FPlaytestTest, UrlsKeepOnlyWhatNeedsNoEncoding)
{
	const std::string Kept = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-./:_~";
	EXPECT_EQ(FPlay::UrlEncode(Kept), Kept);
	for (int Byte = 1; Byte < 0x80; ++Byte)
	{
		const std::string Letter(1, static_cast<char>(Byte));
		char Encoded[8] = {};
		std::snprintf(Encoded, sizeof(Encoded), "%%%02X", static_cast<unsigned>(Byte));
		EXPECT_EQ(FPlay::UrlEncode(Letter), Kept.find(Letter) != Kept.npos ? Letter : Encoded);
	}
	const std::pair<const char*, const char*> Cases[] = {
		{"", ""},
		{"a b\"c\"", "a%20b%22c%22"},
		{"%20", "%2520"},
		{"ß", "%C3%9F"},
		{"洞", "%E6%B4%9E"},
		{"\U0001F3AE", "%F0%9F%8E%AE"},
	};
	for (const auto& [Text, Encoded] : Cases)
	{
		EXPECT_EQ(FPlay::UrlEncode(Text), Encoded);
	}
	EXPECT_TRUE(FPlay::LaunchViaSteamUrl("12", "/a:b -c=\"%\"", "the thing"));
	EXPECT_EQ(Calls(), std::vector<std::string>{"open steam://run/12//%2Fa%3Ab%20-c%3D%22%25%22/"});
	EXPECT_EQ(Logged(), "QVMap: Launching the thing via Steam URL: steam://run/12//%2Fa%3Ab%20-c%3D%22%25%22/\n"
						"QVMap: Steam URL dispatched\n");
}
