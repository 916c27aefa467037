// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapReferenceChecks.h"
#include "Workspace/QVMapConfig.h"

#include "Diagnostics/QVMapCookObstacles.h"
#include "Tests/Diagnostics/DiagnosticsTestSupport.h"

namespace
{
struct FReferenceChecks : QVTest::FDiagnosticsTest
{
	FQVDiagnosticFindings Check(const char* Mod = "Cave")
	{
		FQVDiagnosticOptions Options;
		Options.ModName = Mod;
		FQVDiagnosticFindings Findings;
		FQVMapReferenceChecks::CheckReferences(Options, Findings);
		for (const FQVDiagnosticFinding& Each : Findings)
		{
			EXPECT_EQ(Each.Category, EQVDiagCategory::References);
			EXPECT_TRUE(Each.Id.ToView().starts_with("Ref."));
		}
		return Findings;
	}
	/** As if 5.6 had saved it, in the layout that 5.4 has. */
	void MakeNewer(const char* Package) const
	{
		std::string Bytes = Project.Read(FileOf(Package));
		const std::string Saved("\x05\0\x04\0\x04\0", 6);
		const std::string Compatible("\x05\0\x04\0\0\0", 6);
		for (const std::string& Version : {Saved, Compatible})
		{
			const std::size_t At = Bytes.find(Version);
			ASSERT_NE(At, std::string::npos);
			Bytes[At + 2] = 6;
		}
		Project.Write(FileOf(Package), Bytes);
	}
	std::string SizeOf(const char* Package) const
	{
		const auto Bytes = static_cast<std::int64_t>(Project.Read(FileOf(Package)).size());
		return FQVDiagnosticModel::FormatBytes(Bytes).ToString();
	}
};
} // namespace

TEST_F(FReferenceChecks, AllIsWell)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/Cave/A", "/Engine/Grid", "/QUARVEL/Gun", "/QUARVEL/Lamp"});
	PutMesh("/Cave/A");
	PutMesh("/QUARVEL/Gun");
	PutMesh("/QUARVEL/Lamp");
	Scan();
	const std::size_t Longest = FQVString::ReplaceAll(
		Project.At("Plugins/Cave/Saved/Cooked/Windows/MapWork/Plugins/Cave/Content/Hall.uasset"), "\\", "/")
									.size();
	EXPECT_GT(Longest, 60U);
	std::string Text = Describe(Check());
	const std::size_t Units = Text.find("The longest has ");
	ASSERT_NE(Units, std::string::npos);
	Text.replace(Units, Text.find(" characters", Units) - Units, "The longest has N");
	EXPECT_EQ(Text, "Pass Ref.Audit\n"
					"  RefAuditTitle: References traced\n"
					"  RefAuditPass: 1 map(s) reach 2 package(s) of the map and 3 outside it.\n"
					"Pass Ref.Untrusted\n"
					"  RefUntrustedTitle: Nothing used from outside the map\n"
					"  RefUntrustedPass: Everything the map uses is its own or part of every game.\n"
					"Pass Ref.Missing\n"
					"  RefMissingTitle: Referenced packages exist\n"
					"  RefMissingPass: No reference leads to a package that is not there.\n"
					"Pass Ref.Redirectors\n"
					"  RefRedirectorsTitle: No leftover redirectors\n"
					"  RefRedirectorsPass: No reference goes through a redirector outside.\n"
					"Pass Ref.NewerEngine\n"
					"  RefNewerTitle: Nothing saved by a newer engine\n"
					"  RefNewerPass: 5.4 can load all that the map uses.\n"
					"Pass Ref.LetterCase\n"
					"  RefLetterCaseTitle: References spelled like their files\n"
					"  RefLetterCasePass: No reference differs from its file in upper and lower case.\n"
					"Pass Ref.CookedPaths\n"
					"  RefCookedPathsTitle: Cooked paths short enough for Windows\n"
					"  RefCookedPathsPass: The longest has N characters.\n"
					"Info Ref.Trusted\n"
					"  RefTrustedTitle: Content that every game has\n"
					"  RefTrustedDetail: 3 package(s): /Engine (1), /QUARVEL (2)\n"
					"Pass Ref.Unreadable\n"
					"  RefUnreadableTitle: Packages readable\n"
					"  RefUnreadablePass: Every package could be read.\n");
	EXPECT_TRUE(Check("").empty());
}

