// SPDX-License-Identifier: MIT
#include "Tests/Standalone/PackagesInMemorySupport.h"

using namespace QVTest;

namespace
{
struct PackagesInMemory : FPackagesInMemoryTest
{
};
} // namespace

TEST_F(PackagesInMemory, KnowsWhichNamesAPackageCanHave)
{
	for (const char* Good : {"/Game/A", "/Cave/Maps/Hall_2", "/gAme/Höhle(1)", "/QUARVEL/X", "/Engine/Cube"})
	{
		EXPECT_TRUE(Packages.IsValidLongPackageName(Good)) << Good;
	}
	for (const char* Bad : {"", "/", "Game/A", "/Game", "/Game/", "/Game/A/", "/Game//A", "/Game/A B", "/Game/A.A",
			 "/Game/A'", "/Game/A&", "/Game/A~", "/Game/A\t", "/Game/A\\B", "/Game/A:B", "/Game/A*", "/Game/A?",
			 "/Game/\"A", "/Game/<A", "/Game/A>", "/Game/A|", "/Game/A,", "/Game/A!", "/Game/A\r", "/Game/A\n",
			 "/Game/A@", "/Game/A#", "/Nowhere/A", "/Script/Engine", "/Temp/A"})
	{
		EXPECT_FALSE(Packages.IsValidLongPackageName(Bad)) << Bad;
	}
}

TEST_F(PackagesInMemory, LoadsWhatHasAFileAndForgetsItAgain)
{
	PutMesh("/Game/Rock");
	PutMap("/Game/Hall");
	Project.Write("Content/Torn.uasset", "no package");
	std::string File;
	EXPECT_TRUE(Packages.DoesPackageExist("/Game/hall", File));
	EXPECT_EQ(File, Project.At("Content/Hall.umap"));
	EXPECT_FALSE(Packages.DoesPackageExist("/Game/Gone", File));
	const FQVName Rock("/Game/Rock");
	const FQVName Hall("/Game/Hall");
	EXPECT_FALSE(Packages.IsLoaded(Rock));
	Packages.SetDirtyFlag(Rock, true);
	EXPECT_EQ(Dirty(), "");
	EXPECT_TRUE(Packages.LoadPackage(Rock) && Packages.LoadPackage(Hall) && Packages.LoadPackage(Hall));
	EXPECT_FALSE(Packages.LoadPackage(FQVName("/Game/Gone")));
	EXPECT_EQ(Said(), FLines());
	EXPECT_FALSE(Packages.LoadPackage(FQVName("/Game/Torn")));
	EXPECT_EQ(Said().size(), 1U);
	EXPECT_TRUE(Packages.IsLoaded(FQVName("/game/ROCK")) && !Packages.IsLoaded(FQVName("/Game/Torn")));
	EXPECT_TRUE(Packages.ContainsWorld(Hall));
	EXPECT_FALSE(Packages.ContainsWorld(Rock));
	Packages.SetDirtyFlag(Rock, true);
	Packages.SetDirtyFlag(Hall, true);
	EXPECT_EQ(Dirty(), "/Game/Hall /Game/Rock");
	Packages.SetDirtyFlag(Hall, false);
	EXPECT_EQ(Dirty(), "/Game/Rock");
	std::string Message = "old";
	Packages.ReloadPackages(std::vector{Rock}, Message);
	EXPECT_EQ(Dirty() + Message, "");
	Packages.DeleteAssets(std::vector{Hall});
	EXPECT_FALSE(Packages.IsLoaded(Rock) || Packages.IsLoaded(Hall));
	EXPECT_EQ(Project.FilesIn("Content"), (FLines{"Hall.umap", "Rock.uasset", "Torn.uasset"}));
}

