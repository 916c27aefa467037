// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Standalone/Formats/Package/SamplePackages.h"
#include "Tests/Cli/CliTest.h"

#include <nlohmann/json.hpp>

using namespace QVFormats;
using namespace QVTest;
namespace fs = std::filesystem;
using FOrderedJson = nlohmann::ordered_json;

namespace
{
/** A sample project in which the map of Cave uses content of the project and of another mod. */
class FImportVerb : public FCliTest
{
protected:
	void SetUp() override
	{
		EnterSample();
		PutBytes("Plugins/Cave/Content/Maps/Hall.umap", BuildLevelPackage({.PackageName = "/Cave/Maps/Hall",
															.Actors = PlayableActors(),
															.Meshes = {"/Game/Props/Crate", "/QUARVEL/Props/Lantern"},
															.SoftPackages = {"/Harbor/Meshes/Boat"}}));
		PutMesh("Content/Props/Crate.uasset", "/Game/Props/Crate", {Mesh("/Game/Props/Planke_Größe")});
		PutMesh(fs::path(u8"Content/Props/Planke_Größe.uasset"), "/Game/Props/Planke_Größe", {});
		BuildRelease();
		Before = UserFiles();
	}

	FTree Before;
	const std::string Journal = "Saved/QVPak/Temp/ImportBackup/Cave/";

