// SPDX-License-Identifier: MIT
#include "Export/QVMapCookedAnalysis.h"

#include "Tests/Support/ToolkitTest.h"

using namespace QVTest;
using FCookedAnalysisTest = FToolkitTest;

namespace
{
const std::string Frame = "QVMap: ================================================\n";
const std::string Line = "QVMap: ---------------------------------------------\n";
const std::string More = "QVMap:   ... and %d more (enable verbose logging to see all)\n";

std::string Head(const char* Verbose)
{
	return Frame + "QVMap: COOKED CONTENTS ANALYSIS\n" + Frame +
		   "QVMap: Cooked directory: <Project>/Cooked\nQVMap: Plugin name: Cave\nQVMap: Verbose logging: " + Verbose +
		   "\n" + Line + "QVMap: ASSET BREAKDOWN:\n";
}
} // namespace

TEST(CookedAnalysis, ClassifiesByTheFirstRuleThatFits)
{
	constexpr ECookedCategory Plugin = ECookedCategory::Plugin;
	constexpr ECookedCategory BaseGame = ECookedCategory::BaseGame;
	constexpr ECookedCategory Engine = ECookedCategory::Engine;
	constexpr ECookedCategory Other = ECookedCategory::Other;
	const struct
	{
		const char* Path;
		ECookedCategory Category;
	} Cases[] = {{"Content/x/ENGINE/y.uasset", Engine}, {"Plugins/X/Engine/y", Engine}, {"Engine/y", Other},
		{"Plugins/Anyone/y", Plugin}, {"plugins/x", Plugin}, {"CAVE/Content/y", Plugin}, {"Cavern/y", Other},
		{"Cave", Other}, {"Content/y", BaseGame}, {"CONTENT/Cave/y", BaseGame}, {"a/quarvel_mapping/y", BaseGame},
		{"QUARVEL_Mapping/y", BaseGame}, {"QUARVEL_Mapping", Other}, {"Maps/Hall.umap", Other}, {"", Other}};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(FQVMapCookedContents::Classify(Case.Path, "Cave"), Case.Category) << Case.Path;
	}
}

TEST_F(FCookedAnalysisTest, ReportsSamplesOrAll)
{
	Project.Write("Cooked/Cave/a.uasset", std::string(1536, 'x'));
	Project.Write("Cooked/Content/b.uasset", std::string(2'621'440, 'x'));
	Project.Write("Cooked/x/Engine/c.uasset", "");
	Project.Write("Cooked/Maps/d.umap", "12345");
	FQVCookedAnalysis Analysis;
	FQVMapCookedContents::AnalyzeCookedContents(Project.At("Cooked"), "Cave", false, Analysis);
	const std::string Counts = "QVMap:   Plugin Assets:   1 files (1536 bytes / 0.00 MB)\n"
							   "QVMap:   Base Game Assets: 1 files (2621440 bytes / 2.50 MB)\n"
							   "QVMap:   Engine Assets:   1 files (0 bytes / 0.00 MB)\n"
							   "QVMap:   Other Assets:    1 files (5 bytes / 0.00 MB)\n" +
							   Line;
	const std::string Total = "QVMap: TOTAL: 4 files (2622981 bytes / 2.50 MB)\n" + Frame;
	EXPECT_EQ(Logged(),
		Head("disabled") + Counts + "QVMap: Sample PLUGIN assets (showing first 10 of 1):\nQVMap:   + Cave/a.uasset\n" +
			Line +
			"Warning: QVMap: Sample BASE GAME assets (showing first 10 of 1):\nWarning: QVMap:   ! Content/b.uasset\n"
			"Warning: QVMap: ^^^ Base game assets should NOT be in the DLC pak!\n" +
			Line + Total);
	FQVMapCookedContents::AnalyzeCookedContents(Project.At("Cooked"), "Cave", true, Analysis);
	EXPECT_EQ(Logged(),
		Head("ENABLED") + Counts +
			"QVMap: ALL PLUGIN ASSETS (1 files):\nQVMap:   + [PLUGIN] Cave/a.uasset (1.50 KB)\n" + Line +
			"Warning: QVMap: ALL BASE GAME ASSETS (1 files) - THESE SHOULD NOT BE PACKED!\n"
			"Warning: QVMap:   ! [BASEGAME] Content/b.uasset (2560.00 KB)\n"
			"Warning: QVMap: ^^^ Base game assets should NOT be in the DLC pak!\n" +
			Line + "QVMap: ALL ENGINE ASSETS (1 files):\nQVMap:   * [ENGINE] x/Engine/c.uasset (0.00 KB)\n" + Line +
			"QVMap: ALL OTHER ASSETS (1 files):\nQVMap:   ? [OTHER] Maps/d.umap (0.00 KB)\n" + Line + Total);
	EXPECT_EQ((std::vector{Analysis.PluginFiles, Analysis.BaseGameFiles, Analysis.EngineFiles, Analysis.OtherFiles}),
		(std::vector{1, 1, 1, 1}));
	EXPECT_EQ((std::vector{Analysis.PluginBytes, Analysis.BaseGameBytes, Analysis.EngineBytes, Analysis.OtherBytes}),
		(std::vector<std::int64_t>{1536, 2'621'440, 0, 5}));
	EXPECT_EQ(Analysis.BaseGameSample, (std::vector<std::string>{"Content/b.uasset"}));

	FQVMapCookedContents::AnalyzeCookedContents(Project.At("Nothing"), "Cave", true, Analysis);
	EXPECT_EQ(Analysis.PluginFiles + Analysis.BaseGameFiles + Analysis.EngineFiles + Analysis.OtherFiles, 0);
	EXPECT_TRUE(Logged().ends_with(Line + "QVMap: TOTAL: 0 files (0 bytes / 0.00 MB)\n" + Frame));
}

