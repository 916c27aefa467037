// SPDX-License-Identifier: MIT
#include "Tests/Formats/TestContent.h"
#include "Tests/Standalone/RegistrySession.h"
#include "Tests/Support/TestPrograms.h"

#include <cstring>

using namespace QVTest;
using namespace QVStandalone;
namespace fs = std::filesystem;

namespace
{
struct PackageTraits : FRegistryTest
{
	static FTexts Misspelled(const FRegistrySession& Session, const char* Package)
	{
		std::vector<FQVMisspelledReference> Found = {{"left", "over"}};
		Session.Registry.GetMisspelledReferences(FQVName(Package), Found);
		FTexts Texts;
		for (const FQVMisspelledReference& Each : Found)
		{
			Texts.push_back(Each.Reference + " " + Each.OnDisk);
		}
		return Texts;
	}
	void PutUser(const std::string& Package, const std::string& Target) const
	{
		PutWorld("Content" + Package.substr(5) + ".umap", {Package, {}, {Target}, false});
	}
};
} // namespace

/** Names keep the spelling that the process met first, which here is nobody's; three starts must tell the same. */
TEST_F(PackageTraits, SpellingIsThatOfTheFilesWhateverNamesSay)
{
	for (const char* Odd : {"/GAME/TRAITS/STONE", "/GAME/TRAITS/LEAF"})
	{
		EXPECT_EQ(FQVName(Odd).ToView(), Odd);
	}
	for (const char* Name : {"Stone", "Leaf", "Twig"})
	{
		PutMesh(std::string("Content/Traits/") + Name + ".uasset", std::string("/Game/Traits/") + Name);
	}
	PutUser("/Game/Right", "/Game/Traits/Stone");
	PutUser("/Game/LikeTheName", "/GAME/TRAITS/LEAF");
	PutUser("/Game/Other", "/Game/Traits/twig");
	PutUser("/Game/Own", "/game/OWN");
	PutUser("/Game/Nowhere", "/Game/Traits/GONE");
	for (const char* Start : {"first", "from the cache", "with a file that is new"})
	{
		SCOPED_TRACE(Start);
		if (Start == std::string("with a file that is new"))
		{
			PutMesh("Content/Traits/New.uasset", "/Game/Traits/New");
		}
		const FRegistrySession Session(Project);
		EXPECT_EQ(Misspelled(Session, "/Game/Right"), FTexts{});
		EXPECT_EQ(Misspelled(Session, "/Game/LikeTheName"), FTexts{"/GAME/TRAITS/LEAF /Game/Traits/Leaf"});
		EXPECT_EQ(Misspelled(Session, "/Game/Other"), FTexts{"/Game/Traits/twig /Game/Traits/Twig"});
		EXPECT_EQ(Misspelled(Session, "/Game/Own"), FTexts{}) << "itself";
		EXPECT_EQ(Misspelled(Session, "/Game/Nowhere"), FTexts{}) << "there is no file to compare with";
		EXPECT_EQ(Misspelled(Session, "/Game/NotThere"), FTexts{});
	}
	// the file takes the name that the reference has
	for (const auto& [Old, New] : {std::pair("Twig", "twig"), std::pair("Stone", "STONE")})
	{
		// in two steps: to some systems both are one name, and nothing is to be done
		fs::rename(OsPath(QVPrintf("Content/Traits/%s.uasset", Old)), OsPath("Content/Traits/between"));
		fs::rename(OsPath("Content/Traits/between"), OsPath(QVPrintf("Content/Traits/%s.uasset", New)));
	}
	const FRegistrySession Session(Project);
	EXPECT_EQ(Misspelled(Session, "/Game/Other"), FTexts{});
	EXPECT_EQ(Misspelled(Session, "/Game/Right"), FTexts{"/Game/Traits/Stone /Game/Traits/STONE"});
}

TEST_F(PackageTraits, OnlyHeadersWithSomethingToTellAreRead)
{
	PutMesh("Content/Traits/Pebble.uasset", "/Game/Traits/Pebble");
	PutUser("/Game/Good", "/Game/Traits/Pebble");
	PutUser("/Game/Bad", "/Game/Traits/PEBBLE");
	const FRegistrySession Session(Project);
	for (const char* File : {"Content/Good.umap", "Content/Bad.umap"})
	{
		Project.Remove(File);
	}
	EXPECT_EQ(Misspelled(Session, "/Game/Good"), FTexts{});
	EXPECT_EQ(Misspelled(Session, "/Game/Bad"), FTexts{}) << "a file that has gone since";
	EXPECT_EQ(Session.Registry.GetNewerEngine(FQVName("/Game/Good")), "");
	EXPECT_EQ(Session.Registry.GetGraph().TraitsAt(Session.Registry.GetGraph().FindRow(FQVName("/Game/Good"))),
		FPackageTraits{});
	EXPECT_EQ(Session.Registry.GetGraph().TraitsAt(Session.Registry.GetGraph().FindRow(FQVName("/Game/Bad"))),
		(FPackageTraits{false, true}));
}

TEST_F(PackageTraits, NewerEnginesByTheFilesThatTheyHaveSaved)
{
	const fs::path Versions = ContentFolder() / "versions";
	if (ContentFolder().empty() || !fs::exists(Versions))
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT does not name a folder with packages of many versions";
	}
	Project.Remove("Content");
	ShowFolder(Versions, OsPath("Content"));
	for (const char* Start : {"first", "from the cache"})
	{
		SCOPED_TRACE(Start);
		const FRegistrySession Session(Project);
		int Newer = 0;
		std::vector<FQVAssetData> Assets;
		Session.Registry.GetAssets({"/Game", {}}, Assets);
		for (const FQVAssetData& Each : Assets)
		{
			const std::string Bytes = ReadText(ToOsPath(Session.Registry.GetPackageFile(Each.PackageName)));
			std::int32_t Numbers[5];
			ASSERT_GE(Bytes.size(), sizeof(Numbers));
			std::memcpy(Numbers, Bytes.data(), sizeof(Numbers)); // tag, legacy, UE3, UE4 and UE5
			const std::string Engine = Session.Registry.GetNewerEngine(Each.PackageName);
			const bool bNewer = Numbers[1] <= -8 && Numbers[4] > 1012;
			EXPECT_EQ(!Engine.empty(), bNewer) << Each.PackageName.ToView() << " " << Engine;
			EXPECT_EQ(Engine.starts_with("UE 5."), bNewer) << Engine;
			Newer += bNewer ? 1 : 0;
		}
		EXPECT_GE(Newer, 6);
	}
}
