// SPDX-License-Identifier: MIT
#include "Engine/QVEditor.h"
#include "Engine/QVWorld.h"
#include "Standalone/Engine/LevelScriptFile.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Formats/TestContent.h"
#include "Tests/Support/ToolkitTest.h"

#include <map>

using namespace QVTest;
namespace fs = std::filesystem;

namespace
{
using FCounts = std::map<std::string, int>;

/** Content folders of the editor's own files, opened as projects. */
struct FRealWorldTest : FToolkitTest
{
	std::string Open(const char* Content, const char* Map, bool bSublevels = true)
	{
		fs::copy(ContentFolder() / Content / "Content", QVStandalone::ToOsPath(Project.At("Content")),
			fs::copy_options::recursive | fs::copy_options::overwrite_existing);
		Engine.GetAssetRegistry().StartScan();
		Engine.GetAssetRegistry().FinishScan();
		const auto Status = Engine.OpenMap(Map, {bSublevels});
		return Status ? std::string() : Status.Error().Message;
	}
	const IQVWorld& World() const { return *Engine.Interfaces.Editor->GetOpenWorld(); }

	/** The class of the level's script, and its functions with their bytes. */
	std::string Script() const
	{
		const IQVClass& Class = *World().GetPersistentLevel()->GetLevelScriptActor()->GetClass();
		std::vector<FQVFunction> Functions;
		Class.GetFunctions(Functions);
		std::string Text = Class.GetName();
		for (const FQVFunction& Each : Functions)
		{
			Text += QVPrintf(" %s %d", Each.Name, Each.ScriptBytes);
		}
		return Text;
	}
	/** How many actors of each class the persistent level has. */
	FCounts Classes() const
	{
		std::vector<const IQVActor*> Actors;
		World().GetPersistentLevel()->GetActors(Actors);
		FCounts Counts;
		for (const IQVActor* Actor : Actors)
		{
			++Counts[Actor != nullptr ? Actor->GetClass()->GetName() : "(empty)"];
		}
		return Counts;
	}
	std::size_t Count(const char* ClassPath) const
	{
		std::vector<const IQVActor*> Found;
		World().GetAllActorsOfClass(*Engine.Interfaces.Classes->FindClass(ClassPath), Found);
		return Found.size();
	}
};
} // namespace

