// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/LevelReader.h"
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Tests/Formats/TestContent.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace QVFormats;
using namespace QVTest;

namespace
{
/** `AmbientSound_0 AmbientSound` of what a package index stands for. */
std::string ActorText(const FPackageHeader& Header, FPackageIndex Index)
{
	if (Index.IsNull())
	{
		return "(empty)";
	}
	if (Index.IsImport())
	{
		return "elsewhere " + Header.Names.Text(Header.Imports[Index.ToImport()].ObjectName);
	}
	const FPackageExport& Export = Header.Exports[Index.ToExport()];
	return Header.Names.Text(Export.ObjectName) + " " + Header.ClassPathOf(Export);
}

/** All that is read of a world, in one text: actors by number only. */
std::string Summarize(const FPackageHeader& Header, const FMapWorld& Map)
{
	std::string Text =
		Header.Names.Text(Header.Exports[Map.World].ObjectName) + ": " + std::to_string(Map.Actors.size()) + " actors";
	Text += Map.bPartitioned ? ", partitioned" : "";
	Text += Map.bExternalActors ? ", external" : "";
	Text += Map.ScriptBlueprint.IsNull() ? "" : ", script of " + ActorText(Header, Map.ScriptActor);
	for (const FScriptFunction& Each : Map.ScriptFunctions)
	{
		Text += "; " + Header.Names.Text(Each.Name) + " " + std::to_string(Each.ScriptBytes) + "/" +
				std::to_string(Each.StoredBytes);
	}
	for (const std::string& Level : Map.StreamingLevels)
	{
		Text += "; streams " + Level;
	}
	return Text;
}

std::string ReadAll(FBytes File)
{
	const TResult<FPackageHeader> Header = ReadPackageHeader(File);
	const TResult<FMapWorld> Map = Header ? ReadMapWorld(*Header, File) : TResult<FMapWorld>(Header.Error());
	return Map ? Summarize(*Header, *Map) : Map.Error().Message;
}

FLevelPackageSpec FullLevel()
{
	FLevelPackageSpec Spec;
	Spec.PackageName = "/Cave/Maps/Hall";
	Spec.Actors = {{"PlayerStart_0", "/Script/Engine.PlayerStart"}, {},
		{"Gate_7", "/Cave/BP_Gate.BP_Gate_C", false, false, "Type", "EGate::Open"}};
	Spec.bScript = true;
	Spec.Functions = {{"ReceiveBeginPlay", 22}, {"Empty", 0}};
	Spec.StreamingLevels = {"/Cave/Maps/Lights", "/Cave/Maps/Sounds"};
	Spec.bPartitioned = true;
	Spec.bExternalActors = true;
	return Spec;
}
} // namespace

TEST(LevelReader, ReadsActorsScriptAndSublevels)
{
	const std::vector<std::byte> File = BuildLevelPackage(FullLevel());
	EXPECT_EQ(ReadAll(File), "Hall: 5 actors, partitioned, external, script of Hall_C_1 /Cave/Maps/Hall.Hall_C; "
							 "ReceiveBeginPlay 22/26; Empty "
							 "0/0; streams /Cave/Maps/Lights; streams /Cave/Maps/Sounds");
	const TResult<FPackageHeader> Header = ReadPackageHeader(File);
	const TResult<FMapWorld> Map = ReadMapWorld(*Header, File);
	std::vector<std::string> Actors;
	for (const FPackageIndex Index : Map->Actors)
	{
		Actors.push_back(ActorText(*Header, Index));
	}
	EXPECT_EQ(Actors, (std::vector<std::string>{"WorldSettings /Script/Engine.WorldSettings",
						  "PlayerStart_0 /Script/Engine.PlayerStart", "(empty)", "Gate_7 /Cave/BP_Gate.BP_Gate_C",
						  "Hall_C_1 /Cave/Maps/Hall.Hall_C"}));
	EXPECT_EQ(ReadAll(BuildLevelPackage({.PackageName = "/Cave/Maps/Bare"})), "Bare: 1 actors");
}