TEST_F(FReferenceChecks, WhatIsOutsideLargestFirst)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/Cave/Wall", "soft /Game/Small"});
	PutMesh("/Cave/Wall", {"/Game/Large"});
	PutMesh("/Game/Small", {}, 10);
	PutMesh("/Game/Large", {}, 5000);
	Scan();
	const std::string ChildRows = "    %s Ref.Untrusted.Hard\n"
								  "      /Game/Large\n"
								  "      RefUntrustedRow: Hard reference to StaticMesh, " +
								  SizeOf("/Game/Large") +
								  "\n/Cave/Hall > /Cave/Wall > /Game/Large\n"
								  "      [ShowReferencer: Show Referencer] BrowseToAssets /Cave/Wall.Wall\n"
								  "    %s Ref.Untrusted.Soft\n"
								  "      /Game/Small\n"
								  "      RefUntrustedRow: Soft reference to StaticMesh, " +
								  SizeOf("/Game/Small") +
								  "\n/Cave/Hall > /Game/Small\n"
								  "      [ShowReferencer: Show Referencer] BrowseToAssets /Cave/Hall.Hall\n";
	std::string Row = Describe(Check(), "Ref.Untrusted");
	EXPECT_TRUE(Row.starts_with("Info Ref.Untrusted\n")) << Row;
	EXPECT_TRUE(
		Row.ends_with("  RefUntrustedBroughtIn: A pack brings them in for its length and leaves the project as it "
					  "was. To make them the map's own for good, move them into its folder.\n" +
					  FQVString::ReplaceAll(ChildRows, "%s", "Info")))
		<< Row;
	FQVMapConfig::SetImportExternalAssets(false);
	Row = Describe(Check(), "Ref.Untrusted");
	EXPECT_TRUE(Row.starts_with("Warning Ref.Untrusted\n  RefUntrustedTitle: Nothing used from outside the map\n"
								"  RefUntrustedFail: 2 package(s) from outside the map ("));
	EXPECT_TRUE(Row.ends_with(").\n  RefUntrustedRemedy: The game does not have them. Move them into the map's own "
							  "folder, or switch import_external_assets on.\n" +
							  FQVString::ReplaceAll(ChildRows, "%s", "Warning")))
		<< Row;
}

TEST_F(FReferenceChecks, WhatIsNotThere)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/Cave/Gone", "soft /Game/Nowhere", "/Engine/NotLooked", "/QUARVEL/TooNew"});
	Scan();
	EXPECT_EQ(Describe(Check(), "Ref.Missing"),
		"Warning Ref.Missing\n"
		"  RefMissingTitle: Referenced packages exist\n"
		"  RefMissingFail: 2 referenced package(s) do not exist.\n"
		"  RefMissingRemedy: The cook leaves these references empty. Restore the packages, or open what refers to "
		"them, clear the reference and save.\n"
		"    Warning Ref.Missing.Soft\n"
		"      /Game/Nowhere\n"
		"      RefMissingRow: Soft reference\n/Cave/Hall > /Game/Nowhere\n"
		"      [ShowReferencer: Show Referencer] BrowseToAssets /Cave/Hall.Hall\n"
		"    Warning Ref.Missing.Own\n"
		"      /Cave/Gone\n"
		"      RefMissingOwnRow: Referenced by /Cave/Hall\n");
	EXPECT_EQ(Find(Check(), "Ref.Untrusted").Severity, EQVDiagSeverity::Pass) << "what is not there is told once";
	PutMesh("/QUARVEL/Gun");
	Scan();
	EXPECT_EQ(Find(Check(), "Ref.Missing").Children[1].Title.ToString(), "/QUARVEL/TooNew")
		<< "the bridge plugin is older than the map";
}