	/** Empty folders count too. */
	FTree UserFiles() const
	{
		FTree Files = Snapshot(Folder);
		std::erase_if(Files, [](const auto& File) { return File.first.starts_with("Saved/"); });
		for (const fs::directory_entry& Each : fs::recursive_directory_iterator(Folder / "Plugins"))
		{
			if (Each.is_directory() && QVStandalone::FromOsPath(Each.path()).find("/Saved") == std::string::npos)
			{
				Files[QVStandalone::FromOsPath(Each.path())] = "folder";
			}
		}
		return Files;
	}
	static FHardReference Mesh(const std::string& Package)
	{
		return {Package, "/Script/Engine", "StaticMesh", Package.substr(Package.rfind('/') + 1)};
	}
	void PutBytes(const fs::path& File, const std::vector<std::byte>& Bytes) const
	{
		Put(File, {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	}
	void PutMesh(const fs::path& File, const std::string& Package, std::vector<FHardReference> Hard) const
	{
		PutBytes(File, BuildAssetPackage({Package, "/Script/Engine.StaticMesh", std::move(Hard), {}, 700, 0}));
	}
	/** What a run that was killed behind its saves leaves. */
	void LeaveInterrupted() const
	{
		const fs::path Map = "Plugins/Cave/Content/Maps/Hall.umap";
		const fs::path Copy = "Plugins/Cave/Content/_QVImported/Game/Props/Crate.uasset";
		Put(Journal + "0000_Hall.umap", Get(Map));
		Put(Map, "repointed");
		Put(Copy, "copy");
		const FOrderedJson Manifest = {{"schema_version", 1},
			{"backups", {{{"package", "/Cave/Maps/Hall"}, {"original", QVStandalone::FromOsPath(Folder / Map)},
							{"backup", QVStandalone::FromOsPath(Folder / (Journal + "0000_Hall.umap"))}}}},
			{"imported", {{{"file", QVStandalone::FromOsPath(Folder / Copy)}}}}};
		Put(Journal + "import.json", Manifest.dump());
	}
};
} // namespace

TEST_F(FImportVerb, PackTakesOutsideContentAlongAndLeavesTheProjectAsItWas)
{
	const FProgramEnd DryRun = Run({"pack", "Cave", "--dry-run"});
	EXPECT_EQ(DryRun.Code, 0);
	EXPECT_EQ(WithoutProgress(DryRun.Err), "");
	EXPECT_EQ(DryRun.Out, "Would be brought in for the pack: 5 package(s), 0.56 MB\n"
						  "  /Game/Props/Crate\n  /Game/Props/Planke_Größe\n"
						  "  /Harbor/Meshes/Boat\n  /Harbor/Materials/Planks\n  /Harbor/Textures/Planks_D\n"
						  "Would refer to the copies, and be put back afterwards: 1 package(s)\n"
						  "  /Cave/Maps/Hall\n");
	ExpectSameFiles(Before, UserFiles());
	const FProgramEnd Packed = Run({"pack", "Cave"});
	ASSERT_EQ(Packed.Code, 0) << Packed.Err;
	ExpectSameFiles(Before, UserFiles());
	EXPECT_FALSE(fs::exists(Folder / Journal));
	ASSERT_EQ(Paks().size(), 1);
	const std::string List = Run({"pak", "list", QVStandalone::FromOsPath(Paks().front())}).Out;
	for (const char* Name : {"_QVImported/Game/Props/Crate.uasset", "_QVImported/Game/Props/Planke_Größe.uasset",
			 "_QVImported/Harbor/Meshes/Boat.uasset"})
	{
		EXPECT_NE(List.find(Name), std::string::npos) << List;
	}
	EXPECT_EQ(List.find("Props/Crate.uasset"), List.rfind("Props/Crate.uasset"));
}

TEST_F(FImportVerb, WhatIsMissingIsSaidBeforeAnythingChanges)
{
	fs::remove(Folder / u8"Content/Props/Planke_Größe.uasset");
	Before = UserFiles();
	const FProgramEnd DryRun = Run({"pack", "Cave", "--dry-run", "--format", "json"});
	EXPECT_EQ(DryRun.Code, 1);
	const FOrderedJson Json = FOrderedJson::parse(DryRun.Out);
	EXPECT_EQ(Json["missing_for_cook"], FOrderedJson({"/Game/Props/Planke_Größe"}));
	EXPECT_EQ(Json["repoint"], FOrderedJson::array());
	const FProgramEnd Packed = Run({"pack", "Cave"});
	EXPECT_EQ(Packed.Code, 1);
	EXPECT_NE(Packed.Err.find("Missing (1 of 1):"), std::string::npos) << Packed.Err;
	ExpectSameFiles(Before, UserFiles());
}

TEST_F(FImportVerb, InterruptedPackIsPutBackByRecoverOrByWhateverComesNext)
{
	for (const FWords& Words : {FWords{"recover"}, FWords{"maps"}, FWords{"settings", "list"}, FWords{"pack", "Cave"}})
	{
		LeaveInterrupted();
		Expect({"recover", "--dry-run"}, 0,
			"Cave: 1 of 1 file(s) would be put back, 1 copy(s) would be deleted\n  "
			"<T>/Пример 1/Plugins/Cave/Content/Maps/Hall.umap\n",
			"");
		const FProgramEnd End = Run(Words);
		EXPECT_EQ(End.Code, 0) << End.Err;
		EXPECT_NE(End.Err.find("A previous pack of 'Cave' did not finish. Its original files have been put back."),
			std::string::npos)
			<< End.Err;
		ExpectSameFiles(Before, UserFiles());
		EXPECT_FALSE(fs::exists(Folder / Journal));
	}
	Expect({"recover"}, 0, "Nothing to put back.\n", "");
	LeaveInterrupted();
	Put(Journal + "import.json", "{\"schema_version\":2}");
	const FProgramEnd Refused = Run({"pack", "Cave"});
	EXPECT_EQ(Refused.Code, 1);
	EXPECT_EQ(Refused.Err, "warning: Import manifest for Cave is schema 2, expected 1 - leaving it alone\n"
						   "error: Cave is not as it was before it was packed, and could not be put back. Its original "
						   "files are in <T>/Пример 1/Saved/QVPak/Temp/ImportBackup/Cave\n  fix: qvmap recover\n");
	EXPECT_EQ(Get("Plugins/Cave/Content/Maps/Hall.umap"), "repointed");
	EXPECT_TRUE(fs::exists(Folder / (Journal + "0000_Hall.umap")));
}

TEST_F(FImportVerb, CopiesThatNoManifestNamesAreToldAndDeletedOnWish)
{
	Put("Plugins/Cave/Content/_QVImported/Game/Old.uasset", "copy");
	const std::string Copies = "<T>/Пример 1/Plugins/Cave/Content/_QVImported";
	Expect({"recover"}, 0,
		Copies + ": copies that an interrupted pack left; qvmap recover --remove-copies deletes them\n", "");
	EXPECT_TRUE(fs::exists(Folder / "Plugins/Cave/Content/_QVImported/Game/Old.uasset"));
	Expect({"recover", "--remove-copies"}, 0, Copies + ": deleted\n", "");
	ExpectSameFiles(Before, UserFiles());
}
