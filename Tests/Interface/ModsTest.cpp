// SPDX-License-Identifier: MIT
#include "Interface/QVMapMods.h"

#include "Tests/Interface/InterfaceTest.h"

using namespace QVTest;

namespace
{
struct FMods : FInterfaceTest
{
	/** One line for each entry: a dot for a check mark, its keys, its texts. */
	std::string Describe(const std::vector<FQVMenuEntry>& Entries, const std::string& Indent = "") const
	{
		std::string Text;
		for (const FQVMenuEntry& Each : Entries)
		{
			constexpr const char* Kinds[] = {"", "menu ", "text "};
			const bool bChecked = Each.IsChecked && Each.IsChecked();
			Text += Indent + (bChecked ? "* " : "") + Kinds[static_cast<std::size_t>(Each.Kind)] + Say(Each.Label) +
					(Each.Tooltip.GetKey().empty() ? "" : " (" + Say(Each.Tooltip) + ")") + "\n" +
					Describe(Each.Entries, Indent + "  ");
			EXPECT_EQ(static_cast<bool>(Each.Execute), Each.Kind == EQVMenuEntryKind::Action);
		}
		return Text;
	}
	std::string Menu() const { return Describe(FQVMapMods::BuildMenu()); }
	static int Scanned(bool bForce = false) { return FQVMapMods::GetMods(bForce).ModCount; }
};
} // namespace

TEST_F(FMods, AProjectWithoutMapsHasOneLine)
{
	EXPECT_EQ(Menu(), "text NoModsFound: No maps yet - use New Map\n");
	EXPECT_EQ(FQVMapMods::BuildMenu().front().Label.GetNamespace(), "FQVMapMods");
}

TEST_F(FMods, MapsStandInTheScannersOrder)
{
	Project.AddMod("Harbor", {"Maps/Pier", "Maps/Docks", "Attic"});
	Project.AddMod("cave", {"Deep/Hall"});
	EXPECT_EQ(Menu(), "Hall (SwitchMapTooltip: Open Hall)\n"
					  "menu ModWithMapCount: Harbor (3 maps) (ModSubMenuTooltip: Open a map from Harbor)\n"
					  "  Attic (SwitchMapTooltip: Open Attic)\n"
					  "  Docks (SwitchMapTooltip: Open Docks)\n"
					  "  Pier (SwitchMapTooltip: Open Pier)\n");
	const std::vector<FQVMenuEntry> Kept = FQVMapMods::BuildMenu();
	Editor.Open("/Harbor/maps/PIER");
	EXPECT_EQ(Describe(Kept), "Hall (SwitchMapTooltip: Open Hall)\n"
							  "* menu ModWithMapCount: Harbor (3 maps) (ModSubMenuTooltip: Open a map from Harbor)\n"
							  "  Attic (SwitchMapTooltip: Open Attic)\n"
							  "  Docks (SwitchMapTooltip: Open Docks)\n"
							  "  * Pier (SwitchMapTooltip: Open Pier)\n")
		<< "asked when it is drawn";
	Recording.Take();
	Kept[1].Entries[1].Execute();
	EXPECT_EQ(Editor.TakeAsked(), "save prompt maps content declinable\nload /Harbor/Maps/Docks\n");
	EXPECT_EQ(Logged(), "QVMap: Opening /Harbor/Maps/Docks from mod Harbor\n");
	EXPECT_TRUE(Kept[1].Entries[1].IsChecked() && !Kept[1].Entries[2].IsChecked() && !Kept[0].IsChecked());
	Editor.Open("/QUARVEL/Templates/Hall");
	EXPECT_EQ(Describe(Kept).find('*'), std::string::npos);
}

TEST_F(FMods, ThatCannotBeOpenedSayWhy)
{
	Editor.Open("/Cave/Maps/Hall");
	Editor.bSaves = false;
	EXPECT_FALSE(FQVMapMods::OpenMap("Harbor", "/Harbor/Maps/Pier"));
	EXPECT_EQ(Logged(), "QVMap: Map switch cancelled at the save prompt\n");
	EXPECT_EQ(Editor.World.Package, "/Cave/Maps/Hall") << "what is open stays";
	Editor.bSaves = true;
	Editor.OnLevel = [](const std::string&) { return false; };
	EXPECT_FALSE(FQVMapMods::OpenMap("Harbor", "/Harbor/Maps/Pier"));
	EXPECT_EQ(Logged(), "QVMap: Opening /Harbor/Maps/Pier from mod Harbor\n"
						"Error: QVMap: Failed to open level /Harbor/Maps/Pier\n");
	Editor.bHasLevelEditor = false;
	EXPECT_FALSE(FQVMapMods::OpenMap("Harbor", "/Harbor/Maps/Pier"));
	EXPECT_EQ(Logged(), "Error: QVMap: LevelEditorSubsystem unavailable - cannot open /Harbor/Maps/Pier\n");
	Engine.Interfaces.Editor = nullptr;
	EXPECT_FALSE(FQVMapMods::OpenMap("Harbor", "/Harbor/Maps/Pier"));
	EXPECT_EQ(Logged(), "");
}

TEST_F(FMods, AreScannedAgainOnlyWhenAsked)
{
	Project.AddMod("Cave", {"Maps/Hall"});
	EXPECT_EQ(Scanned(), 1);
	Project.AddMod("Harbor", {"Maps/Pier"});
	EXPECT_EQ(Scanned(), 1);
	EXPECT_EQ(Scanned(true), 2);
	Project.Remove("Plugins/Cave");
	FQVMapMods::InvalidateCache();
	EXPECT_EQ(Scanned(), 1);
}

TEST_F(FMods, AWarmListIsKeptThroughABuildAndAColdOneIsNot)
{
	Project.AddMod("Cave", {"Maps/Hall"});
	BeginBuild();
	EXPECT_EQ(Scanned(), 1);
	Project.AddMod("Harbor", {"Maps/Pier"});
	EXPECT_EQ(Scanned(), 2) << "not kept beyond the moment";
	EndBuild();
	EXPECT_EQ(Scanned(), 2);
	BeginBuild();
	Project.AddMod("Attic", {"Maps/Roof"});
	EXPECT_EQ(Scanned(true), 2) << "a build keeps descriptors out of the way";
	EndBuild();
	EXPECT_EQ(Scanned(), 3) << "its end is heard of";
}
