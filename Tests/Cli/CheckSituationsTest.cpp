// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Tests/Cli/CheckSupport.h"

using namespace QVTest;
using namespace QVFormats;
using FJson = nlohmann::json;
namespace fs = std::filesystem;
using FCheckSituations = FCheckTest;

TEST_F(FCheckSituations, WithoutAProjectThereIsNothingToCheck)
{
	const std::string Nothing =
		"no mapping project found: neither <T> nor a folder above it holds a .uproject file. Go "
		"into your project, or name it with --project <file>";
	Folder = Temp.Path();
	ExpectFailure({"check"}, "error: " + Nothing + "\n");
	ExpectFailure({"setup"}, "error: " + Nothing + "\n");
	EXPECT_EQ(CheckJson({"Hall"}, 1), FJson({{"schema_version", 1}, {"error", Nothing}}));
}

/** The project's own maps cannot be packed, and the template is no map of the user's. */
TEST_F(FCheckSituations, MapsOfNoModAreNoMaps)
{
	fs::create_directories(Folder / "Content/Maps");
	fs::copy_file(Folder / "Plugins/Cave/Content/Maps/Hall.umap", Folder / "Content/Maps/Lobby.umap");
	for (const std::string Map : {"/Game/Maps/Lobby", "Lobby", "/QUARVEL/Templates/DefaultMapTemplate"})
	{
		ExpectFailure({"check", Map}, "error: there is no mod or map '" + Map + "': see qvmap maps\n");
	}
	const FJson Bridge = CheckJson({"QUARVEL"}, 1);
	EXPECT_EQ(Bridge["map"], "");
	EXPECT_EQ(FindById(Bridge, "Content.CookPathResolves")->at("detail"),
		"No .umap files found in Plugins/QUARVEL/Content/.");
}

/** Whatever stands in the file, a whole report comes; what could not be read is named in it with file and reason. */
TEST_F(FCheckSituations, DamageInsideTheMapIsAFinding)
{
	const fs::path Map = Folder / "Plugins/Cave/Content/Maps/Hall.umap";
	FLevelPackageSpec Spec{.PackageName = "/Cave/Maps/Hall", .Actors = {{"Start_0", "/Script/Engine.PlayerStart"}}};
	Spec.bScript = true;
	const std::vector<std::byte> Whole = BuildLevelPackage(Spec);
	std::size_t Refused = 0;
	for (std::size_t At = Whole.size() / 40; At < Whole.size(); At += Whole.size() / 20)
	{
		std::vector<std::byte> Bad = Whole;
		std::fill_n(
			Bad.begin() + static_cast<std::ptrdiff_t>(At), std::min<std::size_t>(8, Bad.size() - At), std::byte{0x7F});
		WriteBytes(Map, Bad);
		const FJson Document = CheckJson({"Cave"}, 1);
		for (const char* Id : {"Env.UnrealPak", "Content.Security", "Ref.Audit", "Ref.Unreadable", "Export.Record"})
		{
			EXPECT_NE(FindById(Document, Id), nullptr) << Id << " " << At;
		}
		const FJson* Unread = FindById(Document, "Content.MapReadable");
		EXPECT_EQ(Unread == nullptr, FindById(Document, "Content.PlayerStart") != nullptr) << At;
		if (Unread != nullptr)
		{
			++Refused;
			EXPECT_EQ(Unread->at("severity"), "error");
			const std::string Detail = Mask(Unread->at("detail"));
			const std::string File = "<T>/Пример 1/Plugins/Cave/Content/Maps/Hall.umap ";
			EXPECT_TRUE(Detail.starts_with(File) && Detail.size() > File.size() + 10) << Detail;
		}
	}
	EXPECT_GT(Refused, 5U);
}
