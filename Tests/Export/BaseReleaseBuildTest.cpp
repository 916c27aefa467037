// SPDX-License-Identifier: MIT
#include "Export/QVMapCooker.h"
#include "Export/QVMapPluginDisableGuard.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Support/TestPrograms.h"
#include "Tests/Support/ToolkitTest.h"

using namespace QVTest;

namespace
{
constexpr std::string_view StampFile = "Releases/1.0/QVMapToolchain.json";
const std::string NotRestored =
	"Failed to restore one or more disabled mod plugins. Check file permissions and .disabled files.";

/** Two mods and a release that an earlier build left, without its stamp. */
class FBaseReleaseBuildTest : public FToolkitTest
{
protected:
	FProgressRecord Progress;

	FBaseReleaseBuildTest()
	{
		Project.AddMod("Alpha", {"Maps/A"});
		Project.AddMod("Beta", {"Maps/B"});
		Project.AddBaseRelease();
		Project.Remove(StampFile);
		Project.ScriptEditorCmd({});
	}

	FQVCookResult Build() { return FQVMapCooker::BuildBaseRelease(Progress.Bind()); }

	/** The descriptors that lie in the mods' folders. */
	std::string Descriptors()
	{
		std::string Text;
		for (const std::string& File : Project.FilesIn("Plugins"))
		{
			Text += File.find(".uplugin") != std::string::npos ? File + "\n" : "";
		}
		return Text;
	}

	/** No file with one of these endings can be moved. */
	void RefuseMovesOf(const std::string& Ending)
	{
		Files.Refuse = [Ending](std::string_view Operation, std::string_view Path)
		{ return Operation == "move" && Path.ends_with(Ending); };
	}
};

const std::string AllDescriptors = "Alpha/Alpha.uplugin\nBeta/Beta.uplugin\nQUARVEL/QUARVEL.uplugin\n";
const std::string SetAside =
	"QVMap: Temporarily disabled mod plugin: Alpha\nQVMap: Temporarily disabled mod plugin: Beta\n";
const std::string PutBack = "QVMap: Restored mod plugin: Alpha\nQVMap: Restored mod plugin: Beta\n";

/** The lines from the first that the build itself writes: those of the scan stand elsewhere. */
std::string WithoutScan(const std::string& Log)
{
	std::string Text;
	for (const std::string_view Line : FQVString::NonEmptyLines(Log))
	{
		const bool bScan = Line.find("Scan") != std::string::npos || Line.starts_with("Verbose: ");
		Text += bScan ? "" : std::string(Line) + "\n";
	}
	return Text;
}
} // namespace

TEST_F(FBaseReleaseBuildTest, CooksWhileTheModsAreSetAside)
{
	Project.Write("Plugins/Beta/Beta.uplugin.disabled", "of a build that died; replaced");
	const std::string Descriptor = Project.Read("Plugins/Beta/Beta.uplugin");
	Project.ScriptEditorCmd({"arguments " + Project.At("arguments.txt"),
		"list " + Project.At("Plugins") + "|" + Project.At("seen.txt"), "print cooked"});
	const FQVCookResult Result = Build();
	EXPECT_TRUE(Result.bSuccess);
	EXPECT_EQ(Result.ErrorMessage + Result.StagedRoot, "");
	EXPECT_EQ(Result.CookedDir, Project.At("Releases/1.0"));
	EXPECT_EQ(Result.Output, "cooked\n");
	EXPECT_EQ(Project.Read("seen.txt"),
		"Alpha/Alpha.uplugin.disabled\nAlpha/Content/Maps/A.umap\nBeta/Beta.uplugin.disabled\n"
		"Beta/Content/Maps/B.umap\nQUARVEL/QUARVEL.uplugin\n");
	EXPECT_EQ(Descriptors(), AllDescriptors);
	EXPECT_EQ(Project.Read("Plugins/Beta/Beta.uplugin"), Descriptor);
	EXPECT_EQ(Project.Mask(Project.Read("arguments.txt")),
		"<Project>/MapWork.uproject\n-run=cook\n-targetplatform=Windows\n-createreleaseversion=1.0\n-iterate\n-stdout\n"
		"-UTF8Output\n-NoLogTimes\n");
	EXPECT_TRUE(Project.Exists(StampFile));
	EXPECT_EQ(WithoutScan(Logged()),
		SetAside +
			"QVMap: Building base release: <Engine>/Binaries/Win64/UnrealEditor-Cmd.exe \"<Project>/MapWork.uproject\" "
			"-run=cook -targetplatform=Windows -createreleaseversion=1.0 -iterate -stdout -UTF8Output -NoLogTimes\n" +
			QVPrintf("QVMap: Base release registry <Project>/%s -- readable, 3 package(s), %d bytes\n",
				FTestProject::DevelopmentRegistry, FTestProject::RegistryBytes(3).size()) +
			"QVMap: Base release contains 3 package(s)\n" + PutBack +
			"QVMap: Wrote toolchain stamp: <Project>/Releases/1.0/QVMapToolchain.json\n"
			"QVMap: Base release built successfully: <Project>/Releases/1.0\n");
	EXPECT_EQ(Progress.Reports.front(), "cooking 0 Building base release...");
	EXPECT_EQ(Progress.Reports.back(), "cooking 1 Base release built");
}

