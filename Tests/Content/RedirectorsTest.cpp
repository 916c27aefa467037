// SPDX-License-Identifier: MIT
#include "Content/QVMapRedirectors.h"

#include "Content/QVMapReferenceAudit.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Support/ContentProject.h"
#include "Tests/Support/ScriptedDialogs.h"

using FRedirectors = QVTest::FContentTest;

namespace
{
constexpr const char* NoneLoaded =
	"None of the redirectors could be loaded. They may already have been cleaned up - refresh the report.";

FQVAssetData Redirector(const char* Package, const char* Asset)
{
	return {FQVName(Package), FQVName(Asset), FQVName(FQVAssetData::RedirectorClass), {}};
}
} // namespace

TEST_F(FRedirectors, RepointsWhoeverRefersToThemAndDeletesThem)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/Game/Old", "soft /Game/Old", "/Cave/Rock", "soft /Game/Chain"});
	PutMesh("/Cave/Rock");
	PutMesh("/Game/Other", {"/GAME/OLD"});
	PutRedirector("/Game/Old", "/Cave/Stone");
	PutMesh("/Cave/Stone", {"/Cave/Rock"});
	PutRedirector("/Game/Chain", "/Game/Link");
	PutRedirector("/Game/Link", "/Cave/Rock");
	Scan();
	Logged();
	FQVText Error;
	EXPECT_TRUE(FQVMapRedirectors::FixRedirectors(
		std::vector{Redirector("/Game/Old", "Old"), FQVAssetData(), Redirector("/Game/Gone", "Gone"),
			Redirector("/Cave/Rock", "Rock"), Redirector("/Game/Chain", "Chain"), Redirector("/Game/Link", "Link")},
		Error));
	EXPECT_EQ(Logged(), "Warning: QVMap: Could not load redirector /Game/Gone - skipping\n"
						"Warning: QVMap: Could not load redirector /Cave/Rock - skipping\n"
						"QVMap: Fixing up 3 redirector(s)\n");
	EXPECT_EQ(Project.FilesIn("Content"), std::vector<std::string>{"Other.uasset"});
	const FQVReferenceAudit Audit = FQVMapReferenceAudit::AuditReferences("Cave");
	EXPECT_EQ(
		Join({Audit.InternalPackages.begin(), Audit.InternalPackages.end()}, " "), "/Cave/Hall /Cave/Rock /Cave/Stone");
	EXPECT_TRUE(Audit.UntrustedExternal.empty() && Audit.LeftoverRedirectors.empty());
	std::vector<FQVPackageDependency> Dependencies;
	Engine.Interfaces.AssetRegistry->GetDependencies(FQVName("/Game/Other"), EQVDependencyQuery::Game, Dependencies);
	EXPECT_TRUE(std::any_of(Dependencies.begin(), Dependencies.end(),
		[](const FQVPackageDependency& Each) { return Each.Package == FQVName("/Cave/Stone") && Each.bHard; }));
	EXPECT_EQ(Project.FilesIn("Saved/QVPak/Backup/Redirectors-2026.11.21-18.05.09"),
		(std::vector<std::string>{"Content/Chain.uasset", "Content/Link.uasset", "Content/Old.uasset",
			"Content/Other.uasset", "Plugins/Cave/Content/Hall.umap"}));
}

TEST_F(FRedirectors, FailsWhenThereIsNothingToFixOrNoTelling)
{
	Project.AddMod("Cave", {});
	PutMesh("/Cave/Rock");
	FQVText Error;
	EXPECT_FALSE(FQVMapRedirectors::FixRedirectors({}, Error));
	EXPECT_EQ(Error.ToString(), NoneLoaded);
	EXPECT_EQ(Error.GetNamespace() + "." + Error.GetKey(), "FQVMapRedirectors.NoneLoaded");
	EXPECT_EQ(Logged(), QVPrintf("Warning: QVMap: Redirector fixup did not run - %s\n", std::string_view(NoneLoaded)));

	QVTest::FScriptedDialogs Dialogs;
	Engine.Interfaces.Dialogs = &Dialogs;
	EXPECT_FALSE(FQVMapRedirectors::FixRedirectorsWithDialog(std::vector{Redirector("/Cave/Rock", "Rock")}));
	EXPECT_EQ(Dialogs.Asked, NoneLoaded);

	Logged();
	Engine.GetAssetRegistry().StartScan();
	EXPECT_FALSE(FQVMapRedirectors::FixRedirectors(std::vector{Redirector("/Cave/Rock", "Rock")}, Error));
	EXPECT_EQ(Error.ToString(),
		"The asset registry is still scanning, so the assets referencing these redirectors cannot be found yet.\n\n"
		"Wait for the scan to finish and try again.");
	EXPECT_EQ(Error.GetKey(), "StillScanning");
	EXPECT_EQ(Complaints().find("Warning: QVMap: Redirector fixup did not run - The asset registry is still"), 0u)
		<< "nothing was loaded";
}

