// SPDX-License-Identifier: MIT
#include "Engine/QVLevelEditor.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/RenamedText.h"
#include "Standalone/Formats/Package/PackageHeader.h"
#include "Tests/Formats/TestContent.h"
#include "Tests/Support/ToolkitTest.h"

#include <map>

using namespace QVTest;
using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
using FTexts = std::vector<std::string>;

/** Maps that the real editor has saved, as templates of new ones. */
struct FRealTemplateTest : FToolkitTest
{
	std::string Content;
	int Made = 0;

	/** A content folder as the project's; every map of it is tried. Gives what was refused, and why. */
	std::map<std::string, std::string> TryAll(const char* Name)
	{
		fs::copy(ContentFolder() / Name / "Content", QVStandalone::ToOsPath(Project.At("Content")),
			fs::copy_options::recursive | fs::copy_options::overwrite_existing);
		Project.AddMod("New", {});
		std::map<std::string, std::string> Refused;
		for (const std::string& File : Project.FilesIn("Content"))
		{
			if (File.ends_with(".umap"))
			{
				Try("/Game/" + File.substr(0, File.size() - 5), Refused);
			}
		}
		return Refused;
	}
	static const IQVWorld* World() { return FQVEngine::Get().Editor->GetOpenWorld(); }
	/** Names, but for the script's class, and classes of the open map's actors. */
	static FTexts Actors()
	{
		std::vector<const IQVActor*> Found;
		World()->GetPersistentLevel()->GetActors(Found);
		FTexts Texts;
		for (const IQVActor* Actor : Found)
		{
			const bool bScript = Actor != nullptr && Actor == World()->GetPersistentLevel()->GetLevelScriptActor();
			const bool bNamed = Actor != nullptr && !bScript;
			Texts.push_back(bNamed ? Actor->GetName() + " " + Actor->GetClass()->GetName() : bScript ? "script" : "");
		}
		return Texts;
	}
	std::string Failure()
	{
		std::string Text;
		for (const FLogLine& Line : Recording.Take())
		{
			Text = Text.empty() && Line.Verbosity == EQVLogVerbosity::Error ? Line.Text : Text;
		}
		return Project.Mask(Text);
	}
	void Try(const std::string& Template, std::map<std::string, std::string>& Refused)
	{
		SCOPED_TRACE(Template);
		const std::string Name = "Map" + std::to_string(++Made);
		const std::string Package = "/New/Maps/" + Name;
		IQVLevelEditor& Editor = *FQVEngine::Get().Editor->GetLevelEditor();
		Recording.Take();
		if (!Editor.NewLevelFromTemplate(Package, Template))
		{
			Refused[Template] = Failure();
			return;
		}
		EXPECT_EQ(World()->GetPathName(), Package + "." + Name);
		const FTexts New = Actors();
		const bool bPartitioned = World()->HasWorldPartition();
		ExpectRenamed(Package, Template);
		ASSERT_TRUE(Editor.LoadLevel(Template));
		EXPECT_EQ(bPartitioned, World()->HasWorldPartition());
		if (!bPartitioned)
		{
			EXPECT_EQ(New, Actors());
		}
	}
	/** Nothing in the header speaks of the template any more; in the name table it may stand unused. */
	void ExpectRenamed(const std::string& Package, const std::string& Template)
	{
		const std::vector<std::byte> Bytes = ToBytes(Project.Read("Plugins/New/Content" + Package.substr(4) + ".umap"));
		const auto Header = ReadPackageHeader(Bytes);
		ASSERT_TRUE(Header);
		const FPackageRename Rename{Template, Package, {}};
		const QVStandalone::FRenamedText OldName(std::span(&Rename, 1));
		const std::string_view Text(reinterpret_cast<const char*>(Bytes.data()), Header->Bytes.size());
		EXPECT_EQ(OldName.FindIn(Text.substr(0, static_cast<std::size_t>(Header->Summary.Names.Offset))), "");
		EXPECT_EQ(OldName.FindIn(Text.substr(Header->Names.EndPosition())), "");
		std::vector<FQVPackageDependency> Found;
		FQVEngine::Get().AssetRegistry->GetDependencies(FQVName(Package), EQVDependencyQuery::All, Found);
		EXPECT_TRUE(std::ranges::none_of(
			Found, [&](const FQVPackageDependency& Each) { return Each.Package == FQVName(Template); }));
	}
};
} // namespace

TEST_F(FRealTemplateTest, EveryMapOfTheEditorBecomesANewOneOrIsRefusedByName)
{
	if (ContentFolder().empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	const std::string Moved =
		" holds no world: a map that was moved leaves such a file behind, which only leads to the "
		"new one";
	const std::string Split = " lie in files of their own, which would not come along: make the map in the editor, or "
							  "turn off One File Per Actor in the template";
	const std::map<std::string, std::string> Expected = {
		{"learning01 /Game/LevelOne", Moved},
		{"pcgex /Game/ConnectPoints/Demo-CustomGraphs", Moved},
		{"pcgex /Game/CustomGraphs/Demo-CustomGraphs", Moved},
		{"pcgex /Game/Sampling/Demo-SampleSurfaces", Moved},
		// its data may name the map with the world right behind it
		{"pcgex /Game/ConnectPoints/Demo-ConnectPoints",
			" may go on referring to /Game/ConnectPoints/Demo-ConnectPoints: open it in the editor and save it there "
			"once, or copy it by hand"},
		{"orbis-maps /Game/Maps/Persistent", Split},
		{"als /Game/ALSExtras/Levels/L_Als_Grid", Split},
		{"als /Game/ALSExtras/Levels/L_Als_Playground", Split},
	};
	std::map<std::string, std::string> Refused;
	for (const char* Each : {"mini4wd", "learning01", "pcgex", "a3", "endless", "orbis-maps", "als"})
	{
		for (const auto& [Template, Why] : TryAll(Each))
		{
			const std::string Key = std::string(Each) + " " + Template;
			const auto Known = Expected.find(Key);
			const bool bKnown = Known != Expected.end() && Why.ends_with(Known->second);
			Refused[Key] = bKnown ? Known->second : Why;
		}
		Project.Remove("Content");
	}
	EXPECT_EQ(Refused, Expected);
	EXPECT_EQ(Made, 31);
}
