// SPDX-License-Identifier: MIT
#include "Engine/QVLevelEditor.h"

#include "Standalone/Formats/Package/LevelPackages.h"
#include "Standalone/Formats/Package/PackageHeader.h"
#include "Tests/Formats/TestContent.h"
#include "Tests/Support/ContentProject.h"
#include "Tests/Support/SmallDisk.h"
#include "Tests/Support/TestPrograms.h"

using namespace QVTest;
using namespace QVFormats;

namespace
{
using FTexts = std::vector<std::string>;

struct FLevelEditorTest : FContentTest
{
	FLevelEditorTest() { Project.AddMod("Cave", {}); }

	void PutLevel(const FLevelPackageSpec& Spec)
	{
		const std::vector<std::byte> Bytes = BuildLevelPackage(Spec);
		Project.Write(FileOf(Spec.PackageName, ".umap"), {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	}
	static IQVLevelEditor& LevelEditor() { return *FQVEngine::Get().Editor->GetLevelEditor(); }
	static const IQVWorld* World() { return FQVEngine::Get().Editor->GetOpenWorld(); }
	static std::string OpenMap() { return World() != nullptr ? World()->GetPathName() : "nothing"; }
	FTexts Actors() const
	{
		std::vector<const IQVActor*> Found;
		World()->GetPersistentLevel()->GetActors(Found);
		FTexts Texts;
		for (const IQVActor* Actor : Found)
		{
			Texts.push_back(Actor->GetName() + " " + Actor->GetClass()->GetName());
		}
		return Texts;
	}
	/** The engine's errors since the last call. */
	std::string Errors()
	{
		std::string Text;
		for (const FLogLine& Line : Recording.Take())
		{
			Text += Line.Verbosity == EQVLogVerbosity::Error ? Line.Text + "\n" : "";
		}
		return Project.Mask(Text);
	}
};
constexpr const char* CaveFile = "Plugins/Cave/Content/Maps/Cave.umap";
} // namespace

TEST_F(FLevelEditorTest, MakesAnEmptyLevel)
{
	FTexts Told;
	const FQVSubscription Saved = Engine.Interfaces.Packages->OnPackageSaved(
		[&](FQVName Package) { Told.push_back("saved " + Package.ToString()); });
	const FQVSubscription Opened =
		Engine.Interfaces.Editor->OnMapOpened([&] { Told.push_back("opened " + OpenMap()); });
	EXPECT_TRUE(LevelEditor().NewLevel("/Cave/Maps/Cave", false));
	EXPECT_EQ(Told, (FTexts{"saved /Cave/Maps/Cave", "opened /Cave/Maps/Cave.Cave"}));
	EXPECT_EQ(Actors(), FTexts{"WorldSettings WorldSettings"});
	EXPECT_FALSE(World()->HasWorldPartition());
	std::vector<FQVAssetData> Assets;
	Engine.Interfaces.AssetRegistry->GetAssets({"/Cave", {}}, Assets);
	ASSERT_EQ(Assets.size(), 1U) << "the registry has heard of it";
	EXPECT_EQ(
		Assets[0].GetObjectPath() + " " + Assets[0].ClassPath.ToString(), "/Cave/Maps/Cave.Cave /Script/Engine.World");
	EXPECT_EQ(Errors(), "");
}

TEST_F(FLevelEditorTest, CopiesATemplateUnderTheNewName)
{
	const FLevelPackageSpec Template = {.PackageName = "/QUARVEL/Templates/Start",
		.Actors = {{"PlayerStart_0", "/Script/Engine.PlayerStart"}, {"Start_Wall", "/Script/Engine.StaticMeshActor"}},
		.bScript = true,
		.Functions = {{"ReceiveBeginPlay", 30}},
		.Graphs = {"EventGraph"},
		.StreamingLevels = {"/QUARVEL/Templates/Start_Lights"},
		.Meshes = {"/QUARVEL/Meshes/Rock"}};
	PutLevel(Template);
	const std::string Before = Project.Read(FileOf(Template.PackageName, ".umap"));
	ASSERT_TRUE(LevelEditor().NewLevelFromTemplate("/Cave/Maps/Cave", Template.PackageName)) << Errors();
	EXPECT_EQ(OpenMap(), "/Cave/Maps/Cave.Cave");
	EXPECT_EQ(Actors(), (FTexts{"WorldSettings WorldSettings", "PlayerStart_0 PlayerStart",
							"Start_Wall StaticMeshActor", "Start_C_1 Cave_C"}));
	std::vector<FQVStreamingLevel> Levels;
	World()->GetStreamingLevels(Levels);
	ASSERT_EQ(Levels.size(), 1U);
	EXPECT_EQ(Levels[0].WorldAssetPackageName, "/QUARVEL/Templates/Start_Lights") << "of another map";

	const std::vector<std::byte> Bytes = ToBytes(Project.Read(CaveFile));
	const auto Header = ReadPackageHeader(Bytes);
	ASSERT_TRUE(Header);
	FTexts Listed;
	for (const FPackageAsset& Asset : Header->Registry.Assets)
	{
		Listed.push_back(Asset.ObjectPath.ToUtf8());
		for (const FPackageTag& Tag : Header->Registry.TagsOf(Asset))
		{
			Listed.push_back(Tag.Key.ToUtf8() + "=" + Tag.Value.ToUtf8());
		}
	}
	EXPECT_EQ(Listed, (FTexts{"Cave_C", "Cave", "PrimaryAssetName=/Cave/Maps/Cave", "PrimaryAssetType=Map"}));
	EXPECT_EQ(Project.Read(FileOf(Template.PackageName, ".umap")), Before);
	EXPECT_EQ(Errors(), "");
}

TEST_F(FLevelEditorTest, RefusesWhatCannotBecomeAMap)
{
	PutLevel({.PackageName = "/QUARVEL/T/Whole"});
	const std::string Whole = Project.Read("Plugins/QUARVEL/Content/T/Whole.umap");
	Project.Write("Plugins/QUARVEL/Content/T/Cut.umap", Whole.substr(0, Whole.size() / 2));
	Project.Write("Plugins/QUARVEL/Content/T/Empty.umap", "");
	PutRedirector("/QUARVEL/T/Moved", "/QUARVEL/T/Whole");
	PutMesh("/QUARVEL/T/Mesh");
	PutLevel({.PackageName = "/QUARVEL/T/Split", .bExternalActors = true});
	Project.MakeFolder("Plugins/QUARVEL/Content/__ExternalActors__/T/Split");
	PutLevel({.PackageName = "/Cave/Maps/There"});
	PutLevel({.PackageName = "/Cave/Open"});
	ASSERT_TRUE(LevelEditor().LoadLevel("/Cave/Open"));
	const struct
	{
		const char* Package;
		const char* Template;
		std::string Error;
	} Cases[] = {
		{"/Cave/Maps/Cave", "/QUARVEL/T/Gone", "/Cave/Maps/Cave could not be made: there is no /QUARVEL/T/Gone"},
		{"/Cave/Maps/Cave", "/QUARVEL/T/Cut", "the template <Project>/Plugins/QUARVEL/Content/T/Cut.umap "},
		{"/Cave/Maps/Cave", "/QUARVEL/T/Empty", "the template <Project>/Plugins/QUARVEL/Content/T/Empty.umap "},
		{"/Cave/Maps/Cave", "/QUARVEL/T/Moved", "the template <Project>/Plugins/QUARVEL/Content/T/Moved.uasset "},
		{"/Cave/Maps/Cave", "/QUARVEL/T/Mesh", "the template <Project>/Plugins/QUARVEL/Content/T/Mesh.uasset "},
		{"/Cave/Maps/Cave", "/QUARVEL/T/Split",
			"the actors of the template /QUARVEL/T/Split lie in files of their own, which would not come along: make "
			"the map in the editor, or turn off One File Per Actor in the template"},
		{"/Cave/Maps/There", "/QUARVEL/T/Whole", "<Project>/Plugins/Cave/Content/Maps/There.umap is there already"},
		{"/Nowhere/Maps/Cave", "/QUARVEL/T/Whole", "'/Nowhere/Maps/Cave' cannot be a package's name"},
		{"/Cave/Maps/a b", "/QUARVEL/T/Whole", "'/Cave/Maps/a b' cannot be a package's name"},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_FALSE(LevelEditor().NewLevelFromTemplate(Case.Package, Case.Template)) << Case.Template;
		const std::string Told = Errors();
		EXPECT_NE(Told.find(Case.Error), std::string::npos) << Told;
	}
	EXPECT_FALSE(LevelEditor().NewLevel("/Cave/Maps/There", false));
	EXPECT_FALSE(LevelEditor().NewLevel("/Cave/Maps/Cave", true));
	EXPECT_FALSE(LevelEditor().LoadLevel("/Cave/Maps/Gone"));
	EXPECT_EQ(OpenMap(), "/Cave/Open.Open") << "what is open stays";
	EXPECT_EQ(Project.FilesIn("Plugins/Cave/Content"), (FTexts{"Maps/There.umap", "Open.umap"}));
}

TEST_F(FLevelEditorTest, LeavesAPartitionedTemplateToItsCaller)
{
	PutLevel({.PackageName = "/QUARVEL/T/Wide", .bPartitioned = true, .bExternalActors = true});
	Project.MakeFolder("Plugins/QUARVEL/Content/__ExternalActors__/T/Wide");
	EXPECT_TRUE(LevelEditor().NewLevelFromTemplate("/Cave/Maps/Cave", "/QUARVEL/T/Wide"));
	EXPECT_TRUE(World()->HasWorldPartition());
}

TEST_F(FLevelEditorTest, AFullDiskLeavesNoHalfMap)
{
	QV_SKIP_ON_WINDOWS("no full disk is played here");
	PutLevel({.PackageName = "/QUARVEL/T/Whole"});
	{
		const FSmallDisk Disk(64);
		EXPECT_FALSE(LevelEditor().NewLevel("/Cave/Maps/Cave", false));
		EXPECT_FALSE(LevelEditor().NewLevelFromTemplate("/Cave/Maps/Cave", "/QUARVEL/T/Whole"));
	}
	const std::string Told = Errors();
	EXPECT_EQ(Told, "/Cave/Maps/Cave could not be made: <Project>/Plugins/Cave/Content/Maps/Cave.umap could not be "
					"written: File too large\n"
					"/Cave/Maps/Cave could not be made: <Project>/Plugins/Cave/Content/Maps/Cave.umap could not be "
					"written: File too large\n");
	EXPECT_EQ(Project.FilesIn("Plugins/Cave/Content"), FTexts());
	EXPECT_TRUE(LevelEditor().NewLevelFromTemplate("/Cave/Maps/Cave", "/QUARVEL/T/Whole"));
}
