// SPDX-License-Identifier: MIT
#include "Tests/Standalone/RegistrySession.h"
#include "Tests/Support/TestPrograms.h"

#include <algorithm>

using namespace QVTest;
using namespace QVStandalone;
using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
constexpr const char* HallFile = "Plugins/Cave/Content/Maps/Hall.umap";

struct AssetRegistry : FRegistryTest
{
	AssetRegistry()
	{
		PutPlugin("Plugins/Cave");
		PutPlugin("Plugins/Cavern");
		PutWorld(HallFile, {"/Cave/Maps/Hall",
							   {{"/Cave/Meshes/Rock", "/Script/Engine", "StaticMesh", "Rock"},
								   {"/Game/Tools/Rig", "/Script/Engine", "Texture2D", "Rig", false},
								   {"/cave/meshes/ROCK_2", "/Script/Engine", "StaticMesh", "ROCK_2"}},
							   {"/Game/Tools/Rig", "/Game/Gone", "/Cave/Maps/Part"}, false});
		PutWorld("Plugins/Cave/Content/Maps/Part.umap", {"/Cave/Maps/Part", {}, {"/Game/Gone"}, false});
		PutMesh("Plugins/Cave/Content/Meshes/Rock.uasset", "/Cave/Meshes/Rock", 1000);
		PutMesh("Plugins/Cave/Content/Meshes/Rock_2.uasset", "/Moved/By/Hand/Rock_2");
		PutMesh("Plugins/Cavern/Content/Räume/Tür.uasset", "/Cavern/Räume/Tür");
		PutMesh("Content/Tools/Rig.uasset", "/Game/Tools/Rig");
		Project.Write("Content/Tools/notes.txt", "no package");
	}
};
} // namespace

TEST_F(AssetRegistry, TellsWhatTheFilesSay)
{
	FRegistrySession Session(Project);
	EXPECT_EQ(Session.Registry.GetPackageCount(), 6U);
	EXPECT_EQ(Session.Unreadable(), FTexts{});
	const FTexts Cave = {"/Cave/Maps/Hall.Hall World", "/Cave/Maps/Part.Part World",
		"/Cave/Meshes/Rock.Rock StaticMesh", "/Cave/Meshes/Rock_2.Rock_2 StaticMesh"};
	EXPECT_EQ(Session.Assets("/Cave"), Cave);
	EXPECT_EQ(Session.Assets("/cave/"), Cave);
	EXPECT_EQ(Session.Assets("/Cave/Maps/Hall"), FTexts{});
	EXPECT_EQ(Session.Assets("", "/Script/Engine.World"), FTexts(Cave.begin(), Cave.begin() + 2));
	EXPECT_EQ(Session.Assets("/Cave/Meshes", "/Script/Engine.World"), FTexts{});
	EXPECT_EQ(Session.Assets("/Cavern"), FTexts{"/Cavern/Räume/Tür.Tür StaticMesh"});

	EXPECT_EQ(Session.Dependencies("/Cave/Maps/HALL"),
		(FTexts{"hard editor /Game/Tools/Rig", "hard game /Cave/Meshes/Rock", "hard game /Cave/Meshes/Rock_2",
			"soft game /Cave/Maps/Part", "soft game /Game/Gone", "soft game /Game/Tools/Rig"}));
	EXPECT_EQ(Session.Dependencies("/Cave/Maps/Hall", EQVDependencyQuery::Game).size(), 5U);
	EXPECT_EQ(Session.Dependencies("/Game/Gone"), FTexts{});
	EXPECT_EQ(Session.Referencers("/Game/Gone"), (FTexts{"/Cave/Maps/Hall", "/Cave/Maps/Part"}));
	EXPECT_EQ(Session.Referencers("/Game/Tools/Rig"), FTexts{"/Cave/Maps/Hall"}); // once, though it does so twice
	EXPECT_EQ(Session.Referencers("/Script/Engine").size(), 6U);
	EXPECT_EQ(Session.Size("/Cave/Meshes/Rock"),
		static_cast<std::int64_t>(fs::file_size(OsPath("Plugins/Cave/Content/Meshes/Rock.uasset"))));
	EXPECT_EQ(Session.Size("/Game/Gone"), -1);
	EXPECT_EQ(Project.Mask(Session.Registry.GetPackageFile(FQVName("/CAVE/MESHES/rock_2"))),
		"<Project>/Plugins/Cave/Content/Meshes/Rock_2.uasset");
	EXPECT_EQ(Session.Registry.GetPackageFile(FQVName("/Game/Gone")), "");

	std::vector<FQVAssetData> Assets(5);
	Session.Registry.GetAssetsByPackageName(FQVName("/Cave/Maps/Hall"), Assets);
	ASSERT_EQ(Assets.size(), 1U);
	EXPECT_TRUE(Assets[0].IsValid() && Assets[0].OuterPath.IsNone());
	Session.Registry.GetAssetsByPackageName(FQVName("/Game/Gone"), Assets);
	EXPECT_TRUE(Assets.empty());
}