TEST_F(FBaseReleaseBuildTest, PutsTheModsBackHoweverTheCookEnds)
{
	const struct
	{
		std::vector<std::string> Script;
		std::string Error;
	} Cases[] = {
		{{"print half", "exit 3"}, "Base release cook failed with return code 3"},
		{{"print half", "abort"}, "Base release cook failed with return code " + std::to_string(AbortCode)},
		{{"print half", "signal 9"}, "Base release cook failed with return code " + std::to_string(SignalCode(9))},
		{{"print half", "remove " + Project.At("Releases")},
			"Cook completed but the base release is not usable. No base release found at <Project>/Releases/1.0."},
	};
	for (const auto& Case : Cases)
	{
		Project.ScriptEditorCmd(Case.Script);
		const FQVCookResult Result = Build();
		EXPECT_FALSE(Result.bSuccess);
		EXPECT_EQ(Project.Mask(Result.ErrorMessage), Case.Error);
		EXPECT_EQ(Result.Output, "half\n");
		EXPECT_EQ(Result.CookedDir, "");
		EXPECT_EQ(Descriptors(), AllDescriptors);
		EXPECT_FALSE(Project.Exists(StampFile));
		const std::string Log = WithoutScan(Logged());
		EXPECT_TRUE(Log.ends_with("Error: QVMap: " + Case.Error + "\n" + PutBack)) << Log;
	}
	UseScriptedChildren();
	Children.bStarts = false;
	EXPECT_EQ(Build().ErrorMessage, "Failed to launch UnrealEditor-Cmd.exe");
	EXPECT_EQ(Complaints(), "Error: QVMap: Failed to launch UnrealEditor-Cmd.exe\n");
	EXPECT_EQ(Descriptors(), AllDescriptors);
}

TEST_F(FBaseReleaseBuildTest, AMissingEditorOrAReadOnlyDescriptorStopsBeforeTheChild)
{
	UseScriptedChildren();
	namespace fs = std::filesystem;
	fs::permissions(QVStandalone::ToOsPath(Project.At("Plugins/Beta/Beta.uplugin")), fs::perms::owner_read);
	const std::string Stuck = "Failed to disable mod plugin 'Beta' for base release build. Ensure the plugin files are "
							  "not read-only or in use.";
	EXPECT_EQ(Build().ErrorMessage, Stuck);
	EXPECT_EQ(Descriptors(), AllDescriptors);
	EXPECT_EQ(WithoutScan(Logged()), "QVMap: Temporarily disabled mod plugin: Alpha\nError: QVMap: " + Stuck +
										 "\nQVMap: Restored mod plugin: Alpha\n");
	fs::remove(QVStandalone::ToOsPath(Project.EngineDir() + "/Binaries/Win64/UnrealEditor-Cmd.exe"));
	const std::string Missing = "UnrealEditor-Cmd.exe not found: <Engine>/Binaries/Win64/UnrealEditor-Cmd.exe";
	EXPECT_EQ(Project.Mask(Build().ErrorMessage), Missing);
	EXPECT_EQ(Logged(), "Error: QVMap: " + Missing + "\n");
	EXPECT_TRUE(Children.Commands.empty());
	EXPECT_TRUE(Progress.Reports.empty());
}