#define QVMAP_NEEDS_CONTENT()                                                                                          \
	if (ContentFolder().empty())                                                                                       \
	{                                                                                                                  \
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";                                                               \
	}

TEST_F(FRealWorldTest, OrbisHasActorsInFilesOfTheirOwnAndInSublevels)
{
	QVMAP_NEEDS_CONTENT();
	ASSERT_EQ(Open("orbis-maps", "/Game/Maps/Persistent"), "");
	const FCounts Expected = {{"Brush", 1}, {"ExponentialHeightFog", 1}, {"Persistent_C", 1}, {"PlayerStart", 1},
		{"PostProcessVolume", 1}, {"SkyAtmosphere", 1}, {"SkyLight", 1}, {"StaticMeshActor", 11},
		{"VolumetricCloud", 1}, {"WorldSettings", 1}};
	EXPECT_EQ(Classes(), Expected);
	EXPECT_FALSE(World().HasWorldPartition());
	EXPECT_EQ(Count("/Script/Engine.PlayerStart"), 1U);
	EXPECT_EQ(Count("/Script/Engine.StaticMeshActor"), 42U);
	std::vector<FQVStreamingLevel> Levels;
	World().GetStreamingLevels(Levels);
	ASSERT_EQ(Levels.size(), 3U);
	EXPECT_TRUE(Levels[0].bLoaded && Levels[1].bLoaded && Levels[2].bLoaded);
	ASSERT_EQ(Open("orbis-maps", "/Game/Maps/Persistent", false), "");
	EXPECT_EQ(Count("/Script/Engine.StaticMeshActor"), 11U);
}

TEST_F(FRealWorldTest, WorldPartitionIsSeenAndItsActorsAreThere)
{
	QVMAP_NEEDS_CONTENT();
	ASSERT_EQ(Open("endless", "/Game/Game/Maps/MainMap"), "");
	const FCounts Expected = {{"Brush", 1}, {"DirectionalLight", 1}, {"ExponentialHeightFog", 1}, {"PlayerStart", 1},
		{"SkyAtmosphere", 1}, {"SkyLight", 1}, {"StaticMeshActor", 1}, {"VolumetricCloud", 1}, {"WorldDataLayers", 1},
		{"WorldPartitionHLOD", 64}, {"WorldPartitionMiniMap", 1}, {"WorldSettings", 1}};
	EXPECT_EQ(Classes(), Expected);
	EXPECT_TRUE(World().HasWorldPartition());
	ASSERT_EQ(Open("a3", "/Game/ThirdPerson/Maps/ThirdPersonMap"), "");
	EXPECT_TRUE(World().HasWorldPartition());
	EXPECT_EQ(Count("/Script/Engine.PlayerStart"), 2U);
	EXPECT_EQ(Classes().at("BP_Shade_C"), 32);
	EXPECT_EQ(Classes().at("WorldDataLayers"), 1);
}

/** No level blueprint, one without nodes, one with nothing compiled, and two with code. */
TEST_F(FRealWorldTest, LevelBlueprintsAreJudgedByTheirBytes)
{
	QVMAP_NEEDS_CONTENT();
	ASSERT_EQ(Open("learning01", "/Game/Levels/MainMenu"), "");
	EXPECT_EQ(World().GetPersistentLevel()->GetLevelScriptActor(), nullptr);
	ASSERT_EQ(Open("learning01", "/Game/Levels/LevelTwo"), "");
	EXPECT_EQ(Script(), "LevelTwo_C");
	ASSERT_EQ(Open("als", "/Game/ALSExtras/Levels/L_Als_Playground"), "");
	EXPECT_EQ(Script(), "L_Als_Playground_C");
	ASSERT_EQ(Open("mini4wd", "/Game/Levels/GAT2023"), "");
	EXPECT_EQ(Script(), "GAT2023_C ReceiveBeginPlay 22 ExecuteUbergraph_GAT2023 15");
	ASSERT_EQ(Open("a3", "/Game/ThirdPerson/Maps/ThirdPersonMap"), "");
	EXPECT_EQ(Script(), "ThirdPersonMap_C ReceiveBeginPlay 22 ExecuteUbergraph_ThirdPersonMap 169 "
						"NewEventDispatcher__DelegateSignature "
						"5");
}

TEST_F(FRealWorldTest, ClassesOfBlueprintsAreFollowedToTheEngine)
{
	QVMAP_NEEDS_CONTENT();
	ASSERT_EQ(Open("mini4wd", "/Game/Levels/GAT2023"), "");
	const FCounts Expected = {{"BP_Roller16mm_C", 4}, {"BP_SimpleVehicle_C", 1}, {"Brush", 1}, {"DirectionalLight", 1},
		{"GAT2023_C", 2}, {"HitTimer_C", 6}, {"Landscape", 1}, {"SkySphere_C", 1}, {"StaticMeshActor", 19},
		{"TriggerVolume", 7}, {"WorldSettings", 1}};
	EXPECT_EQ(Classes(), Expected); // the second GAT2023_C is a blueprint of the same name
	const IQVClass* Vehicle = nullptr;
	std::vector<const IQVActor*> Actors;
	World().GetPersistentLevel()->GetActors(Actors);
	for (const IQVActor* Actor : Actors)
	{
		const IQVClass& Class = *Actor->GetClass();
		Vehicle = Class.GetName() == "BP_SimpleVehicle_C" ? &Class : Vehicle;
		EXPECT_EQ(Class.IsChildOf("/Script/Engine.LevelScriptActor"), Class.GetPackageName() == "/Game/Levels/GAT2023")
			<< Class.GetPackageName();
	}
	EXPECT_TRUE(Vehicle != nullptr && Vehicle->IsChildOf("/Script/Engine.Actor"));
}

TEST(RealLevelScript, IsFoundInTheEditorsOwnFiles)
{
	QVMAP_NEEDS_CONTENT();
	const auto Read = [](const std::string& Map)
	{
		const fs::path File = ContentFolder() / "a3/Content/ThirdPerson/Maps" / (Map + ".umap");
		return QVStandalone::FLevelScriptFile::Read("/Game/ThirdPerson/Maps/" + Map, QVStandalone::FromOsPath(File));
	};
	const auto Menu = Read("MainMenu");
	ASSERT_TRUE(Menu);
	EXPECT_EQ(Menu->GetBlueprintPath(), "/Game/ThirdPerson/Maps/MainMenu.MainMenu:PersistentLevel.MainMenu");
	EXPECT_EQ(Menu->GetFunctions(), (std::vector<std::string>{"ReceiveBeginPlay", "ExecuteUbergraph_MainMenu"}));
	const std::vector<std::size_t> Graphs = Menu->GetGraphs();
	ASSERT_EQ(Graphs.size(), 1U);
	EXPECT_EQ(Menu->GetName(Graphs[0]), "EventGraph");
	EXPECT_GT(Menu->GetNodes(Graphs[0]).size(), 2U);
	const auto Arena = Read("ThirdPersonMap");
	ASSERT_TRUE(Arena);
	EXPECT_EQ(Arena->GetGraphs().size(), 2U);
	const std::vector<std::string> Functions = Arena->GetFunctions();
	EXPECT_EQ(std::count(Functions.begin(), Functions.end(), "NewEventDispatcher__DelegateSignature"), 1);
}