TEST_F(AssetRegistry, KnowsExternalActorsOldClassesAndTags)
{
	FPackageSpec Actor;
	Actor.PackageName = "/Game/__ExternalActors__/Maps/Hall/0/AB/X1";
	Actor.Imports = {{"/Script/CoreUObject", "Package", "/Game/Maps/Hall", {}}, // code and level
		{"/Script/CoreUObject", "Package", "/Script/Engine", {}},
		{"/Script/CoreUObject", "Class", "StaticMeshActor", FPackageIndex::Import(1)},
		{"/Script/Engine", "BlueprintGeneratedClass", "Lamp_C", FPackageIndex::Import(0)}};
	Actor.Assets = {{"/Game/Maps/Hall.Hall:PersistentLevel.Wall_3", "StaticMeshActor", {{"ActorLabel", "Wäll"}}},
		{"/Game/Maps/Hall.Hall:PersistentLevel.Wall_4", "Lamp_C", {{"ActorLabel", "Four"}}},
		{"/Game/Maps/Hall.Hall", "Unheard", {}},
		{"/Game/__ExternalActors__/Maps/Hall/0/AB/X1.X1", "/Script/Engine.World", {}}};
	Project.Write("Content/__ExternalActors__/Maps/Hall/0/AB/X1.uasset", Text(BuildPackage(Actor)));
	FRegistrySession Session(Project);

	std::vector<FQVAssetData> Assets;
	Session.Registry.GetAssetsByPackageName(FQVName(Actor.PackageName), Assets);
	FTexts Found;
	for (const FQVAssetData& Each : Assets)
	{
		Found.push_back(Each.OuterPath.ToString() + " " + Each.AssetName.ToString() + " " + Each.ClassPath.ToString());
	}
	EXPECT_EQ(Found, (FTexts{"/Game/Maps/Hall.Hall:PersistentLevel Wall_3 /Script/Engine.StaticMeshActor",
						 "/Game/Maps/Hall.Hall:PersistentLevel Wall_4 /Game/Maps/Hall.Lamp_C",
						 "/Game/Maps/Hall Hall Unheard", " X1 /Script/Engine.World"}));
	EXPECT_EQ(Assets[0].GetObjectPath(), Actor.Assets[0].ObjectPath);
	std::string Value;
	EXPECT_TRUE(Session.Registry.GetTagValue(Assets[0], "ACTORlabel", Value));
	EXPECT_EQ(Value, "Wäll");
	EXPECT_TRUE(Session.Registry.GetTagValue(Assets[1], "ActorLabel", Value));
	EXPECT_EQ(Value, "Four");
	EXPECT_FALSE(Session.Registry.GetTagValue(Assets[2], "ActorLabel", Value));
	EXPECT_FALSE(Session.Registry.GetTagValue({FQVName("/Game/Gone"), FQVName("Gone"), {}, {}}, "ActorLabel", Value));
}