TEST(LevelReader, SaysWhatIsNoMap)
{
	const FClassPackageSpec NoMap{.PackageName = "/Cave/BP", .ParentPath = "/Script/Engine.Actor"};
	EXPECT_EQ(ReadAll(BuildClassPackage(NoMap)),
		"holds no world: a map that was moved leaves such a file behind, which only leads to the new one");
	EXPECT_EQ(ReadAll({}), ReadPackageHeader({}).Error().Message);
}

/** Or a small file could keep its reader busy for long, and fill the memory. */
TEST(LevelReader, TakesNothingTwice)
{
	const FActorSpec Wall{"Wall", "/Script/Engine.StaticMeshActor"};
	std::vector<std::byte> File = BuildLevelPackage({.PackageName = "/Cave/Maps/Hall", .Actors = {Wall, Wall, Wall}});
	const std::int32_t List[] = {4, 3, 4, 5, 6}; // how many, then the exports
	const FBytes Pattern = std::as_bytes(std::span(List));
	const auto Found = std::search(File.begin(), File.end(), Pattern.begin(), Pattern.end());
	ASSERT_NE(Found, File.end());
	Found[12] = Found[16] = std::byte{4};
	const TResult<FPackageHeader> Header = ReadPackageHeader(File);
	const TResult<FMapWorld> Map = ReadMapWorld(*Header, File);
	ASSERT_TRUE(Map) << Map.Error().Message;
	const FPackageIndex Expected[] = {FPackageIndex::Export(2), FPackageIndex::Export(3), {}, {}};
	EXPECT_TRUE(std::equal(Map->Actors.begin(), Map->Actors.end(), std::begin(Expected), std::end(Expected)));

	const auto Size = static_cast<std::int64_t>(File.size());
	const std::size_t SizeAt = Header->Exports[3].SerialOffsetAt - sizeof(Size);
	const std::int64_t SizeAndOffset[] = {Size, 0};
	std::memcpy(File.data() + SizeAt, SizeAndOffset, sizeof(SizeAndOffset));
	EXPECT_EQ(ReadAll(File), "is damaged: its objects claim more bytes than it has");
}

TEST(LevelReader, NamesAreNoLongerThanTheEngineTakes)
{
	FLevelPackageSpec Spec{.PackageName = "/Cave/Maps/Hall"};
	Spec.Actors = {{std::string(1023, 'x'), "/Script/Engine.Note"}};
	EXPECT_EQ(ReadAll(BuildLevelPackage(Spec)), "Hall: 2 actors");
	Spec.Actors[0].Name += "x";
	EXPECT_EQ(ReadAll(BuildLevelPackage(Spec)), "is damaged: it has a name of more than 1023 characters");
}

/** What is cut off anywhere is no map any more, even where nobody looks. */
TEST(LevelReader, RefusesEveryTruncation)
{
	const std::vector<std::byte> File = BuildLevelPackage(FullLevel());
	const std::string Whole = ReadAll(File);
	ForEachTruncation(File,
		[&](FBytes Cut)
		{
			const std::string Text = ReadAll(Cut);
			ASSERT_FALSE(Text.empty());
			ASSERT_NE(Text, Whole) << Cut.size();
		});
}

TEST(LevelReader, SurvivesWildFields)
{
	std::size_t Refused = 0;
	const std::vector<std::byte> File = BuildLevelPackage(FullLevel());
	const std::string Whole = ReadAll(File);
	ForEachWildField(File, [&](FBytes Bad) { Refused += ReadAll(Bad) != Whole ? 1U : 0U; });
	EXPECT_GT(Refused, File.size() / 4);
}

