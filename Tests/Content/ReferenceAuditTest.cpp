// SPDX-License-Identifier: MIT
#include "Content/QVMapReferenceAudit.h"

#include "Content/QVMapSecurityScanner.h"
#include "Engine/QVSlowTask.h"
#include "Tests/Support/ContentProject.h"

using FReferenceAudit = QVTest::FContentTest;

namespace
{
FQVReferenceAudit Audit(const char* Mod = "Cave", const IQVSlowTask* Cancel = nullptr)
{
	return FQVMapReferenceAudit::AuditReferences(Mod, Cancel);
}

/** One line each: "hard StaticMesh chain; by /Cave/Hall; to /X". */
std::string Describe(const std::vector<FQVExternalReference>& References)
{
	std::string Text;
	for (const FQVExternalReference& Each : References)
	{
		Text += QVPrintf("%s %s %s; by %s", Each.bHardReference ? "hard" : "soft", Each.AssetClass,
			QVTest::FContentTest::Join(Each.Chain), Each.InternalReferencer.ToView());
		Text += Each.bRedirector ? QVPrintf("; to %s", Each.RedirectorTarget.ToView()) : "";
		Text += "\n";
		EXPECT_EQ(Each.Package, Each.Chain.back());
		EXPECT_EQ(Each.InternalReferencerAsset.PackageName, Each.InternalReferencer);
	}
	return Text;
}

struct FCancelAfter : IQVSlowTask
{
	mutable int Left;
	explicit FCancelAfter(int Packages)
		: Left(Packages)
	{
	}
	bool ShouldCancel() const override { return Left-- == 0; }
};
} // namespace

TEST_F(FReferenceAudit, TellsTrustedFromUntrustedWithTheShortestChainAndTheLargestFirst)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/Cave/A", "/Engine/Grid", "soft /Game/Small", "editor /Game/EditorOnly", "/QUARVEL/Gun"});
	PutMesh("/Cave/A", {"/Cave/B", "soft /Game/Large"});
	PutMesh("/Cave/B", {"/Game/Large", "/Cave/A", "/GAME/small", "/Other/Missing", "/Game/QUARVEL/Sky"});
	PutMesh("/Cave/Unreached", {"/Game/Unreached"});
	PutMesh("/Game/Small", {}, 100);
	PutMesh("/Game/Large", {"/Game/Deeper"}, 9000);
	PutMesh("/Game/EditorOnly");
	Scan();
	Logged();
	const FQVReferenceAudit Result = Audit();
	EXPECT_TRUE(Result.bSuccess) << Result.ErrorMessage;
	EXPECT_EQ(Describe(Result.UntrustedExternal),
		"soft StaticMesh /Cave/Hall > /Cave/A > /Game/Large; by /Cave/A\n"
		"soft StaticMesh /Cave/Hall > /Game/Small; by /Cave/Hall\n"
		"hard  /Cave/Hall > /Cave/A > /Cave/B > /Other/Missing; by /Cave/B\n");
	const auto Size = [&](const char* Package)
	{ return static_cast<std::int64_t>(Project.Read(FileOf(Package)).size()); };
	EXPECT_EQ(Result.UntrustedExternal[0].SizeBytes, Size("/Game/Large"));
	EXPECT_EQ(Result.UntrustedExternal[2].SizeBytes, 0);
	EXPECT_EQ(Result.UntrustedBytes, Size("/Game/Large") + Size("/Game/Small"));
	EXPECT_EQ(Describe(Result.TrustedExternal),
		"hard  /Cave/Hall > /Engine/Grid; by /Cave/Hall\n"
		"hard  /Cave/Hall > /QUARVEL/Gun; by /Cave/Hall\n"
		"hard  /Cave/Hall > /Cave/A > /Cave/B > /Game/QUARVEL/Sky; by /Cave/B\n");
	EXPECT_EQ(
		Join({Result.InternalPackages.begin(), Result.InternalPackages.end()}, " "), "/Cave/Hall /Cave/A /Cave/B");
	EXPECT_EQ(Result.MapCount, 1);
	EXPECT_EQ(Logged(), QVPrintf("QVMap: Reference audit for Cave -- 1 map(s), 3 internal package(s), 3 untrusted "
								 "external (%lld bytes), 3 trusted external, 0 leftover redirector(s)\n",
							Result.UntrustedBytes));
}