TEST_F(AssetRegistry, AMapDependsOnWhatIsItsOwnByPlace)
{
	FWorldPackageSpec Map;
	Map.PackageName = "/Game/Maps/Hall";
	Map.SoftPackages = {"/Game/Rock"};
	Project.Write("Content/Maps/Hall.umap", Text(BuildWorldPackage(Map)));
	for (const char* Own : {"__ExternalActors__/Maps/Hall/0/AB/X1", "__ExternalActors__/maps/hall/F/CD/X2",
			 "__ExternalObjects__/Maps/Hall/1/EF/X3", "__ExternalActors__/Maps/Hallway/0/AB/X4",
			 "__ExternalActors__/X5", "__ExternalActors__/A/B/X6"})
	{
		FAssetPackageSpec Actor;
		Actor.PackageName = std::string("/Game/") + Own;
		Actor.ClassPath = "/Script/Engine.StaticMeshActor";
		Project.Write("Content/" + std::string(Own) + ".uasset", Text(BuildAssetPackage(Actor)));
	}
	const FRegistrySession Session(Project);
	EXPECT_EQ(Session.Dependencies("/game/maps/HALL", EQVDependencyQuery::Game),
		(FTexts{"soft game /Game/Rock", "soft game /Game/__ExternalActors__/Maps/Hall/0/AB/X1",
			bNamesHeedCase ? "soft game /Game/__ExternalActors__/maps/hall/F/CD/X2"
						   : "soft game /Game/__ExternalActors__/Maps/Hall/F/CD/X2",
			"soft game /Game/__ExternalObjects__/Maps/Hall/1/EF/X3"}));
	EXPECT_EQ(Session.Dependencies("/Game/__ExternalActors__/Maps/Hall/0/AB/X1"), FTexts{});
}

TEST_F(AssetRegistry, ListsWhatItCannotRead)
{
	QV_SKIP_ON_WINDOWS("the standard library makes no links here, and names that differ in case only are one");
	const std::string Whole = Project.Read(HallFile);
	Project.Write("Content/Cut.umap", Whole.substr(0, 900));
	Project.Write("Content/Newer.umap", std::string(Whole).replace(16, 4, "\x10\x27\0\0", 4));
	Project.Write("Content/Pointer.uasset", "version https://git-lfs.github.com/spec/v1\noid sha256:0\nsize 1\n");
	Project.Write("Content/Empty.uasset", "");
	Project.Write("Content/Text.uasset", "What is this?");
	Project.Write("Content/My Rock.uasset", Whole);
	Project.Write("Content/Rock.old.uasset", Whole);
	Project.Write("Content/Twin.umap", Whole);
	PutMesh("Content/Twin.uasset", "/Game/Twin");
	PutMesh("Content/twin.UASSET", "/Game/Twin");
	fs::create_symlink("nowhere.uasset", OsPath("Content/Dangling.uasset"));
	fs::create_symlink("/dev/null", OsPath("Content/Device.umap"));
	const FTexts Expected = {"<Project>/Content/Cut.umap is cut short: its header has 1889 bytes, there are 900",
		"<Project>/Content/Dangling.uasset cannot be examined: No such file or directory",
		"<Project>/Content/Device.umap is not a file",
		"<Project>/Content/Empty.uasset is empty, expected an Unreal package",
		"<Project>/Content/My Rock.uasset has \" \" in its name, which no package may have",
		"<Project>/Content/Newer.umap was saved by an engine newer than 5.8 (legacy version -8, file version 10000);"
		" known are versions up to 1018",
		"<Project>/Content/Pointer.uasset is a Git LFS pointer: fetch the file with git lfs pull",
		"<Project>/Content/Rock.old.uasset has \".\" in its name, which no package may have",
		"<Project>/Content/Text.uasset is not an Unreal package: begins with 0x74616857, expected 0x9E2A83C1",
		"<Project>/Content/Twin.umap is left out: there is another file for /Game/Twin",
		"<Project>/Content/twin.UASSET is left out: there is another file for /Game/Twin"};
	for (const char* Start : {"first", "from the cache"})
	{
		SCOPED_TRACE(Start);
		FRegistrySession Session(Project);
		EXPECT_EQ(Session.Unreadable(), Expected);
		EXPECT_EQ(Logged(EQVLogVerbosity::Warning), Expected);
		EXPECT_EQ(Session.Registry.GetPackageCount(), 7U);
		EXPECT_EQ(Session.Assets("/Game"), (FTexts{"/Game/Tools/Rig.Rig StaticMesh", "/Game/Twin.Twin StaticMesh"}));
		Session.Registry.StartScan();
		EXPECT_TRUE(Session.Registry.FinishScan());
		EXPECT_EQ(Logged(EQVLogVerbosity::Warning), FTexts{}); // said once
	}
	Project.Write("Content/Pointer.uasset", Project.Read("Content/Tools/Rig.uasset"));
	Project.Remove("Content/Twin.uasset");
	EXPECT_EQ(FRegistrySession(Project).Assets("/Game"),
		(FTexts{"/Game/Pointer.Rig StaticMesh", "/Game/Tools/Rig.Rig StaticMesh", "/Game/Twin.Hall World"}));
}

