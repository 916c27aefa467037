// SPDX-License-Identifier: MIT
#include "Workspace/QVMapScanner.h"

#include "Export/QVMapCooker.h"
#include "Tests/Support/ToolkitTest.h"

using FScannerTest = QVTest::FToolkitTest;

namespace
{
std::string Describe(const FQVScanResult& Scan)
{
	std::string Text;
	for (const FQVModInfo& Mod : Scan.Mods)
	{
		Text += Mod.Name + " " + Mod.PluginDir + " " + Mod.ContentDir + "\n";
		for (const FQVMapInfo& Map : Mod.Maps)
		{
			Text +=
				QVPrintf("  %s|%s|%s|%s|%s\n", Map.Name, Map.FileName, Map.RelativePath, Map.GamePath, Map.CookPath);
		}
	}
	return Text;
}

/** Folders of which each lacks something, and two mods. */
void MakePlugins(const QVTest::FTestProject& Project)
{
	for (const char* Reserved : {"QUARVEL", "engine", "Script", "GAME", "qvmap"})
	{
		Project.AddMod(Reserved, {"Maps/Never"});
	}
	Project.AddMod("cave", {"Maps/hall", "Maps/Attic", "Deep/Er/A", "Other/Hall"});
	Project.Write("Plugins/cave/Content/Maps/ZOO.UMAP", "");
	Project.Write("Plugins/cave/Content/Maps/Hall.umap.bak", "");
	Project.Write("Plugins/cave/Content/Maps/Rock.uasset", "");
	Project.AddMod("Able Höhle", {"One.Two"});
	Project.AddMod("NoDescriptor", {"Maps/A"});
	Project.Remove("Plugins/NoDescriptor/NoDescriptor.uplugin");
	Project.Write("Plugins/NoDescriptor/Another.uplugin", "{}");
	Project.AddMod("SetAside", {"Maps/A"});
	Project.Remove("Plugins/SetAside/SetAside.uplugin");
	Project.Write("Plugins/SetAside/SetAside.uplugin.disabled", "{}");
	Project.AddMod("NoContent", {});
	Project.AddMod("NoMaps", {});
	Project.MakeFolder("Plugins/NoMaps/Content");
	Project.Write("Plugins/loose.uplugin", "{}");
}
} // namespace

TEST_F(FScannerTest, FindsTheModsAndTheirMapsInOrder)
{
	MakePlugins(Project);
	const std::string Expected = "Able Höhle <Project>/Plugins/Able Höhle <Project>/Plugins/Able Höhle/Content\n"
								 "  One.Two|One.Two.umap|One.Two.umap|/Game/Able Höhle/One.Two|/Able Höhle/One.Two\n"
								 "cave <Project>/Plugins/cave <Project>/Plugins/cave/Content\n"
								 "  A|A.umap|Deep/Er/A.umap|/Game/cave/Deep/Er/A|/cave/Deep/Er/A\n"
								 "  Attic|Attic.umap|Maps/Attic.umap|/Game/cave/Maps/Attic|/cave/Maps/Attic\n"
								 "  hall|hall.umap|Maps/hall.umap|/Game/cave/Maps/hall|/cave/Maps/hall\n"
								 "  ZOO|ZOO.UMAP|Maps/ZOO.UMAP|/Game/cave/Maps/ZOO|/cave/Maps/ZOO\n"
								 "  Hall|Hall.umap|Other/Hall.umap|/Game/cave/Other/Hall|/cave/Other/Hall\n";
	for (const bool bReverse : {false, true})
	{
		Files.bReverseWalks = bReverse;
		const FQVScanResult Scan = FQVMapScanner::ScanMods();
		EXPECT_EQ(Project.Mask(Describe(Scan)), Expected) << "reversed: " << bReverse;
		EXPECT_EQ(Scan.ModCount, 2);
		EXPECT_EQ(Scan.ErrorMessage, "");
		EXPECT_EQ(Scan.Find("CAVE"), &Scan.Mods[1]);
		EXPECT_EQ(Scan.Find("NoMaps"), nullptr);
	}
}