TEST_F(FReferenceAudit, FollowsRedirectorsInsideAndOutside)
{
	Project.AddMod("Cave", {});
	PutMap("/Cave/Hall", {"/Cave/MovedIn", "/Cave/MovedOut", "/Game/First", "soft /Game/Back", "/Game/Lost",
							 "/Engine/OldGrid", "/Game/ToEngine", "/Game/LoopA"});
	PutRedirector("/Cave/MovedIn", "/Cave/New");
	PutMesh("/Cave/New", {"/Cave/Wood"});
	PutMesh("/Cave/Wood");
	PutRedirector("/Cave/MovedOut", "/Game/Out");
	PutMesh("/Game/Out", {}, 50);
	PutRedirector("/Game/First", "/Game/Second", "Blueprint");
	PutRedirector("/Game/Second", "/Game/Third");
	PutMesh("/Game/Third", {}, 5000);
	PutRedirector("/Game/Back", "/Cave/Lamp");
	PutMesh("/Cave/Lamp");
	PutRedirector("/Game/Lost", "/Game/Nowhere");
	PutRedirector("/Game/ToEngine", "/Engine/Cube");
	PutRedirector("/Game/LoopA", "/Game/LoopB");
	PutRedirector("/Game/LoopB", "/Game/LoopA");
	Scan();
	const FQVReferenceAudit Result = Audit();
	EXPECT_TRUE(Result.bSuccess) << Result.ErrorMessage;
	EXPECT_EQ(Describe(Result.LeftoverRedirectors),
		"soft ObjectRedirector /Cave/Hall > /Game/Back; by /Cave/Hall; to /Cave/Lamp\n"
		"hard ObjectRedirector /Cave/Hall > /Game/First; by /Cave/Hall; to /Game/Second\n"
		"hard ObjectRedirector /Cave/Hall > /Game/First > /Game/Second; by /Cave/Hall; to /Game/Third\n"
		"hard ObjectRedirector /Cave/Hall > /Game/LoopA; by /Cave/Hall; to /Game/LoopB\n"
		"hard ObjectRedirector /Cave/Hall > /Game/LoopA > /Game/LoopB; by /Cave/Hall; to /Game/LoopA\n"
		"hard ObjectRedirector /Cave/Hall > /Game/Lost; by /Cave/Hall; to /Game/Nowhere\n"
		"hard ObjectRedirector /Cave/Hall > /Game/ToEngine; by /Cave/Hall; to /Engine/Cube\n");
	EXPECT_EQ(Describe(Result.UntrustedExternal),
		"hard StaticMesh /Cave/Hall > /Game/First > /Game/Second > /Game/Third; by /Cave/Hall\n"
		"hard StaticMesh /Cave/Hall > /Cave/MovedOut > /Game/Out; by /Cave/MovedOut\n"
		"hard  /Cave/Hall > /Game/Lost > /Game/Nowhere; by /Cave/Hall\n");
	EXPECT_EQ(Describe(Result.TrustedExternal), "hard  /Cave/Hall > /Engine/OldGrid; by /Cave/Hall\n"
												"hard  /Cave/Hall > /Game/ToEngine > /Engine/Cube; by /Cave/Hall\n");
	std::vector<FQVName> Internal(Result.InternalPackages.begin(), Result.InternalPackages.end());
	std::sort(Internal.begin(), Internal.end(), FQVName::LexicalLess);
	EXPECT_EQ(Join(Internal, " "), "/Cave/Hall /Cave/Lamp /Cave/MovedIn /Cave/MovedOut /Cave/New /Cave/Wood");
	EXPECT_EQ(Result.RedirectorHops, 9);
}

TEST_F(FReferenceAudit, EndsEarlyWithAReason)
{
	EXPECT_EQ(Audit("Nope").ErrorMessage,
		"Plugin Content directory not found: " + Project.ProjectDir() + "/Plugins/Nope/Content");
	Project.AddMod("Cave", {});
	PutMesh("/Cave/Rock");
	Scan();
	EXPECT_EQ(Audit().ErrorMessage, "No maps found in plugin: Cave");
	PutMap("/Cave/Hall", {"/Cave/Rock", "/Game/X"});
	const FCancelAfter Cancel(1);
	const FQVReferenceAudit Cancelled = Audit("Cave", &Cancel);
	EXPECT_FALSE(Cancelled.bSuccess);
	EXPECT_EQ(Cancelled.ErrorMessage, "Cancelled.");
	const FCancelAfter Later(2);
	EXPECT_TRUE(Audit("Cave", &Later).bSuccess) << "asked once for each package";
	Project.Remove("Plugins/Cave/Content/Hall.umap");
	EXPECT_EQ(Audit().ErrorMessage, "No maps found in plugin: Cave") << "gone from the disk since";
}

TEST(TrustedPackages, AreToldByTheirBeginning)
{
	for (const char* Trusted : {"/Script/Engine", "/engine/Grid", "/NIAGARA/X", "/Game/QUARVEL/Sky", "/quarvel/Gun"})
	{
		EXPECT_TRUE(FQVMapSecurityScanner::IsTrustedPackagePath(Trusted)) << Trusted;
	}
	for (const char* Untrusted : {"/Game/QUARVEL", "/Game/QUARVELs/X", "/Game/X", "/EngineX/Y", "Engine/Grid", ""})
	{
		EXPECT_FALSE(FQVMapSecurityScanner::IsTrustedPackagePath(Untrusted)) << Untrusted;
	}
}
