// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Standalone/Formats/Package/RedirectorPackage.h"
#include "Tests/Support/ContentProject.h"

using namespace QVTest;
using namespace QVFormats;

namespace
{
using FTexts = std::vector<std::string>;

struct FWorldTest : FContentTest
{
	FWorldTest() { Project.AddMod("Cave", {}); }

	void Put(const std::string& Path, const std::vector<std::byte>& Bytes)
	{
		Project.Write(Path, {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	}
	void PutLevel(const FLevelPackageSpec& Spec) { Put(FileOf(Spec.PackageName, ".umap"), BuildLevelPackage(Spec)); }
	void PutClass(const FClassPackageSpec& Spec) { Put(FileOf(Spec.PackageName), BuildClassPackage(Spec)); }
	void PutExternal(const std::string& Package, const std::string& Map, const FActorSpec& Actor)
	{
		Put(FileOf(Package), BuildExternalActorPackage({Package, Map, Actor}));
	}

	/** Empty, or why the map could not be opened. */
	std::string Open(const std::string& Map, bool bSublevels = true)
	{
		Scan();
		const FStatus Status = Engine.OpenMap(Map, {bSublevels});
		return Status ? std::string() : Project.Mask(Status.Error().Message);
	}
	const IQVWorld& World() const { return *Engine.Interfaces.Editor->GetOpenWorld(); }

	/** `PlayerStart_0 /Script/Engine.PlayerStart`, with "editor only". */
	static std::string Describe(const IQVActor* Actor)
	{
		return Actor == nullptr ? "(empty)"
								: Actor->GetName() + " " + Actor->GetClass()->GetPackageName() + "." +
									  Actor->GetClass()->GetName() + (Actor->IsEditorOnly() ? " editor only" : "");
	}
	FTexts Actors() const
	{
		std::vector<const IQVActor*> Found;
		World().GetPersistentLevel()->GetActors(Found);
		FTexts Texts;
		std::transform(Found.begin(), Found.end(), std::back_inserter(Texts), Describe);
		return Texts;
	}
	FTexts ActorsOf(const std::string& ClassPath)
	{
		std::vector<const IQVActor*> Found;
		World().GetAllActorsOfClass(*Engine.Interfaces.Classes->FindClass(ClassPath), Found);
		FTexts Texts;
		std::transform(Found.begin(), Found.end(), std::back_inserter(Texts), Describe);
		return Texts;
	}
	FTexts Sublevels() const
	{
		std::vector<FQVStreamingLevel> Levels;
		World().GetStreamingLevels(Levels);
		FTexts Texts;
		for (const FQVStreamingLevel& Level : Levels)
		{
			Texts.push_back(Level.WorldAssetPackageName + (Level.bLoaded ? " loaded" : ""));
		}
		return Texts;
	}
	FTexts Warnings()
	{
		FTexts Texts;
		for (const FLogLine& Line : Recording.Take())
		{
			if (Line.Verbosity == EQVLogVerbosity::Warning)
			{
				Texts.push_back(Project.Mask(Line.Text));
			}
		}
		return Texts;
	}
};

constexpr const char* StartClass = "/Script/Engine.PlayerStart";
constexpr const char* TriggerClass = "/Script/QUARVEL.MapCheckpointTrigger";
const std::string Settings = "WorldSettings /Script/Engine.WorldSettings";
} // namespace

TEST_F(FWorldTest, TellsOfEachMapThatIsOpenedAndOfNoOther)
{
	PutLevel({.PackageName = "/Cave/Maps/Hall"});
	std::string Opened;
	FQVSubscription Subscription =
		Engine.Interfaces.Editor->OnMapOpened([&] { Opened += World().GetPackageName() + " "; });
	EXPECT_EQ(Open("/Cave/Maps/Hall"), "");
	EXPECT_NE(Open("/Cave/Maps/Gone"), "");
	EXPECT_EQ(Open("/Cave/Maps/Hall"), "");
	EXPECT_EQ(Opened, "/Cave/Maps/Hall /Cave/Maps/Hall ");
	Subscription.reset();
	EXPECT_EQ(Open("/Cave/Maps/Hall"), "");
	EXPECT_EQ(Opened, "/Cave/Maps/Hall /Cave/Maps/Hall ");
}

TEST_F(FWorldTest, HasTheMapsActorsInOrder)
{
	PutLevel({.PackageName = "/Cave/Maps/Hall",
		.Actors = {{"Brush_0", "/Script/Engine.Brush", true}, {"Group_0", "/Script/Engine.GroupActor", true}, {},
			{"Note_0", "/Script/Engine.Note", false, true}, {"Start_0", StartClass}},
		.bScript = true,
		.Functions = {{"ReceiveBeginPlay", 22}, {"Idle", 0}}});
	ASSERT_EQ(Open("/cave/maps/HALL"), "");
	EXPECT_EQ(World().GetName(), "Hall");
	EXPECT_EQ(World().GetPackageName(), "/Cave/Maps/Hall");
	EXPECT_EQ(World().GetPathName(), "/Cave/Maps/Hall.Hall");
	EXPECT_FALSE(World().IsTempPackage() || World().IsPackageDirty() || World().HasWorldPartition());
	EXPECT_EQ(
		Actors(), (FTexts{Settings, "Brush_0 /Script/Engine.Brush", "Group_0 /Script/Engine.GroupActor editor only",
					  "(empty)", "Note_0 /Script/Engine.Note editor only", "Start_0 /Script/Engine.PlayerStart",
					  "Hall_C_1 /Cave/Maps/Hall.Hall_C"}));
	const IQVActor* Script = World().GetPersistentLevel()->GetLevelScriptActor();
	ASSERT_NE(Script, nullptr);
	EXPECT_TRUE(Script->GetClass()->IsChildOf("/Script/Engine.LevelScriptActor"));
	EXPECT_FALSE(Script->GetClass()->IsChildOf(StartClass));
	std::vector<FQVFunction> Functions;
	Script->GetClass()->GetFunctions(Functions);
	ASSERT_EQ(Functions.size(), 2U);
	EXPECT_EQ(Functions[0].Name, "ReceiveBeginPlay");
	EXPECT_EQ(Functions[0].ScriptBytes, 22);
	EXPECT_EQ(Functions[1].ScriptBytes, 0);
}

/** Parents are followed from file to file, and over the redirector of a blueprint that was moved. */
TEST_F(FWorldTest, KnowsWhatAClassIsMadeFrom)
{
	PutClass({"/Cave/BP_Start", StartClass, {}, {}});
	PutClass({"/Cave/BP_MyStart", "/Cave/BP_Start.BP_Start_C", {}, {}});
	PutRedirector("/Cave/BP_Old", "/Cave/BP_MyStart", "Blueprint");
	PutClass({"/Cave/BP_Loop", "/Cave/BP_Pool.BP_Pool_C", {}, {}});
	PutClass({"/Cave/BP_Pool", "/Cave/BP_Loop.BP_Loop_C", {}, {}});
	PutLevel({.PackageName = "/Cave/Maps/Hall",
		.Actors = {{"A", "/Cave/BP_MyStart.BP_MyStart_C"}, {"B", "/Cave/BP_Old.BP_Old_C"},
			{"C", "/Cave/BP_Loop.BP_Loop_C"}, {"D", "/Cave/BP_Gone.BP_Gone_C"}, {"E", "/Script/Other.OwnStart"}}});
	ASSERT_EQ(Open("/Cave/Maps/Hall"), "");
	EXPECT_EQ(ActorsOf(StartClass), (FTexts{"A /Cave/BP_MyStart.BP_MyStart_C", "B /Cave/BP_MyStart.BP_MyStart_C"}));
	EXPECT_EQ(Actors()[3], "C /Cave/BP_Loop.BP_Loop_C");
	EXPECT_EQ(Actors()[4], "D /Cave/BP_Gone.BP_Gone_C");
	IQVClasses& Classes = *Engine.Interfaces.Classes;
	EXPECT_NE(Classes.LoadClass("/Cave/BP_Start.BP_Start_C"), nullptr);
	EXPECT_EQ(Classes.LoadClass("/Cave/BP_Nowhere.BP_Nowhere_C"), nullptr);
	EXPECT_EQ(Classes.FindClass("/Script/Other.OwnStart"), nullptr);
	EXPECT_NE(Classes.FindClass("/script/engine.playerstart"), nullptr);
}

TEST_F(FWorldTest, TakesInExternalActorsThatAreItsOwn)
{
	const std::string Folder = "/Cave/__ExternalActors__/Maps/Hall/0/AB/";
	PutLevel({.PackageName = "/Cave/Maps/Hall", .Actors = {{"In", StartClass}}, .bExternalActors = true});
	PutLevel({.PackageName = "/Cave/Maps/Plain"});
	PutExternal(Folder + "One", "/Cave/Maps/Hall", {"Out", StartClass, true});
	PutExternal(Folder + "Foreign", "/Cave/Maps/Other", {"Foreign", StartClass});
	PutExternal("/Cave/__ExternalActors__/Maps/Plain/0/AB/Left", "/Cave/Maps/Plain", {"Left", StartClass});
	PutExternal("/Cave/__ExternalActors__/Maps/Gone/0/AB/Orphan", "/Cave/Maps/Gone", {"Orphan", StartClass});
	ASSERT_EQ(Open("/Cave/Maps/Hall"), "");
	EXPECT_EQ(
		Actors(), (FTexts{Settings, "In /Script/Engine.PlayerStart", "Out /Script/Engine.PlayerStart editor only"}));
	ASSERT_EQ(Open("/Cave/Maps/Plain"), "");
	EXPECT_EQ(Actors(), FTexts{Settings});
}

TEST_F(FWorldTest, LoadsSublevelsWhoseFilesCanBeRead)
{
	PutLevel({.PackageName = "/Cave/Maps/Hall",
		.StreamingLevels = {"/Cave/Maps/Far", "/Cave/Maps/Gone", "/Cave/Maps/Torn", "/Cave/Maps/Far"}});
	PutLevel({.PackageName = "/Cave/Maps/Far", .Actors = {{"Far_0", StartClass}}});
	Project.Write("Plugins/Cave/Content/Maps/Torn.umap", "no package at all");
	ASSERT_EQ(Open("/Cave/Maps/Hall"), "");
	EXPECT_EQ(
		Sublevels(), (FTexts{"/Cave/Maps/Far loaded", "/Cave/Maps/Gone", "/Cave/Maps/Torn", "/Cave/Maps/Far loaded"}));
	EXPECT_EQ(ActorsOf(StartClass), FTexts{"Far_0 /Script/Engine.PlayerStart"});
	EXPECT_EQ(Actors(), FTexts{Settings});
	const FTexts Lines = Warnings();
	ASSERT_EQ(Lines.size(), 3U); // the scan has met the torn one, too
	EXPECT_EQ(
		Lines[1], "A sublevel of /Cave/Maps/Hall is not loaded: /Cave/Maps/Gone has no file: there is no such map");
	EXPECT_TRUE(Lines[2].starts_with("A sublevel of /Cave/Maps/Hall is not loaded: <Project>/Plugins/Cave/Content/Maps/"
									 "Torn.umap is "))
		<< Lines[2];
	ASSERT_EQ(Open("/Cave/Maps/Hall", false), "");
	EXPECT_EQ(Sublevels()[0], "/Cave/Maps/Far");
	EXPECT_EQ(ActorsOf(StartClass), FTexts{});
}

/** A property at its default is not saved: what that is may be told by a blueprint, or by another actor. */
TEST_F(FWorldTest, TellsEnumPropertiesAsFarAsFilesDo)
{
	PutClass({"/Cave/BP_Start", TriggerClass, "Type", "ECheckpointType::Start"});
	PutClass({"/Cave/BP_Plain", TriggerClass, {}, {}});
	const auto Ask = [this](const std::vector<FActorSpec>& Specs)
	{
		PutLevel({.PackageName = "/Cave/Maps/Hall", .Actors = Specs});
		EXPECT_EQ(Open("/Cave/Maps/Hall"), "");
		std::vector<const IQVActor*> Found;
		World().GetAllActorsOfClass(*Engine.Interfaces.Classes->FindClass(TriggerClass), Found);
		std::string Text;
		for (const IQVActor* Actor : Found)
		{
			const std::optional<bool> bStart = Actor->IsEnumPropertySetTo("Type", "Start");
			Text += !bStart ? "?" : *bStart ? "1" : "0";
		}
		return Text;
	};
	const FActorSpec Start{"S", TriggerClass, false, false, "Type", "ECheckpointType::Start"};
	const FActorSpec Classic{"C", TriggerClass, false, false, "Type", "ECheckpointType::Classic"};
	const FActorSpec Absent{"A", TriggerClass};
	const FActorSpec ByClass{"B", "/Cave/BP_Start.BP_Start_C"};
	const FActorSpec ByClassNot{"N", "/Cave/BP_Start.BP_Start_C", false, false, "Type", "ECheckpointType::Classic"};
	const FActorSpec Plain{"P", "/Cave/BP_Plain.BP_Plain_C"};
	EXPECT_EQ(Ask({Start, Classic}), "10");
	EXPECT_EQ(Ask({Absent, Classic, Plain}), "?0?");
	EXPECT_EQ(Ask({Absent, Start, Plain}), "010");
	EXPECT_EQ(Ask({ByClass, ByClassNot, Absent}), "10?");
	const IQVClass* Class = Engine.Interfaces.Classes->LoadClass("/Cave/BP_Plain.BP_Plain_C");
	EXPECT_TRUE(Class->HasEnumProperty("type", "START"));
	EXPECT_FALSE(Class->HasEnumProperty("Type", "Finish"));
}

TEST_F(FWorldTest, SaysWhyAMapCannotBeOpened)
{
	EXPECT_EQ(Open("/Cave/Maps/Hall"), "/Cave/Maps/Hall has no file: there is no such map");
	PutMesh("/Cave/Rock");
	EXPECT_EQ(Open("/Cave/Rock"), "<Project>/Plugins/Cave/Content/Rock.uasset holds no world: a map that was moved "
								  "leaves such a file behind, which "
								  "only leads to the new one");
	PutLevel({.PackageName = "/Cave/Maps/Hall"});
	ASSERT_EQ(Open("/Cave/Maps/Hall"), "");
	const std::string Whole = Project.Read("Plugins/Cave/Content/Maps/Hall.umap");
	Project.Write("Plugins/Cave/Content/Maps/Hall.umap", Whole.substr(0, Whole.size() - 8));
	EXPECT_EQ(Open("/Cave/Maps/Hall"),
		"<Project>/Plugins/Cave/Content/Maps/Hall.umap is cut short or damaged: it does not end as a package does");
	EXPECT_EQ(Engine.Interfaces.Editor->GetOpenWorld(), nullptr);
}

TEST_F(FWorldTest, LeavesBlueprintsToTheEditor)
{
	PutLevel({.PackageName = "/Cave/Maps/Hall", .bScript = true});
	PutLevel({.PackageName = "/Cave/Maps/Bare"});
	const auto Refusal = [this](const char* Map)
	{
		EXPECT_EQ(Open(Map), "");
		FQVText Reason;
		EXPECT_EQ(Engine.Interfaces.Editor->GetLevelScriptBlueprint(*World().GetPersistentLevel(), Reason), nullptr);
		return Reason.ToString();
	};
	EXPECT_EQ(Refusal("/Cave/Maps/Bare"), "");
	EXPECT_EQ(Refusal("/Cave/Maps/Hall"),
		"Only Unreal Editor can take the code out of a Level Blueprint: it has to be compiled again. Open "
		"/Cave/Maps/Hall "
		"there, choose Blueprints > Open Level Blueprint, delete all nodes of every graph, press Compile and save the "
		"map.");
	EXPECT_TRUE(Engine.Interfaces.Editor->SaveDirtyPackages());
}
