// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OsPath.h"
#include "Tests/Standalone/PackagesInMemorySupport.h"

using namespace QVTest;

namespace
{
struct PackageSave : FPackagesInMemoryTest
{
};
} // namespace

TEST_F(PackageSave, AFailedSaveChangesNothing)
{
	PutMesh("/Game/Rock", {"/Game/Sub/Stone"}, 1000);
	PutMesh("/Cave/Taken");
	std::filesystem::permissions(
		QVStandalone::ToOsPath(Project.At("Plugins/Cave/Content/Taken.uasset")), std::filesystem::perms(0444));
	Project.MakeFolder("Plugins/Cave/Content/Folder.uasset");
	Scan();
	const std::string Taken = Project.Read("Plugins/Cave/Content/Taken.uasset");
	EXPECT_TRUE(Duplicate("/Game/Rock", "/Cave/Rock"));
	const auto SaveAs = [&](const char* File)
	{ return Packages.SavePackage(FQVName("/Cave/Rock"), Project.At(File), false); };
	EXPECT_EQ(SaveAs("Plugins/Cave/Content/Taken.uasset"), EQVSaveResult::Failed);
	EXPECT_EQ(SaveAs("Plugins/Cave/Content/Folder.uasset"), EQVSaveResult::Failed);
	EXPECT_EQ(SaveAs("Plugins/Cave/Cave.uplugin/Rock.uasset"), EQVSaveResult::Failed);
	Project.Write("Content/Rock.uasset", Project.Read("Content/Rock.uasset").substr(0, 1500));
	EXPECT_EQ(SaveAs("Plugins/Cave/Content/Rock.uasset"), EQVSaveResult::Failed);
	Project.Remove("Content/Rock.uasset");
	EXPECT_EQ(SaveAs("Plugins/Cave/Content/Rock.uasset"), EQVSaveResult::Failed);
	const FLines Lines = Said();
	ASSERT_EQ(Lines.size(), 5U);
	const std::string Head = "Error: /Cave/Rock could not be saved: <Project>/";
	EXPECT_EQ(Lines[0], Head + "Plugins/Cave/Content/Taken.uasset is marked read-only: it stays as it is");
	EXPECT_EQ(Lines[1], Head + "Plugins/Cave/Content/Folder.uasset could not be written: Is a directory");
	EXPECT_EQ(Lines[2], Head + "Plugins/Cave/Cave.uplugin/Rock.uasset could not be written: Not a directory");
	EXPECT_TRUE(Lines[3].starts_with(Head + "Content/Rock.uasset has the data of its objects in a file of its own"))
		<< Lines[3];
	EXPECT_TRUE(Lines[4].starts_with(Head + "Content/Rock.uasset ")) << Lines[4];
	EXPECT_EQ(Dirty(), "/Cave/Rock");
	EXPECT_EQ(Project.Read("Plugins/Cave/Content/Taken.uasset"), Taken);
	EXPECT_EQ(Project.FilesIn("Plugins/Cave"), (FLines{"Cave.uplugin", "Content/Taken.uasset"}));
}

/** Two packages share an entry of the name table that the objects' data uses too: it cannot follow the one alone. */
TEST_F(PackageSave, RefusesToLeaveAReferenceBehind)
{
	FPackageSpec Spec;
	Spec.PackageName = "/Game/User";
	Spec.DataNames = {"/Game/Rock", "None"};
	Spec.Imports = {{"/Script/CoreUObject", "Package", "/Game/Rock", {}, true},
		{"/Script/CoreUObject", "Package", "/Game/Rock_7", {}, true}};
	Spec.Exports = {{{}, {}, {}, "User", 0, true, ToBytes("data"), 0, {}}};
	Spec.Assets = {{"User", "/Script/Engine.Texture2D", {}}};
	PutBytes("/Game/User", BuildPackage(Spec));
	Scan();
	EXPECT_TRUE(Duplicate("/Game/User", "/Cave/User"));
	const auto Replace = [&](const char* From, const char* To)
	{
		const FQVAssetData Asset{FQVName(From), FQVName("Rock"), {}, {}};
		Packages.ReplaceReferences(Copies, std::vector{FQVAssetReplacement{Asset, FQVName(To), {}}});
	};
	Replace("/Game/Rock", "/Cave/Rock");
	EXPECT_FALSE(Save("/Cave/User"));
	EXPECT_EQ(
		Said(), FLines{"Error: /Cave/User could not be saved: <Project>/Content/User.uasset may go on referring to "
					   "/Game/Rock: open it in the editor and save it there once, or copy it by hand"});
	EXPECT_EQ(Dirty(), "/Cave/User");
	Replace("/Game/Rock_7", "/Cave/Rock_7");
	EXPECT_TRUE(Save("/Cave/User"));
	EXPECT_EQ(Dependencies("/Cave/User"), "hard /Cave/Rock, hard /Cave/Rock_7");
}