TEST(LevelReader, ReadsAHundredThousandActors)
{
	FLevelPackageSpec Spec{.PackageName = "/Cave/Maps/Crowd"};
	Spec.Actors.assign(100'000, {"Wall", "/Script/Engine.StaticMeshActor"});
	EXPECT_EQ(ReadAll(BuildLevelPackage(Spec)), "Crowd: 100001 actors");
}

TEST(LevelReader, ReadsMapsOfTheEditor)
{
	if (ContentFolder().empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	struct FCase
	{
		const char* File;
		const char* Expected;
	};
	static constexpr FCase Cases[] = {{"learning01/Content/Levels/MainMenu.umap", "MainMenu: 2 actors"},
		{"learning01/Content/Levels/LevelTwo.umap",
			"LevelTwo: 16 actors, script of LevelTwo_C_1 /Game/Levels/LevelTwo.LevelTwo_C"},
		{"learning01/Content/LevelOne.umap",
			"holds no world: a map that was moved leaves such a file behind, which only leads to the new one"},
		{"als/Content/ALSExtras/Levels/L_Als_Playground.umap",
			"L_Als_Playground: 4 actors, external, script of L_Als_Playground_C_0 "
			"/ALS/ALSExtras/Levels/L_Als_Playground.L_Als_Playground_C"},
		{"mini4wd/Content/Levels/CourseRunning.umap",
			"CourseRunning: 7 actors, script of CourseRunning_C_1 /Game/Levels/CourseRunning.CourseRunning_C; "
			"ReceiveBeginPlay 22/18; ExecuteUbergraph_CourseRunning 1723/2343"},
		{"a3/Content/ThirdPerson/Maps/ThirdPersonMap.umap",
			"ThirdPersonMap: 4 actors, partitioned, external, script of ThirdPersonMap_C_0 "
			"/Game/ThirdPerson/Maps/ThirdPersonMap.ThirdPersonMap_C; ReceiveBeginPlay 22/18; "
			"ExecuteUbergraph_ThirdPersonMap 169/177; NewEventDispatcher__DelegateSignature 5/5"},
		{"orbis-maps/Content/Maps/Persistent.umap",
			"Persistent: 3 actors, external, script of ThirdPersonExampleMap_C_0 /Game/Maps/Persistent.Persistent_C; "
			"streams "
			"/Game/Maps/Sounds; streams /Game/Maps/World; streams /Game/Maps/Gameplay"},
		{"a3/Saved/Cooked/Windows/MyProject/Content/ThirdPerson/Maps/YouWin.umap",
			"is a cooked map: only what the editor has saved can be read as a world"}};
	for (const FCase& Case : Cases)
	{
		EXPECT_EQ(ReadAll(ToBytes(ReadText(ContentFolder() / Case.File))), Case.Expected) << Case.File;
	}
}

namespace
{
/** The data of an export, with the numbers that differ from file to file as zeros. */
std::vector<std::byte> DataOf(
	FBytes File, std::string_view Object, const std::vector<std::pair<std::size_t, std::size_t>>& Numbers)
{
	const auto Header = ReadPackageHeader(File);
	for (const FPackageExport& Export : Header ? Header->Exports : std::vector<FPackageExport>())
	{
		if (Header->Names.Text(Export.ObjectName) == Object)
		{
			const FBytes Data = File.subspan(
				static_cast<std::size_t>(Export.SerialOffset), static_cast<std::size_t>(Export.SerialSize));
			std::vector<std::byte> Bytes(Data.begin(), Data.end());
			for (const auto& [Begin, Size] : Numbers)
			{
				std::fill_n(Bytes.begin() + static_cast<std::ptrdiff_t>(Begin), Size, std::byte{});
			}
			return Bytes;
		}
	}
	return {};
}
} // namespace

TEST(LevelWriter, AnEmptyModelIsWhatTheEditorWrites)
{
	if (ContentFolder().empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	const std::vector<std::byte> Real = ToBytes(ReadText(ContentFolder() / "orbis-maps/Content/Maps/Sounds.umap"));
	const std::vector<std::byte> Own = BuildLevelPackage({.PackageName = "/Cave/Maps/Cave", .bModel = true});
	const std::pair<std::size_t, std::size_t> NoneName{1, 4};
	const std::pair<std::size_t, std::size_t> Polys{111, 4};
	const std::pair<std::size_t, std::size_t> LightingGuid{147, 16};
	const std::vector<std::byte> Model = DataOf(Real, "Model_0", {NoneName, Polys, LightingGuid});
	EXPECT_EQ(Model.size(), 167U);
	EXPECT_EQ(DataOf(Own, "Model_0", {NoneName, Polys}), Model);
	EXPECT_EQ(DataOf(Own, "Polys_0", {NoneName}), DataOf(Real, "Polys_0", {NoneName}));
}
