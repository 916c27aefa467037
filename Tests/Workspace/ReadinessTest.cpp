// SPDX-License-Identifier: MIT
#include "Workspace/QVMapReadiness.h"

#include "Tests/Diagnostics/DiagnosticsTestSupport.h"

using FReadiness = QVTest::FDiagnosticsTest;

TEST_F(FReadiness, TellsModMapAndGamePathOrWhatToDoInstead)
{
	const std::string NotOfAPlugin =
		"NotPluginMap: The open map is not set up for packing.\n\nMaps saved in the project's own Content folder "
		"cannot be packed. Use New Map to create one that can, then move your work across.\n\nCurrent: ";
	const std::string OfTheBridge =
		"BridgeTemplateOpen: The open map is the template that ships with QUARVEL, not a map of yours.\n\nIt cannot "
		"be packed: it lives in the toolkit's own folder, it is replaced every time you update the toolkit, and "
		"anything you build in it counts as content from outside the map being packed.\n\nUse New Map to start one of "
		"your own. To keep what you have already built here, use File > Save Current Level As and save it into "
		"Plugins/<YourMap>/Content/Maps/ first.\n\nCurrent: ";
	const auto Without = [](const std::string& Mod)
	{
		return "PluginNotFound: The open map is not set up for packing.\n\nIts folder '" + Mod + "' is missing its " +
			   Mod +
			   ".uplugin file - it may have been deleted, or renamed to .uplugin.disabled by an interrupted base "
			   "release "
			   "build.\n\nUse Open Map to switch to a working map, or New Map to start a fresh one.";
	};
	Project.AddMod("Cave", {});
	Project.Write("Plugins/Aside/Aside.uplugin.disabled", "{}");
	const struct
	{
		const char* World;
		std::string Error;
		const char* Result;
	} Cases[] = {
		{"/Cave/Maps/Hall.Hall", "", "Cave Hall /Game/Cave/Maps/Hall"},
		{"/Cave/Hall.Hall", "", "Cave Hall /Game/Cave/Hall"},
		{"//Cave//A.b/C.d.e", "", "Cave C /Game//Cave//A.b/C.d"},
		{"/Cave/.Odd", "", "Cave Cave /Game/Cave/"},
		{"/Game/Maps/Hall.Hall", NotOfAPlugin + "/Game/Maps/Hall.Hall", "- - -"},
		{"/gAME/Hall.Hall", NotOfAPlugin + "/gAME/Hall.Hall", "- - -"},
		{"/Untitled", NotOfAPlugin + "/Untitled", "- - -"},
		{"/quarvel/Templates/T.T", OfTheBridge + "/quarvel/Templates/T.T", "- - -"},
		{"/Temp/Untitled_1.Untitled", Without("Temp"), "  -"},
		{"/Aside/Hall.Hall", Without("Aside"), "  -"},
	};
	QVTest::FBareWorld World;
	Editor.World = &World;
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.World);
		World.Path = Case.World;
		std::string Mod = "-";
		std::string Map = "-";
		std::string GamePath = "-";
		FQVText Error("Old", "Old", "old");
		EXPECT_EQ(FQVMapReadiness::ResolveOpenMap(Mod, Map, Error, &GamePath), Case.Error.empty());
		EXPECT_EQ(Mod + " " + Map + " " + GamePath, Case.Result);
		EXPECT_EQ(Describe(Error), Case.Error);
		EXPECT_EQ(Error.GetNamespace(), Case.Error.empty() ? "" : "FQVMapReadiness");
	}
}

TEST_F(FReadiness, NothingIsOpen)
{
	std::string Mod;
	std::string Map;
	FQVText Error;
	EXPECT_FALSE(FQVMapReadiness::ResolveOpenMap(Mod, Map, Error));
	EXPECT_EQ(Describe(Error), "NoMapOpen: Please open a map first.");
	Engine.Interfaces.Editor = nullptr;
	EXPECT_FALSE(FQVMapReadiness::ResolveOpenMap(Mod, Map, Error));
}
