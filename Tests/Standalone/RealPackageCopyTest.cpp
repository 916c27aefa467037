// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OsPath.h"
#include "Tests/Formats/PackageEditSupport.h"
#include "Tests/Formats/TestContent.h"
#include "Tests/Support/TestPrograms.h"
#include "Tests/Support/ToolkitTest.h"

using namespace QVTest;
namespace fs = std::filesystem;

namespace
{
/** Packages of a real plugin, brought into a mod. */
struct FRealPackageCopyTest : FToolkitTest
{
	IQVPackages& Packages = *Engine.Interfaces.Packages;
	IQVAssetRegistry& Registry = *Engine.Interfaces.AssetRegistry;

	void Prepare()
	{
		ShowFolder(ContentFolder() / "als", QVStandalone::ToOsPath(Project.At("Plugins/ALS")));
		Project.AddMod("Cave", {});
		Engine.GetAssetRegistry().StartScan();
		ASSERT_TRUE(Engine.GetAssetRegistry().FinishScan());
	}

	/** Some that these packages refer to are not among the files. */
	bool IsOfPlugin(FQVName Package) const
	{
		return Package.ToView().starts_with("/ALS/") && !AssetOf(Package).PackageName.IsNone();
	}
	std::vector<FQVName> DependenciesOf(FQVName Package) const
	{
		std::vector<FQVPackageDependency> Found;
		Registry.GetDependencies(Package, EQVDependencyQuery::All, Found);
		std::vector<FQVName> Names;
		for (const FQVPackageDependency& Each : Found)
		{
			Names.push_back(Each.Package);
		}
		return Names;
	}
	/** A package and all of its plugin that can be reached from it. */
	std::vector<FQVName> Reach(const char* Package) const
	{
		std::vector<FQVName> Found{FQVName(Package)};
		for (std::size_t Place = 0; Place < Found.size(); ++Place)
		{
			for (const FQVName Each : DependenciesOf(Found[Place]))
			{
				if (IsOfPlugin(Each) && std::find(Found.begin(), Found.end(), Each) == Found.end())
				{
					Found.push_back(Each);
				}
			}
		}
		return Found;
	}
	FQVName CopyOf(FQVName Package) const
	{
		return FQVName(IsOfPlugin(Package) ? "/Cave/In" + Package.ToString() : Package.ToString());
	}
	FQVAssetData AssetOf(FQVName Package) const
	{
		std::vector<FQVAssetData> Assets;
		Registry.GetAssetsByPackageName(Package, Assets);
		return Assets.empty() ? FQVAssetData() : Assets.back();
	}
	static FFile BytesAt(const std::string& File) { return ToBytes(ReadText(QVStandalone::ToOsPath(File))); }
};

/** Of every table and text of the header: old names that are still there. */
std::string OldNamesIn(FBytes File, const std::vector<FQVName>& Old)
{
	const FPackageHeader Header = *ReadPackageHeader(File);
	std::vector<std::string> Found = NamesIn(File);
	for (const FPackageAsset& Asset : Header.Registry.Assets)
	{
		Found.push_back(Asset.ObjectPath.ToUtf8());
		for (const FPackageTag& Tag : Header.Registry.TagsOf(Asset))
		{
			Found.push_back(Tag.Value.ToUtf8());
		}
	}
	std::string Left;
	for (const FQVName Name : Old)
	{
		for (const std::string& Text : Found)
		{
			const bool bWhole = FQVString::EqualsIgnoreCase(Text, Name.ToView());
			const bool bObject = FQVString::ContainsIgnoreCase(" " + Text, " " + Name.ToString() + ".") ||
								 FQVString::ContainsIgnoreCase(Text, "'" + Name.ToString() + ".");
			Left += bWhole || bObject ? Text + "\n" : "";
		}
	}
	return Left;
}
} // namespace