TEST_F(FScannerTest, TellsWhatItSkipsAndWhy)
{
	MakePlugins(Project);
	Project.Remove("Plugins/cave/Content/Maps");
	FQVMapScanner::ScanMods();
	const std::string Inspecting = "QVMap: ScanMods inspecting plugin directory <Project>/Plugins/";
	const std::string Scanned = "QVMap DEBUG: Scanned map ";
	EXPECT_EQ(Logged(),
		"QVMap: ScanMods found 11 plugin directories in <Project>/Plugins\n" + Inspecting + "Able Höhle\n" + Scanned +
			"One.Two: RelativePath=One.Two.umap, CookPath=/Able Höhle/One.Two, GamePath=/Game/Able Höhle/One.Two\n"
			"QVMap: ScanMods found 1 map(s) in Able Höhle\n" +
			Inspecting + "cave\n" + Scanned +
			"A: RelativePath=Deep/Er/A.umap, CookPath=/cave/Deep/Er/A, GamePath=/Game/cave/Deep/Er/A\n" + Scanned +
			"Hall: RelativePath=Other/Hall.umap, CookPath=/cave/Other/Hall, GamePath=/Game/cave/Other/Hall\n"
			"QVMap: ScanMods found 2 map(s) in cave\n" +
			Inspecting + "engine\nVerbose: QVMap: Skipping toolchain plugin engine\n" + Inspecting +
			"GAME\nVerbose: QVMap: Skipping toolchain plugin GAME\n" + Inspecting +
			"NoContent\nQVMap: ScanMods skipping NoContent - no Content/ directory\n" + Inspecting +
			"NoDescriptor\nQVMap: ScanMods skipping NoDescriptor - no .uplugin descriptor\n" + Inspecting +
			"NoMaps\nQVMap: ScanMods found 0 map(s) in NoMaps\n" + Inspecting +
			"QUARVEL\nVerbose: QVMap: Skipping toolchain plugin QUARVEL\n" + Inspecting +
			"qvmap\nVerbose: QVMap: Skipping toolchain plugin qvmap\n" + Inspecting +
			"Script\nVerbose: QVMap: Skipping toolchain plugin Script\n" + Inspecting +
			"SetAside\nQVMap: ScanMods skipping SetAside - no .uplugin descriptor\n");
}

TEST_F(FScannerTest, AProjectWithoutModsIsNoFailureButOneWithoutPluginsIs)
{
	FQVScanResult Scan = FQVMapScanner::ScanMods();
	EXPECT_TRUE(Scan.Mods.empty() && Scan.ErrorMessage.empty());
	EXPECT_EQ(Complaints(), "");
	Project.Remove("Plugins");
	Scan = FQVMapScanner::ScanMods();
	EXPECT_EQ(Project.Mask(Scan.ErrorMessage), "Plugins directory not found: <Project>/Plugins");
	EXPECT_EQ(Scan.ModCount, 0);
	EXPECT_EQ(Logged(), "Warning: QVMap: Plugins directory not found: <Project>/Plugins\n");
}

TEST_F(FScannerTest, NameRule)
{
	const struct
	{
		const char* Name;
		const char* Error; // empty: it may be a mod's name
	} Cases[] = {
		{"Cave", ""},
		{"a_b-1", ""},
		{"1", ""},
		{"QVMap", ""},
		{"Höhle", ""},
		{"Пещера", ""},
		{"洞窟", ""},
		{"Games", ""},
		{"", "Plugin name cannot be empty."},
		{"a b", "Plugin name 'a b' contains invalid character ' '. Allowed: letters, numbers, underscore, hyphen."},
		{"../x", "Plugin name '../x' contains invalid character '.'. Allowed: letters, numbers, underscore, hyphen."},
		{"x\"", "Plugin name 'x\"' contains invalid character '\"'. Allowed: letters, numbers, underscore, hyphen."},
		{"GAME!", "Plugin name 'GAME!' contains invalid character '!'. Allowed: letters, numbers, underscore, hyphen."},
		{"Höhle—2",
			"Plugin name 'Höhle—2' contains invalid character '—'. Allowed: letters, numbers, underscore, hyphen."},
		{"a\U0001F600",
			"Plugin name 'a\U0001F600' contains invalid character '\uFFFD'. Allowed: letters, numbers, underscore, "
			"hyphen."},
		{"GAME", "Plugin name 'GAME' is reserved and cannot be used for mods."},
		{"quarvel", "Plugin name 'quarvel' is reserved and cannot be used for mods."},
		{"Engine", "Plugin name 'Engine' is reserved and cannot be used for mods."},
		{"sCRIPT", "Plugin name 'sCRIPT' is reserved and cannot be used for mods."},
	};
	for (const auto& Case : Cases)
	{
		std::string Error;
		EXPECT_EQ(FQVMapCooker::ValidatePluginName(Case.Name, Error), *Case.Error == '\0') << Case.Name;
		EXPECT_EQ(Error, Case.Error);
	}
	EXPECT_EQ(Logged(), "");
	EXPECT_TRUE(FQVMapScanner::IsToolchainPlugin("qvMAP") && FQVMapScanner::IsToolchainPlugin("Quarvel"));
	EXPECT_FALSE(FQVMapScanner::IsToolchainPlugin("Cave") || FQVMapScanner::IsReservedName("QVMap"));
}