TEST_F(FReferenceChecks, RedirectorsAndTheWayToFixThem)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/Game/Old"});
	PutRedirector("/Game/Old", "/Game/New");
	PutMesh("/Game/New");
	Scan();
	EXPECT_EQ(Describe(Check(), "Ref.Redirectors"),
		"Warning Ref.Redirectors\n"
		"  RefRedirectorsTitle: No leftover redirectors\n"
		"  RefRedirectorsFail: 1 reference(s) go through a redirector outside the map.\n"
		"  RefRedirectorsRemedy: The game does not have the redirectors. Fix them up and save the map.\n"
		"  [FixRedirectors: Fix Redirectors] Custom\n"
		"    Warning Ref.Redirectors.Leftover\n"
		"      /Game/Old\n"
		"      RefRedirectorRow: Leads to /Game/New\n/Cave/Hall > /Game/Old\n"
		"      [ShowReferencer: Show Referencer] BrowseToAssets /Cave/Hall.Hall\n");
	EXPECT_TRUE(Find(Check(), "Ref.Redirectors").ActionCallback());
	Scan();
	EXPECT_EQ(Find(Check(), "Ref.Redirectors").Severity, EQVDiagSeverity::Pass);
	EXPECT_FALSE(Project.Exists(FileOf("/Game/Old")));
}

TEST_F(FReferenceChecks, WhatANewerEngineHasSaved)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/Cave/Rock", "/Game/Tree"});
	PutMesh("/Cave/Unused");
	PutMesh("/Cave/Rock");
	PutMesh("/Game/Tree");
	MakeNewer("/Game/Tree");
	MakeNewer("/Cave/Unused");
	Scan();
	FQVDiagnosticFinding Finding = Find(Check(), "Ref.NewerEngine");
	EXPECT_EQ(Finding.Severity, EQVDiagSeverity::Warning) << "what the map does not reach is not cooked";
	MakeNewer("/Cave/Rock");
	Scan();
	EXPECT_EQ(Describe(Check(), "Ref.NewerEngine"),
		"Error Ref.NewerEngine\n"
		"  RefNewerTitle: Nothing saved by a newer engine\n"
		"  RefNewerFail: 2 package(s) were saved by an engine newer than 5.4.\n"
		"  RefNewerRemedy: Unreal Engine 5.4 does not load them, so the cook fails or leaves them out. Restore what "
		"5.4 "
		"saved, or make them anew in 5.4: a newer engine cannot save for an older one.\n"
		"    Error Ref.NewerEngine.Own\n"
		"      <Project>/Plugins/Cave/Content/Rock.uasset\n"
		"      RefNewerRow: /Cave/Rock was saved by UE 5.6.4-35576357.\n"
		"      [OpenFolder: Open Folder] OpenFolder <Project>/Plugins/Cave/Content\n"
		"    Warning Ref.NewerEngine.Other\n"
		"      <Project>/Content/Tree.uasset\n"
		"      RefNewerRow: /Game/Tree was saved by UE 5.6.4-35576357.\n"
		"      [OpenFolder: Open Folder] OpenFolder <Project>/Content\n");
}

TEST_F(FReferenceChecks, ReferencesInOtherLettersThanTheirFiles)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/cave/Big/Rock", "soft /Cave/Ajar/LEAF", "/Cave/GONE"});
	PutMesh("/Cave/big/Rock", {"/Cave/Ajar/Leaf", "/CAVE/Hall"});
	PutMesh("/Cave/Ajar/Leaf", {"/game/TREE"});
	PutMesh("/Game/Tree", {"/Game/tree", "/Cave/HALL"});
	Scan();
	EXPECT_EQ(Describe(Check(), "Ref.LetterCase"),
		"Warning Ref.LetterCase\n"
		"  RefLetterCaseTitle: References spelled like their files\n"
		"  RefLetterCaseFail: 3 reference(s) differ from their file in upper and lower case.\n"
		"  RefLetterCaseRemedy: Windows takes them; a disk that tells upper from lower case does not have such a file. "
		"Rename files and folders to what the references say, or set the references anew.\n"
		"    Warning Ref.LetterCase.Reference\n"
		"      /Cave/Hall\n"
		"      RefLetterCaseRow: refers to /Cave/Ajar/LEAF\non disk it is /Cave/Ajar/Leaf\n"
		"      [ShowReferencer: Show Referencer] BrowseToAssets /Cave/Hall.Hall\n"
		"    Warning Ref.LetterCase.Reference\n"
		"      /Cave/Hall\n"
		"      RefLetterCaseRow: refers to /cave/Big/Rock\non disk it is /Cave/big/Rock\n"
		"      [ShowReferencer: Show Referencer] BrowseToAssets /Cave/Hall.Hall\n"
		"    Warning Ref.LetterCase.Reference\n"
		"      /Cave/Ajar/Leaf\n"
		"      RefLetterCaseRow: refers to /game/TREE\non disk it is /Game/Tree\n"
		"      [ShowReferencer: Show Referencer] BrowseToAssets /Cave/Ajar/Leaf.Leaf\n");
}