TEST_F(AssetRegistry, FollowsLinksOnceAndMountsARootOnce)
{
	QV_SKIP_ON_WINDOWS("the standard library makes no links here");
	fs::create_directory_symlink("..", OsPath("Content/Tools/up"));
	fs::create_directory_symlink(".", OsPath("Content/Tools/self"));
	fs::create_directory_symlink("Tools", OsPath("Content/Another"));
	Project.MakeFolder("Elsewhere/Deep");
	PutMesh("Elsewhere/Deep/Stone.uasset", "/Game/Deep/Stone");
	fs::create_directory_symlink("../Elsewhere", OsPath("Content/Second"));
	fs::create_directory_symlink("../Elsewhere", OsPath("Content/First"));
	fs::create_directory_symlink("../../Content", OsPath("Elsewhere/Deep/back"));
	PutPlugin("Plugins/Group/Cave");
	PutMesh("Plugins/Group/Cave/Content/Lost.uasset", "/Cave/Lost");
	FRegistrySession Session(Project);
	EXPECT_EQ(
		Session.Assets("/Game"), (FTexts{"/Game/First/Deep/Stone.Stone StaticMesh", "/Game/Tools/Rig.Rig StaticMesh"}));
	EXPECT_EQ(Session.Assets("/Cave").size(), 4U);
	EXPECT_EQ(Session.Unreadable(), FTexts{"<Project>/Plugins/Group/Cave/Content/ is left out: the packages of /Cave/ "
										   "lie in <Project>/Plugins/Cave/Content/"});
}

TEST_F(AssetRegistry, SeesWhatHasChanged)
{
	// met in another spelling before: the file has to be found all the same
	const FQVName Shout("/CAVE/MESHES/ROCK_9");
	PutMesh("Plugins/Cave/Content/Meshes/Rock_9.uasset", "/Cave/Meshes/Rock_9");
	FRegistrySession Session(Project);
	FAssetRegistry& Registry = Session.Registry;
	EXPECT_EQ(Project.Mask(Registry.GetPackageFile(Shout)), "<Project>/Plugins/Cave/Content/Meshes/Rock_9.uasset");
	const std::int64_t Old = Session.Size("/Cave/Meshes/Rock");

	PutMesh("Plugins/Cave/Content/Meshes/Rock.uasset", "/Cave/Meshes/Rock", 2000);
	PutMesh("Plugins/Cave/Content/Meshes/Rack.uasset", "/Cave/Meshes/Rack");
	PutMesh("Plugins/Cave/Content/Maps/Late.uasset", "/Cave/Maps/Late");
	Project.Remove("Plugins/Cave/Content/Meshes/Rock_2.uasset");
	Project.Remove("Content/Tools/Rig.uasset");
	Registry.ScanPathsSynchronous(Project.At("Plugins/Cave/Content/Meshes"));
	EXPECT_EQ(Session.Size("/Cave/Meshes/Rock"), Old + 1000);
	EXPECT_EQ(Session.Assets("/Cave"),
		(FTexts{"/Cave/Maps/Hall.Hall World", "/Cave/Maps/Part.Part World", "/Cave/Meshes/Rack.Rack StaticMesh",
			"/Cave/Meshes/Rock.Rock StaticMesh", "/CAVE/MESHES/ROCK_9.Rock_9 StaticMesh"}));
	EXPECT_EQ(Session.Assets("/Game").size(), 1U); // not looked at
	EXPECT_EQ(Session.Referencers("/Cave/Meshes/Rock_2"), FTexts{"/Cave/Maps/Hall"});
	EXPECT_EQ(Project.Mask(Registry.GetPackageFile(Shout)), "<Project>/Plugins/Cave/Content/Meshes/Rock_9.uasset");

	PutWorld(HallFile, {"/Cave/Maps/Hall", {}, {}, false});
	Project.Write("Plugins/Cave/Content/Maps/Broken.umap", "broken");
	Registry.ScanPathsSynchronous(Project.At("Plugins/../Plugins/Cave/"));
	EXPECT_EQ(Session.Referencers("/Cave/Meshes/Rock_2"), FTexts{});
	EXPECT_EQ(Session.Assets("/Cave/Maps").size(), 3U);
	EXPECT_EQ(Session.Unreadable().size(), 1U);
	Project.Remove("Plugins/Cave/Content/Maps");
	Registry.ScanPathsSynchronous(Project.At("Plugins/Cave/Content/Maps"));
	EXPECT_EQ(Session.Assets("/Cave/Maps"), FTexts{});
	EXPECT_EQ(Session.Unreadable(), FTexts{});
	Registry.ScanPathsSynchronous("/somewhere/else");
	EXPECT_EQ(Session.Assets("/Cave").size(), 3U);
	EXPECT_EQ(Session.Assets("/Game").size(), 1U);

	Registry.StartScan();
	EXPECT_TRUE(Registry.FinishScan());
	EXPECT_EQ(Session.Assets("/Game"), FTexts{});
}

