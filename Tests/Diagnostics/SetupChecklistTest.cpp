// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapSetupChecklist.h"

#include "Standalone/Engine/OsPath.h"
#include "Tests/Diagnostics/DiagnosticsTestSupport.h"
#include "Tests/Support/TestPrograms.h"
#include "Workspace/QVMapConfig.h"

#include <filesystem>

namespace
{
struct FSetupChecklist : QVTest::FDiagnosticsTest
{
	std::string Rows()
	{
		constexpr std::string_view Severities[] = {"Pass", "Info", "Warning", "Error"};
		std::string Text;
		for (const FQVDiagnosticFinding& Row : FQVMapSetupChecklist::Evaluate({}))
		{
			Text += QVPrintf("%s %s: %s\n", Severities[static_cast<std::size_t>(Row.Severity)], Row.Id.ToView(),
				Row.Title.ToString());
		}
		return Text;
	}
};
} // namespace

TEST_F(FSetupChecklist, FromNothingToReady)
{
	std::filesystem::remove(QVStandalone::ToOsPath(Project.EngineDir() + "/Binaries/Win64/UnrealEditor-Cmd.exe"));
	Scan();
	EXPECT_EQ(Rows(), "Error Setup.EngineTools: Engine tools\n"
					  "Pass Setup.Bridge: Bridge plugin\n"
					  "Warning Setup.BaseGameContent: Base game content\n"
					  "Error Setup.BaseRelease: Base release\n"
					  "Pass Setup.OutputFolder: Output folder\n"
					  "Info Setup.GameLaunch: Game launch\n"
					  "Warning Setup.MapTemplate: New map template\n"
					  "Error Setup.FirstMap: First map\n");
	FQVDiagnosticFindings Findings = FQVMapSetupChecklist::Evaluate({});
	EXPECT_TRUE(Find(Findings, "Setup.EngineTools").Detail.ToString().ends_with("UnrealEditor-Cmd.exe"));
	EXPECT_EQ(Describe(Findings, "Setup.FirstMap"), "Error Setup.FirstMap\n"
													"  FirstMap: First map\n"
													"  FirstMapNone: No plugin of this project holds a map yet.\n"
													"  FirstMapRemedy: Use New Map to create one.\n");
	EXPECT_FALSE(FQVMapSetupChecklist::IsComplete(Findings));
	EXPECT_TRUE(FQVMapSetupChecklist::ShouldShowAtStart(Findings));
	FQVMapConfig::SetShowSetupOnStartup(false);
	EXPECT_FALSE(FQVMapSetupChecklist::ShouldShowAtStart(Findings));
	FQVMapConfig::SetShowSetupOnStartup(true);

	QVTest::PlaceTestChild(QVStandalone::ToOsPath(Project.EngineDir() + "/Binaries/Win64/UnrealEditor-Cmd.exe"));
	Project.AddBaseRelease();
	Project.AddMod("Cave", {"Maps/Hall", "Gate"});
	Findings = FQVMapSetupChecklist::Evaluate({});
	EXPECT_TRUE(FQVMapSetupChecklist::IsComplete(Findings)) << Rows();
	EXPECT_FALSE(FQVMapSetupChecklist::ShouldShowAtStart(Findings));
	EXPECT_EQ(Find(Findings, "Setup.FirstMap").Detail.ToString(), "2 map(s) in 1 plugin(s).");
}