/** Two that refer to each other, one that leads to itself, a redirector, and a world that needs all of them. */
TEST_F(PackagesInMemory, CopiesReferToCopies)
{
	PutMesh("/Game/Rock", {"/Game/Sub/Stone", "soft /Game/Moss", "/Game/Kept"}, 300'000);
	PutMesh("/Game/Sub/Stone", {"/Game/Rock", "soft /Game/Rock"}, 10);
	PutMesh("/Game/Moss", {"soft /Game/Moss", "editor /Game/Rock"});
	PutMesh("/Game/Kept", {"/Game/Rock"});
	PutRedirector("/Game/Old", "/Game/Rock");
	PutMap("/Game/Cellar", {"/Game/Rock", "soft /Game/Cellar"});
	PutMap("/Cave/Hall", {"/Game/Rock", "/Game/Kept", "soft /Game/Old"});
	Scan();
	const FFile Before = Bytes("Content/Rock.uasset");

	EXPECT_TRUE(Duplicate("/Game/Rock", "/Cave/In/Game/Rock"));
	EXPECT_TRUE(Duplicate("/Game/Sub/Stone", "/Cave/In/Game/Sub/Stone"));
	EXPECT_TRUE(Duplicate("/Game/Moss", "/Cave/In/Game/Moss"));
	EXPECT_TRUE(Duplicate("/Game/Old", "/Cave/In/Game/Old"));
	EXPECT_TRUE(Duplicate("/Game/Cellar", "/Cave/In/Game/Cellar"));
	EXPECT_TRUE(Packages.ContainsWorld(FQVName("/Cave/In/Game/Cellar")));
	EXPECT_TRUE(Packages.LoadPackage(FQVName("/Cave/Hall")));
	Copies.emplace_back("/Cave/Hall");
	Packages.ReplaceReferences(Copies, Replacements);
	EXPECT_EQ(Dirty(), "/Cave/Hall /Cave/In/Game/Cellar /Cave/In/Game/Moss /Cave/In/Game/Old /Cave/In/Game/Rock "
					   "/Cave/In/Game/Sub/Stone");
	EXPECT_EQ(Project.FilesIn("Plugins/Cave/Content"), FLines{"Hall.umap"});

	EXPECT_TRUE(Save("/Cave/Hall", ".umap") && Save("/Cave/In/Game/Cellar", ".umap"));
	for (const char* Mesh : {"/Cave/In/Game/Moss", "/Cave/In/Game/Old", "/Cave/In/Game/Sub/Stone"})
	{
		EXPECT_TRUE(Save(Mesh));
	}
	EXPECT_EQ(Dirty(), "/Cave/In/Game/Rock");
	EXPECT_TRUE(Save("/Cave/In/Game/Rock"));
	EXPECT_EQ(
		Said(), FLines{"Warning: <Project>/Plugins/Cave/Content/In/Game/Cellar.umap still holds /Game/Cellar in a "
					   "text, where it stays"}); // the level's address
	EXPECT_EQ(Dirty(), "");

	// of the registry, which nobody has asked to scan anything
	EXPECT_EQ(Dependencies("/Cave/Hall"), "hard /Cave/In/Game/Rock, hard /Game/Kept, soft /Cave/In/Game/Old");
	EXPECT_EQ(
		Dependencies("/Cave/In/Game/Rock"), "hard /Cave/In/Game/Sub/Stone, hard /Game/Kept, soft /Cave/In/Game/Moss");
	EXPECT_EQ(Dependencies("/Cave/In/Game/Sub/Stone"), "hard /Cave/In/Game/Rock");
	EXPECT_EQ(Dependencies("/Cave/In/Game/Moss"), "hard /Cave/In/Game/Rock, soft /Cave/In/Game/Moss");
	EXPECT_EQ(Dependencies("/Cave/In/Game/Old"), "hard /Cave/In/Game/Rock");
	EXPECT_EQ(Dependencies("/Cave/In/Game/Cellar"), "hard /Cave/In/Game/Rock, soft /Cave/In/Game/Cellar");
	EXPECT_EQ(Packages.LoadAsset(AssetOf("/Cave/In/Game/Old")).DestinationPackage, FQVName("/Cave/In/Game/Rock"));
	EXPECT_EQ(AssetOf("/Cave/In/Game/Cellar").GetObjectPath(), "/Cave/In/Game/Cellar.Cellar");

	const FFile After = Bytes("Plugins/Cave/Content/In/Game/Rock.uasset");
	ExpectSoundAfter(Before, After);
	EXPECT_EQ(ReadPackageHeader(After)->Summary.PackageName.ToUtf8(), "/Cave/In/Game/Rock");
	EXPECT_TRUE(Bytes("Content/Rock.uasset") == Before);
}

TEST_F(PackagesInMemory, ReplacesFurtherWhatWasReplacedOrSaved)
{
	PutMesh("/Game/A", {"/Game/B", "/Game/C"});
	PutMesh("/Game/B");
	PutMesh("/Game/C");
	Scan();
	const std::vector Target{FQVName("/Cave/A")};
	EXPECT_TRUE(Duplicate("/Game/A", "/Cave/A"));
	const auto Replace = [&](const char* From, const char* To) {
		Packages.ReplaceReferences(Target, std::vector{FQVAssetReplacement{AssetOf(From), FQVName(To), {}}});
	};
	Replace("/Game/B", "/Cave/B");
	Replace("/Game/B", "/Cave/Unused");
	Replace("/Cave/B", "/Cave/B2");
	Replace("/Cave/A", "/Cave/Elsewhere");
	EXPECT_TRUE(Save("/Cave/A"));
	EXPECT_EQ(Dependencies("/Cave/A"), "hard /Cave/B2, hard /Game/C");
	Replace("/Game/C", "/Cave/C");
	EXPECT_EQ(Dirty(), "/Cave/A");
	EXPECT_TRUE(Save("/Cave/A"));
	EXPECT_EQ(Dependencies("/Cave/A"), "hard /Cave/B2, hard /Cave/C");
	EXPECT_EQ(ReadPackageHeader(Bytes("Plugins/Cave/Content/A.uasset"))->Summary.PackageName.ToUtf8(), "/Cave/A");
	EXPECT_EQ(Said(), FLines());
}

/** Whoever refers to a redirector is led to the copy of its target, whose objects have other names; twice, for one. */
TEST_F(PackagesInMemory, ReplacesObjectsWithTheirPackage)
{
	FPackageSpec Spec;
	Spec.PackageName = "/Game/New";
	Spec.Exports = {{{}, {}, {}, "New", 0, true, {}, 0, {}}, {{}, {}, {}, "New_C", 0, true, {}, 0, {}}};
	PutBytes("/Game/New", BuildPackage(Spec));
	Spec = {};
	Spec.PackageName = "/Cave/User";
	const auto Package = [](const char* Name) { return FImportSpec{"/Script/CoreUObject", "Package", Name, {}, true}; };
	Spec.Imports = {Package("/Game/Old"), Package("/Game/Mesh"),
		{"/Script/Engine", "Blueprint", "Old", FPackageIndex::Import(0), true},
		{"/Script/Engine", "BlueprintGeneratedClass", "Old_C", FPackageIndex::Import(0), true},
		{"/Script/Engine", "StaticMesh", "Mesh", FPackageIndex::Import(1), true}};
	Spec.Exports = {{{}, {}, {}, "User", 0, true, {}, 0, {}}};
	PutBytes("/Cave/User", BuildPackage(Spec));
	ASSERT_TRUE(Packages.LoadPackage(FQVName("/Cave/User")));
	ASSERT_TRUE(Packages.CreatePackage(FQVName("/Cave/New")));
	ASSERT_TRUE(Packages.DuplicateAsset({FQVName("/Game/New"), FQVName("New_C"), {}, {}}, FQVName("/Cave/New")));
	const auto Replace = [&](const char* From, const char* Asset, const char* To, const char* ToAsset)
	{
		const FQVAssetReplacement Replacement{{FQVName(From), FQVName(Asset), {}, {}}, FQVName(To), FQVName(ToAsset)};
		Packages.ReplaceReferences(std::vector{FQVName("/Cave/User")}, std::vector{Replacement});
	};
	Replace("/Game/Old", "Old", "/Cave/New", "New_C");
	Replace("/Game/Mesh", "Mesh", "/Cave/First", "One");
	Replace("/Cave/First", "One", "/Cave/Second", "Two_C");
	ASSERT_TRUE(Save("/Cave/User"));
	const std::vector<std::string> Names = NamesIn(Bytes("Plugins/Cave/Content/User.uasset"));
	for (const char* New : {"/Cave/New", "New", "New_C", "/Cave/Second", "Two_C"})
	{
		EXPECT_TRUE(std::ranges::count(Names, New)) << New;
	}
	for (const char* Old : {"/Game/Old", "Old", "Old_C", "/Game/Mesh", "Mesh", "/Cave/First", "One"})
	{
		EXPECT_FALSE(std::ranges::count(Names, Old)) << Old;
	}
}

TEST_F(PackagesInMemory, RefusesWhatCannotBeDuplicated)
{
	PutMesh("/Game/Rock");
	PutMap("/Game/Hall");
	PutMesh("/Game/__ExternalActors__/Hall/0/AB/Wall");
	Scan();
	EXPECT_FALSE(Packages.CreatePackage(FQVName("/Cave/A B")));
	EXPECT_FALSE(Packages.DuplicateAsset(AssetOf("/Game/Rock"), FQVName("/Cave/Rock")));
	EXPECT_FALSE(Duplicate("/Game/Gone", "/Cave/Gone"));
	EXPECT_FALSE(Packages.DuplicateAsset(
		{FQVName("/Game/Rock"), FQVName("Pebble"), FQVName("/Script/Engine.StaticMesh"), {}}, FQVName("/Cave/Gone")));
	EXPECT_FALSE(Duplicate("/Game/Hall", "/Cave/Hall"));
	EXPECT_TRUE(Duplicate("/Game/Rock", "/Cave/Rock"));
	EXPECT_FALSE(Duplicate("/Game/Rock", "/Cave/Rock"));
	EXPECT_FALSE(Save("/Cave/Hall")) << "a package without objects";
	EXPECT_FALSE(Save("/Cave/Never")) << "a package that is not loaded";
	EXPECT_EQ(Said(),
		(FLines{"Error: '/Cave/A B' cannot be a package's name",
			"Error: /Game/Rock.Rock could not be duplicated to /Cave/Rock: its new package was not created",
			"Error: /Game/Gone.None here could not be duplicated to /Cave/Gone: its package cannot be loaded",
			"Error: /Game/Rock.Pebble could not be duplicated to /Cave/Gone: there is no Pebble in it",
			"Error: /Game/Hall.Hall could not be duplicated to /Cave/Hall: its actors lie in files of their own, which "
			"would not come along: duplicate it in the editor",
			"Error: /Game/Rock.Rock could not be duplicated to /Cave/Rock: its new package holds something already",
			"Error: /Cave/Hall could not be saved: there is nothing in it",
			"Error: /Cave/Never could not be saved: there is nothing in it"}));
}