TEST_F(AssetRegistry, ScansTheFilesThatItIsToldOf)
{
	FRegistrySession Session(Project);
	PutMesh("Plugins/Cave/Content/Meshes/Rack.uasset", "/Cave/Meshes/Rack");
	PutMesh("Content/Tools/Late.uasset", "/Game/Tools/Late");
	Project.Remove("Plugins/Cave/Content/Meshes/Rock_2.uasset");
	const auto Scan = [&](const std::vector<std::string>& Files) { Session.Registry.ScanModifiedAssetFiles(Files); };
	const auto Has = [&Session](const char* Package) { return Session.Size(Package) > 0; };
	Scan({});
	EXPECT_TRUE(!Has("/Cave/Meshes/Rack") && Has("/Cave/Meshes/Rock_2") && !Has("/Game/Tools/Late"));
	Scan({Project.At("Plugins/Cave/Content/Meshes/Rack.uasset"),
		Project.At("Plugins/Cave/Content/Meshes/Rock_2.uasset")});
	EXPECT_TRUE(Has("/Cave/Meshes/Rack") && !Has("/Cave/Meshes/Rock_2") && !Has("/Game/Tools/Late"));
	PutMesh("Plugins/Cave/Content/Maps/New.uasset", "/Cave/Maps/New");
	Scan({Project.At("Plugins/Cave/Content/Maps/New.uasset"), Project.At("Content/Tools/../Tools/Late.uasset")});
	EXPECT_TRUE(Has("/Cave/Maps/New") && Has("/Game/Tools/Late"));
	PutMesh("Content/Tools/Latest.uasset", "/Game/Tools/Latest");
	Scan({"X:/somewhere/Else.uasset", Project.At("Content/Tools/Latest.uasset")});
	EXPECT_TRUE(Has("/Cave/Maps/New") && Has("/Game/Tools/Latest")) << "files on two drives have no folder in common";
}

TEST_F(AssetRegistry, ScansInTheBackground)
{
	FStandaloneEngine Engine(Project.ProjectFile(), Project.EngineDir());
	FAssetRegistry& Registry = Engine.GetAssetRegistry();
	EXPECT_EQ(Engine.Interfaces.AssetRegistry, &Registry);
	EXPECT_FALSE(Registry.IsLoadingAssets());
	Registry.ScanPathsSynchronous(Project.At("Content"));
	EXPECT_EQ(Registry.GetPackageCount(), 1U);
	Registry.StartScan();
	Registry.StartScan();
	EXPECT_TRUE(Registry.IsLoadingAssets());
	EXPECT_EQ(Registry.GetPackageCount(), 1U);
	Engine.GetGameThread().RunUntil([&Registry] { return !Registry.IsLoadingAssets(); });
	EXPECT_EQ(Registry.GetPackageCount(), 6U);

	FInterrupt::Raise();
	Project.Remove("Content");
	Registry.StartScan();
	EXPECT_FALSE(Registry.FinishScan());
	EXPECT_FALSE(Registry.IsLoadingAssets());
	EXPECT_EQ(Registry.GetPackageCount(), 6U); // nothing was taken over
	FInterrupt::Reset();
	Registry.StartScan();
	Registry.ScanPathsSynchronous(Project.At("Plugins"));
	EXPECT_FALSE(Registry.IsLoadingAssets());
	EXPECT_EQ(Registry.GetPackageCount(), 5U);
	Registry.StartScan(); // and goes while it runs
}