TEST_F(FBaseReleaseBuildTest, SaysWhenADescriptorCouldNotBePutBack)
{
	RefuseMovesOf("Alpha.uplugin.disabled");
	FQVCookResult Result = Build();
	const std::string AfterGood = "Base release cook succeeded but failed to restore one or more mod plugins. Check "
								  "file permissions and manually "
								  "rename .disabled files back to .uplugin";
	EXPECT_FALSE(Result.bSuccess);
	EXPECT_EQ(Result.ErrorMessage, AfterGood);
	EXPECT_EQ(Result.CookedDir, "");
	EXPECT_EQ(Complaints(), "Error: QVMap: FAILED to restore mod plugin: Alpha\nError: QVMap: " + AfterGood + "\n");
	EXPECT_EQ(Descriptors(), FQVString::ReplaceAll(AllDescriptors, "Alpha.uplugin", "Alpha.uplugin.disabled"));
	EXPECT_FALSE(Project.Exists(StampFile));

	RefuseMovesOf("Beta.uplugin.disabled");
	Project.ScriptEditorCmd({"exit 1"});
	Result = Build();
	EXPECT_EQ(Result.ErrorMessage, "Base release cook failed with return code 1 " + NotRestored);
	EXPECT_EQ(Complaints(), "Error: QVMap: Base release cook failed with return code 1\n"
							"Error: QVMap: FAILED to restore mod plugin: Beta\nError: QVMap: " +
								NotRestored + "\n");
}

TEST_F(FBaseReleaseBuildTest, ALostDescriptorAndAFailedStampAreWarningsOnly)
{
	Project.ScriptEditorCmd({"remove " + Project.At("Plugins/Alpha/Alpha.uplugin.disabled")});
	EXPECT_TRUE(Build().bSuccess);
	EXPECT_EQ(Complaints(), "Warning: QVMap: Cannot restore Alpha - disabled file not found\n");
	EXPECT_EQ(Descriptors(), "Beta/Beta.uplugin\nQUARVEL/QUARVEL.uplugin\n");

	Project.Remove("Plugins/Beta");
	Project.ScriptEditorCmd({});
	Files.Refuse = [](std::string_view Operation, std::string_view Path)
	{ return Operation == "save" && Path.ends_with("QVMapToolchain.json"); };
	EXPECT_TRUE(Build().bSuccess) << "and no mods at all are no failure";
	EXPECT_EQ(Complaints(),
		"Warning: QVMap: Base release built, but its toolchain stamp could not be written (Failed to write toolchain "
		"stamp: <Project>/Releases/1.0/QVMapToolchain.json). Packing will treat this base release as out of date.\n");
}

TEST_F(FBaseReleaseBuildTest, TheGuardPutsBackWhatNobodyDid)
{
	RefuseMovesOf("Beta.uplugin.disabled");
	{
		FQVPluginDisableGuard Guard;
		EXPECT_FALSE(Guard.Disable(Project.At("Plugins/Nobody"), "Nobody"));
		for (const std::string Mod : {"QUARVEL", "Alpha", "Beta"})
		{
			EXPECT_TRUE(Guard.Disable(Project.At("Plugins/" + Mod), Mod));
		}
		Project.Remove("Plugins/QUARVEL/QUARVEL.uplugin.disabled");
		Logged();
	}
	EXPECT_EQ(Logged(), "QVMap: Restored mod plugin (destructor fallback): Alpha\n"
						"Error: QVMap: FAILED to restore mod plugin in destructor fallback: Beta\n");
	EXPECT_EQ(Descriptors(), "Alpha/Alpha.uplugin\nBeta/Beta.uplugin.disabled\n");
}
