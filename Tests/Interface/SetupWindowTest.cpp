// SPDX-License-Identifier: MIT
#include "Interface/SQVMapSetupWindow.h"

#include "HandOff/QVMapUpdateCheck.h"
#include "Tests/Interface/InterfaceTest.h"
#include "Tests/Support/ScriptedHttp.h"
#include "Tests/Support/ScriptedInterface.h"
#include "Tests/Support/ScriptedShell.h"
#include "Workspace/QVMapConfig.h"

using namespace QVTest;

namespace
{
struct FSetupWindow : FInterfaceTest, IQVSetupWindowView
{
	FScriptedInterface Interface;
	FScriptedHttp Http;
	std::vector<std::string> Desktop;
	FScriptedShell Shell{Desktop};
	int Changes = 0;

	FSetupWindow()
	{
		Engine.Interfaces.Interface = &Interface;
		Engine.Interfaces.Http = &Http;
		Engine.Interfaces.Shell = &Shell;
		FQVMapUpdateCheck::SetBaseAddress("https://maps.example");
	}
	~FSetupWindow() override { FQVMapUpdateCheck::SetBaseAddress(""); }

	void ShowFolder(const std::string& Folder) override { Desktop.push_back("folder " + Folder); }
	void OpenFile(const std::string& File) override { Desktop.push_back("file " + File); }
	void BrowseToAssets(const std::vector<FQVAssetData>& /*Assets*/) override { Desktop.push_back("assets"); }
	void OnChanged() override { ++Changes; }

	/** A project in which nothing is missing. */
	void Complete() const
	{
		Project.AddBaseRelease();
		Project.AddMod("Cave", {"Maps/Hall"});
	}
	/** What is shown in the first second after the main window has come, and the last line of the log if it is of it.
	 */
	std::string Start()
	{
		FQVMapSetupWindow::Register();
		Interface.TakeStory();
		Interface.MainFrameCreated.Broadcast();
		GameThread.Advance(1);
		const std::string Log = Logged();
		const std::size_t Line = Log.find("QVMap: Setup ");
		return Interface.TakeStory() + (Line == std::string::npos ? "" : Log.substr(Line));
	}
	static std::size_t RowOf(const SQVMapSetupWindow& Window, std::string_view Id)
	{
		const FQVDiagnosticFindings& Rows = Window.GetRows();
		const auto Found = std::ranges::find(Rows, FQVName(Id), &FQVDiagnosticFinding::Id);
		return static_cast<std::size_t>(Found - Rows.begin());
	}
};
} // namespace

TEST_F(FSetupWindow, ComesAtStartOnlyIfSomethingIsMissingAndItIsWanted)
{
	EXPECT_EQ(Start(), "show QVMapSetup\n");
	FQVMapConfig::SetShowSetupOnStartup(false);
	EXPECT_EQ(Start(), "QVMap: Setup incomplete, but the startup window is disabled\n");
	Complete();
	EXPECT_EQ(Start(), "QVMap: Setup check passed - nothing to show\n");
	FQVMapConfig::SetShowSetupOnStartup(true);
	EXPECT_EQ(Start(), "QVMap: Setup check passed - nothing to show\n");
	FQVMapSetupWindow::Unregister();
}

TEST_F(FSetupWindow, UnregisteredItNeverComes)
{
	FQVMapSetupWindow::Register();
	Interface.MainFrameCreated.Broadcast();
	FQVMapSetupWindow::Unregister();
	Interface.MainFrameCreated.Broadcast();
	Interface.TakeStory();
	GameThread.Advance(5);
	EXPECT_EQ(Interface.TakeStory(), "");
}

TEST_F(FSetupWindow, ListsTheStepsAndDoesThem)
{
	SQVMapSetupWindow Window(*this);
	if (Http.Open() > 0)
	{
		Http.Fail(); // the first window of a program looks for a newer project
	}
	EXPECT_EQ(SQVMapSetupWindow::GetTitle().ToString(), "QVMap Setup");
	EXPECT_EQ(SQVMapSetupWindow::GetVersion().ToString(), "QVMap 1.0.26");
	EXPECT_EQ(Window.GetSummary().ToString(), "2 of 8 steps are still to be done before a map can be packed.");
	UseScriptedChildren();
	Children.bStarts = false;
	GameThread.bHoldsDedicated = true;
	const std::size_t Release = RowOf(Window, "Setup.BaseRelease");
	Window.Act(Release);
	EXPECT_TRUE(FQVMapBaseReleaseBuild::IsBaseReleaseBuilding());
	Project.AddBaseRelease();
	Changes = 0;
	EndBuild();
	EXPECT_EQ(Changes, 1);
	EXPECT_EQ(Window.GetRows()[Release].Severity, EQVDiagSeverity::Pass) << "the build's end is heard of";

	FScriptedNewModView NewMap;
	NewMap.User = [](SQVMapNewModDialog& Dialog)
	{
		Dialog.SetName("Cave");
		Dialog.Create();
	};
	Editor.OnLevel = [this](const std::string&)
	{
		Project.Write("Plugins/Cave/Content/Maps/Cave.umap", "a level");
		return true;
	};
	Window.NewMap();
	EXPECT_EQ(Window.GetSummary().ToString(), "All that a map needs to be packed is there.");
	Window.Act(999);
	Window.SetShowOnStartup(false);
	EXPECT_FALSE(SQVMapSetupWindow::GetShowOnStartup());
}

TEST_F(FSetupWindow, TellsOfANewerProjectAndAsksOnceForIt)
{
	Project.Write("Config/DefaultGame.ini", "[/Script/EngineSettings.GeneralProjectSettings]\nProjectVersion=1.2\n");
	if (FQVMapUpdateCheck::GetLastResult().bChecked)
	{
		const SQVMapSetupWindow Window(*this);
		EXPECT_TRUE(Http.Sent.empty()) << "somebody has asked before";
		FQVMapUpdateCheck::CheckForUpdate({});
	}
	else
	{
		auto Gone = std::make_unique<SQVMapSetupWindow>(*this);
		Gone.reset();
		ASSERT_EQ(Http.Sent.size(), 1U);
	}
	Http.Answer(200, R"({"version": "1.3"})");
	EXPECT_EQ(Changes, 0) << "the window that asked is gone";
	SQVMapSetupWindow Window(*this);
	EXPECT_EQ(Http.Sent.size(), 1U);
	EXPECT_EQ(Say(Window.GetUpdate()), "SetupUpdateAvailable: Mapping project 1.3 is available.");
	FQVMapUpdateCheck::CheckForUpdate({});
	Http.Answer(200, R"({"version": "1.3", "qvmap": "1.0.26", "bridge": "1.5"})");
	EXPECT_EQ(Say(Window.GetUpdate()),
		"SetupUpdateAvailableBridge: Mapping project 1.3 is available. It changes the QUARVEL bridge, so your base "
		"release will need rebuilding.");
	Window.OpenDownloadPage();
	EXPECT_EQ(Desktop, std::vector<std::string>{"open https://maps.example/quarvelMapping/download"});
	FQVMapUpdateCheck::CheckForUpdate({});
	Http.Fail();
	EXPECT_EQ(Say(Window.GetUpdate()), "");
}