TEST_F(FRedirectors, NothingIsChangedWhereTheirEndIsNotKnown)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/Game/LoopA", "soft /Game/LoopB", "/Game/Broken", "/Game/Own"});
	PutRedirector("/Game/LoopA", "/Game/LoopB");
	PutRedirector("/Game/LoopB", "/Game/LoopA");
	PutRedirector("/Game/Broken", "/Game/Link");
	PutRedirector("/Game/Link", "/Game/Nowhere");
	PutRedirector("/Game/Own", "/Cave/Stone");
	PutMesh("/Cave/Stone", {"/Game/Own"});
	Scan();
	const std::vector All = {
		Redirector("/Game/LoopA", "LoopA"), Redirector("/Game/LoopB", "LoopB"), Redirector("/Game/Broken", "Broken")};
	const std::string Before = Project.Read(FileOf("/Cave/Hall", ".umap")) + Project.Read(FileOf("/Game/LoopA"));
	FQVText Error;
	EXPECT_TRUE(FQVMapRedirectors::FixRedirectors(All, Error));
	EXPECT_EQ(Project.Read(FileOf("/Cave/Hall", ".umap")) + Project.Read(FileOf("/Game/LoopA")), Before);
	EXPECT_FALSE(Project.Exists("Saved/QVPak/Backup"));

	EXPECT_TRUE(FQVMapRedirectors::FixRedirectors(std::vector{Redirector("/Game/Own", "Own")}, Error));
	const QVStandalone::FRedirectorPlan& Done = Engine.GetAssetTools().GetLastFixup();
	EXPECT_EQ(Done.Redirectors[0].Obstacle, "/Cave/Stone still refers to it");
	EXPECT_EQ(Done.Referencers[1].Obstacle,
		"it is what the redirector leads to, and would import itself: fix it in the editor");
}

TEST_F(FRedirectors, DataThatNamesOneAndContentThatNobodyReadKeepIt)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/Game/Old"});
	PutRedirector("/Game/Old", "/Cave/Stone");
	PutMesh("/Cave/Stone");
	const std::string Hall = FileOf("/Cave/Hall", ".umap");
	const std::string Good = Project.Read(Hall);
	const std::vector Old = {Redirector("/Game/Old", "Old")};
	const struct
	{
		std::string Tail;
		bool bGoes;
	} Cases[] = {{"/game/OLD", false}, {std::string("\0\0/\0G\0a\0m\0e\0/\0O\0l\0d\0.\0", 22), false},
		{"/Game/Older", true}, {"/Other/Game/Old2", true}};
	for (const auto& Case : Cases)
	{
		PutRedirector("/Game/Old", "/Cave/Stone");
		Project.Write(Hall, Good + "text " + Case.Tail);
		Scan();
		FQVText Error;
		FQVMapRedirectors::FixRedirectors(Old, Error);
		EXPECT_EQ(Project.Exists(FileOf("/Game/Old")), !Case.bGoes) << Case.Tail;
	}

	PutRedirector("/Game/Old", "/Cave/Stone");
	Project.Write(Hall, Good);
	Project.Write("Plugins/Harbor/Harbor.uplugin.disabled", "{}");
	Project.MakeFolder("Plugins/Harbor/Content");
	Scan();
	FQVText Error;
	FQVMapRedirectors::FixRedirectors(Old, Error);
	EXPECT_EQ(Project.Mask(Engine.GetAssetTools().GetLastFixup().Redirectors[0].Obstacle),
		"what could not be read may refer to it: <Project>/Plugins/Harbor/Content belongs to no plugin that is "
		"switched on");
	EXPECT_EQ(Project.Read(Hall), Good);
	Engine.GetAssetTools().GetRedirectorFixup().bDespiteUnreadable = true;
	FQVMapRedirectors::FixRedirectors(Old, Error);
	EXPECT_FALSE(Project.Exists(FileOf("/Game/Old")));
}

TEST_F(FRedirectors, WhatCannotBeRewrittenKeepsItsRedirector)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/Game/Old", "/Game/Lost", "/Game/Loop"});
	PutMesh("/Cave/Locked", {"/Game/Old"});
	PutRedirector("/Game/Old", "/Cave/Stone");
	PutMesh("/Cave/Stone");
	PutRedirector("/Game/Lost", "/Game/Nowhere");
	PutRedirector("/Game/Loop", "/Game/Loop");
	Scan();
	const std::string Locked = Project.Read(FileOf("/Cave/Locked"));
	const std::filesystem::path LockedPath = QVStandalone::ToOsPath(Project.At(FileOf("/Cave/Locked")));
	std::filesystem::permissions(LockedPath, std::filesystem::perms::owner_read);
	FQVText Error;
	EXPECT_TRUE(FQVMapRedirectors::FixRedirectors(
		std::vector{Redirector("/Game/Old", "Old"), Redirector("/Game/Lost", "Lost"), Redirector("/Game/Loop", "Loop")},
		Error));
	std::filesystem::permissions(LockedPath, std::filesystem::perms::owner_all);
	const QVStandalone::FRedirectorPlan& Done = Engine.GetAssetTools().GetLastFixup();
	ASSERT_EQ(Done.Redirectors.size(), 3u);
	EXPECT_EQ(Done.Redirectors[0].Obstacle, "/Cave/Locked still refers to it");
	EXPECT_EQ(Done.Redirectors[1].Obstacle, "what it leads to is not there: /Game/Nowhere");
	EXPECT_EQ(Done.Redirectors[2].Obstacle, "it leads to itself in the end");
	EXPECT_EQ(Project.FilesIn("Content"), (std::vector<std::string>{"Loop.uasset", "Lost.uasset", "Old.uasset"}));
	EXPECT_EQ(Project.Read(FileOf("/Cave/Locked")), Locked);
	std::vector<FQVName> Referencers;
	Engine.Interfaces.AssetRegistry->GetReferencers(FQVName("/Game/Old"), Referencers);
	EXPECT_EQ(Join(Referencers, " "), "/Cave/Locked") << "the map was repointed all the same";
}