TEST_F(FCookedAnalysisTest, ShowsTenOfACategoryAndKeepsFiftyOfTheBaseGame)
{
	for (int Index = 0; Index < 51; ++Index)
	{
		Project.Write(QVPrintf("Cooked/Content/%02d.uasset", Index), "x");
		if (Index < 11)
		{
			Project.Write(QVPrintf("Cooked/Cave/%02d.uasset", Index), "");
		}
	}
	FQVCookedAnalysis Analysis;
	FQVMapCookedContents::AnalyzeCookedContents(Project.At("Cooked"), "Cave", false, Analysis);
	std::string Text = Logged();
	EXPECT_NE(
		Text.find("QVMap: Sample PLUGIN assets (showing first 10 of 11):\nQVMap:   + Cave/00.uasset\n"), Text.npos);
	EXPECT_NE(Text.find("\nQVMap:   + Cave/09.uasset\n" + FQVString::ReplaceAll(More, "%d", "1") + Line), Text.npos);
	EXPECT_NE(Text.find("Warning: QVMap:   ! Content/09.uasset\nWarning: " + FQVString::ReplaceAll(More, "%d", "41") +
						"Warning: QVMap: ^^^ "),
		Text.npos)
		<< Text;
	EXPECT_EQ(Analysis.BaseGameFiles, 51);
	EXPECT_EQ(Analysis.BaseGameBytes, 51);
	ASSERT_EQ(Analysis.BaseGameSample.size(), 50u);
	EXPECT_EQ(Analysis.BaseGameSample.back(), "Content/49.uasset");

	Project.Remove("Cooked/Cave/10.uasset");
	FQVMapCookedContents::AnalyzeCookedContents(Project.At("Cooked"), "Cave", false, Analysis);
	Text = Logged();
	EXPECT_NE(Text.find("QVMap:   + Cave/09.uasset\n" + Line), Text.npos) << "ten of ten, and no more";

	Files.bReverseWalks = true;
	FQVMapCookedContents::AnalyzeCookedContents(Project.At("Cooked"), "Cave", false, Analysis);
	EXPECT_EQ(Analysis.BaseGameSample.front(), "Content/50.uasset") << "in walk order";
}