TEST_F(FRealPackageCopyTest, ASetOfCopiesRefersToItselfAlone)
{
	if (ContentFolder().empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	ASSERT_NO_FATAL_FAILURE(Prepare());
	const std::vector<FQVName> Old = Reach("/ALS/ALS/Character/B_Als_Character");
	std::vector<FQVName> New;
	std::vector<FQVAssetReplacement> Replacements;
	for (const FQVName Package : Old)
	{
		New.push_back(CopyOf(Package));
		Replacements.push_back({AssetOf(Package), New.back(), AssetOf(Package).AssetName});
		ASSERT_TRUE(Packages.CreatePackage(New.back()) && Packages.DuplicateAsset(AssetOf(Package), New.back()));
	}
	Packages.ReplaceReferences(New, Replacements);
	std::size_t References = 0;
	for (std::size_t Place = 0; Place < Old.size(); ++Place)
	{
		SCOPED_TRACE(New[Place].ToView());
		const std::string File = Project.At("Plugins/Cave/Content" + New[Place].ToString().substr(5) + ".uasset");
		ASSERT_EQ(Packages.SavePackage(New[Place], File, false), EQVSaveResult::Success);
		std::string From;
		ASSERT_TRUE(Packages.DoesPackageExist(Old[Place].ToView(), From));
		const FFile Copy = BytesAt(File);
		ASSERT_NO_FATAL_FAILURE(ExpectSoundAfter(BytesAt(From), Copy));
		EXPECT_EQ(OldNamesIn(Copy, Old), "");
		EXPECT_EQ(ReadPackageHeader(Copy)->Summary.PackageName.ToUtf8(), New[Place].ToView());
	}
	for (std::size_t Place = 0; Place < Old.size(); ++Place)
	{
		SCOPED_TRACE(New[Place].ToView());
		std::vector<FQVName> Expected = DependenciesOf(Old[Place]);
		for (FQVName& Each : Expected)
		{
			References += IsOfPlugin(Each) ? 1 : 0;
			Each = CopyOf(Each);
		}
		EXPECT_TRUE(DependenciesOf(New[Place]) == Expected);
		EXPECT_EQ(AssetOf(New[Place]).AssetName, AssetOf(Old[Place]).AssetName);
		EXPECT_EQ(AssetOf(New[Place]).ClassPath, AssetOf(Old[Place]).ClassPath);
	}
	EXPECT_EQ(Old.size(), 42U);
	EXPECT_EQ(References, 68U);
}

/** Before references were names a text in the data of objects could be one. */
TEST_F(FRealPackageCopyTest, ATextOfAnOldEngineIsNotLeftBehind)
{
	if (ContentFolder().empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	Project.AddMod("Cave", {});
	const fs::path Old =
		ContentFolder() / "versions/colosseum/Unreal/Environments/BlocksV2/Content/Flying/Meshes/BaseMaterial.uasset";
	const std::vector<FQVAssetReplacement> Replacements = {
		{{FQVName("/Game/Rock"), FQVName("Rock"), {}, {}}, FQVName("/Cave/Rock"), FQVName("Rock")}};
	for (const auto& [Text, Result] :
		{std::pair("/Game/Rocks.Rocks", EQVSaveResult::Success), std::pair("/Game/Rock.Rock", EQVSaveResult::Failed)})
	{
		Project.Write("Content/BaseMaterial.uasset", ReadText(Old) + std::string(1, '\0') + Text);
		const std::vector<FQVName> Copy{FQVName("/Cave/" + std::to_string(static_cast<int>(Result)) + "/M")};
		ASSERT_TRUE(Packages.CreatePackage(Copy[0]));
		ASSERT_TRUE(Packages.DuplicateAsset({FQVName("/Game/BaseMaterial"), FQVName("BaseMaterial"), {}, {}}, Copy[0]));
		Packages.ReplaceReferences(Copy, Replacements);
		EXPECT_EQ(Packages.SavePackage(Copy[0], Project.At("Plugins/Cave/Content/M.uasset"), false), Result) << Text;
	}
	EXPECT_EQ(Recording.Take().back().Text, "/Cave/" + std::to_string(static_cast<int>(EQVSaveResult::Failed)) +
												"/M could not be saved: " + Project.At("Content/BaseMaterial.uasset") +
												" comes from an engine that wrote references as texts, and holds "
												"/Game/Rock: open it in the editor and save "
												"it there once, or copy it by hand");
}