TEST_F(FReferenceChecks, FilesThatCannotBeRead)
{
	Project.AddMod("Cave", {"Hall"});
	Project.Write("Content/Other.uasset", "no package");
	Scan();
	const std::string Row = Describe(Check(), "Ref.Unreadable");
	EXPECT_TRUE(Row.starts_with("Warning Ref.Unreadable\n  RefUnreadableTitle: Packages readable\n"
								"  RefUnreadableFail: 1 package(s) could not be read.\n"))
		<< Row;
	EXPECT_NE(Row.find("    Warning Ref.Unreadable.Other\n      <Project>/Content/Other.uasset\n"
					   "      RefUnreadableRow: The file "),
		std::string::npos)
		<< Row;
	Project.Write("Plugins/Cave/Content/Rock.uasset", "no package");
	Scan();
	const FQVDiagnosticFinding Finding = Find(Check(), "Ref.Unreadable");
	EXPECT_EQ(Finding.Severity, EQVDiagSeverity::Error);
	ASSERT_EQ(Finding.Children.size(), 2U);
	EXPECT_EQ(Finding.Children[1].Id.ToString(), "Ref.Unreadable.Own");
	EXPECT_EQ(Project.Mask(Finding.Children[1].ActionPath), "<Project>/Plugins/Cave/Content");
	Project.Write("Plugins/Cave/Content/Hall.umap", "no package");
	Scan();
	const FQVDiagnosticFindings Findings = Check();
	EXPECT_EQ(Describe(Findings, "Ref.Audit"),
		"Error Ref.Audit\n  RefAuditTitle: References traced\n  No maps found in plugin: Cave\n"
		"  RefAuditRemedy: Save a map below the plugin's Content folder, then refresh.\n");
	EXPECT_EQ(Find(Findings, "Ref.Unreadable").Children.size(), 3U);
}

TEST_F(FReferenceChecks, CookedPathsAtWindowsLimit)
{
	const std::string Head = Project.At("Plugins/Cave/Saved/Cooked/Windows/MapWork/Plugins/Cave/Content/") + ".uasset";
	std::size_t HeadUnits = 0;
	for (const char Each : Head)
	{
		HeadUnits += (static_cast<unsigned char>(Each) & 0xC0) != 0x80 ? 1 : 0;
	}
	ASSERT_LT(HeadUnits, 250U);
	const std::string Fits = "/Cave/" + std::string(259 - HeadUnits, 'x');
	const FQVDiagnosticFinding Good =
		FQVMapCookObstacles::CheckCookedPaths("Cave", {FQVName(Fits), FQVName("/Game/" + Fits)});
	EXPECT_EQ(Describe(Good.Detail), "RefCookedPathsPass: The longest has 259 characters.");
	const FQVDiagnosticFinding Bad = FQVMapCookObstacles::CheckCookedPaths("Cave", {FQVName(Fits + "y")});
	EXPECT_EQ(Bad.Severity, EQVDiagSeverity::Error);
	EXPECT_EQ(Describe(Bad.Detail), "RefCookedPathsFail: 1 cooked path(s) are too long.");
	ASSERT_EQ(Bad.Children.size(), 1U);
	EXPECT_TRUE(Bad.Children[0].Detail.ToString().starts_with("260 characters: "));
}