/** Old names in the data that are only texts are told of; nothing is said of a longer name that begins alike. */
TEST_F(PackageSave, TellsOfTextsThatNameTheOldPackage)
{
	const auto Try = [&](const char* Package, const std::string& Text)
	{
		PutMesh(Package, {"/Game/Stein"});
		const std::string File = FileOf(Package);
		Project.Write(File, Project.Read(File) + Text);
		Scan();
		const std::string Copy = "/Cave" + std::string(Package).substr(5);
		Replacements = {{{FQVName("/Game/Stein"), FQVName("Stein"), {}, {}}, FQVName("/Cave/Stein"), {}}};
		EXPECT_TRUE(Duplicate(Package, Copy.c_str()));
		Packages.ReplaceReferences(Copies, Replacements);
		EXPECT_TRUE(Save(Copy.c_str()));
		const FLines Lines = Said();
		return Lines.empty() ? std::string() : Lines.front();
	};
	const std::string Head = "Warning: <Project>/Plugins/Cave/Content/";
	const std::string Tail = " in a text, where it stays";
	EXPECT_EQ(Try("/Game/A", "x(/game/STEIN.Stein)"), Head + "A.uasset still holds /Game/Stein" + Tail);
	EXPECT_EQ(Try("/Game/B", std::string("x\xFF\xFF/\0G\0a\0m\0e\0/\0B\0.\0B\0\0\0", 23)),
		Head + "B.uasset still holds /Game/B" + Tail);
	EXPECT_EQ(Try("/Game/C", "/Game/Steinbruch /Game/Stein/Bruch /X/Game/Stein /Game/St /"), "");
	EXPECT_EQ(Try("/Game/D(1)", "\x1F/Game/D(1"), "");
	EXPECT_EQ(Try("/Game/D(2)", "\x1F/Game/D(2)"), Head + "D(2).uasset still holds /Game/D(2)" + Tail);
}

TEST_F(PackageSave, ManyAtOnceAreSavedLikeEachAlone)
{
	PutMesh("/Game/Rock", {"/Game/Moss"}, 50'000);
	PutMesh("/Game/Moss");
	Scan();
	std::vector<FQVPackageToSave> Saves;
	for (int Number = 0; Number < 20; ++Number)
	{
		const std::string Name = "/Cave/In" + std::to_string(Number % 3) + "/Rock" + std::to_string(Number);
		EXPECT_TRUE(Duplicate("/Game/Rock", Name.c_str()));
		Saves.push_back({FQVName(Name), Project.At(FileOf(Name.c_str())), false});
	}
	Packages.ReplaceReferences(
		Copies, std::vector{FQVAssetReplacement{AssetOf("/Game/Moss"), FQVName("/Cave/Moss"), {}}});
	Saves[5].File = Project.At("Plugins/Cave/Cave.uplugin/Rock5.uasset");
	Saves[7].Package = FQVName("/Cave/Never");
	std::vector<EQVSaveResult> Expected(Saves.size(), EQVSaveResult::Success);
	Expected[5] = Expected[7] = EQVSaveResult::Failed;
	EXPECT_EQ(Packages.SavePackages(Saves), Expected);
	EXPECT_EQ(Said(), (FLines{"Error: /Cave/Never could not be saved: there is nothing in it",
						  "Error: /Cave/In2/Rock5 could not be saved: <Project>/Plugins/Cave/Cave.uplugin/Rock5.uasset "
						  "could not be written: Not a directory"}));
	EXPECT_EQ(Dirty(), "/Cave/In1/Rock7 /Cave/In2/Rock5");
	EXPECT_EQ(Dependencies("/Cave/In0/Rock0"), "") << "the registry hears of it when all are saved";
	Packages.DeleteAssets(std::vector{FQVName("/Cave/In1/Rock7"), FQVName("/Cave/In2/Rock5")});
	for (std::size_t Place = 0; Place < Saves.size(); ++Place)
	{
		const std::string Name = Saves[Place].Package.ToString();
		const bool bSaved = Expected[Place] == EQVSaveResult::Success;
		EXPECT_EQ(Dependencies(Name.c_str()), bSaved ? "hard /Cave/Moss" : "") << Name;
	}
	EXPECT_EQ(Project.FilesIn("Plugins/Cave/Content").size(), 18U);
}

/** A duplicate is made of the file as it is by then. */
TEST_F(PackageSave, ABatchKeepsToItsOrderWhereOneIsMadeOfAnother)
{
	PutMesh("/Game/Rock", {"/Game/Moss"});
	PutMesh("/Game/Moss");
	Scan();
	EXPECT_TRUE(Packages.LoadPackage(FQVName("/Game/Rock")));
	EXPECT_TRUE(Duplicate("/Game/Rock", "/Cave/Before") && Duplicate("/Game/Rock", "/Cave/After"));
	Packages.ReplaceReferences(std::vector{FQVName("/Game/Rock")},
		std::vector{FQVAssetReplacement{AssetOf("/Game/Moss"), FQVName("/Cave/Moss"), {}}});
	std::vector<FQVPackageToSave> Saves;
	for (const char* Name : {"/Cave/Before", "/Game/Rock", "/Cave/After"})
	{
		Saves.push_back({FQVName(Name), Project.At(FileOf(Name)), false});
	}
	EXPECT_EQ(Packages.SavePackages(Saves), std::vector<EQVSaveResult>(3, EQVSaveResult::Success));
	EXPECT_EQ(Dependencies("/Cave/Before"), "hard /Game/Moss");
	EXPECT_EQ(Dependencies("/Cave/After"), "hard /Cave/Moss");
}
