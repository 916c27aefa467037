// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageHeaderBytes.h"
#include "Standalone/Formats/Package/PackageDependencies.h"
#include "Standalone/Formats/Package/PackageEditor.h"
#include "Standalone/Formats/Package/RedirectorPackage.h"
#include "Tests/Formats/TestContent.h"
#include "Tests/Standalone/RegistrySession.h"
#include "Tests/Support/TestPrograms.h"

#include <fstream>

using namespace QVTest;
using namespace QVStandalone;
using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
using FBlob = std::vector<std::byte>;

std::vector<FBlob> SmallPackages()
{
	FWorldPackageSpec Map;
	Map.PackageName = "/Game/Maps/Hall";
	Map.HardReferences = {{"/Game/Rock", "/Script/Engine", "StaticMesh", "Rock", true}};
	Map.SoftPackages = {"/Game/Lamp"};
	FAssetPackageSpec Mesh;
	Mesh.PackageName = "/Game/Rock";
	Mesh.ClassPath = "/Script/Engine.StaticMesh";
	return {BuildWorldPackage(Map), BuildAssetPackage(Mesh),
		BuildRedirectorPackage({"/Game/Old", "/Game/Rock", "/Script/Engine", "StaticMesh"})};
}

std::string_view AsText(const FBlob& Bytes)
{
	return {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()};
}

/** Two imports that lie in one another, an export in itself, and a reference by either spelling. */
FPackageSpec Cycle()
{
	FPackageSpec Spec;
	Spec.PackageName = "/Game/Cycle";
	Spec.Imports = {{"/Script/Engine", "StaticMesh", "A", FPackageIndex::Import(1)},
		{"/Script/Engine", "StaticMesh", "B", FPackageIndex::Import(0)},
		{"/Script/CoreUObject", "Package", "/Game/Rock", {}}, {"/Script/CoreUObject", "Package", "/GAME/rock", {}}};
	FExportSpec Export;
	Export.ObjectName = "Cycle";
	Export.Outer = FPackageIndex::Export(0);
	Spec.Exports.push_back(Export);
	Spec.SoftPaths = {{"/game/ROCK", "Rock", "", true}};
	return Spec;
}
} // namespace

TEST(ScanDamage, APackageCutAtAnyLengthIsRefusedWithAReason)
{
	const FTempFolder Folder;
	const fs::path Path = Folder.Path() / "Cut.uasset";
	FPackageHeaderReader Reader;
	for (const FBlob& Whole : SmallPackages())
	{
		const auto Header = ReadPackageHeader(Whole);
		ASSERT_TRUE(Header);
		std::ofstream(Path, std::ios::binary)
			.write(reinterpret_cast<const char*>(Whole.data()), static_cast<std::streamsize>(Whole.size()));
		for (std::size_t Size = Whole.size(); Size-- > 0;)
		{
			fs::resize_file(Path, Size);
			const auto Read = Reader.Read(FromOsPath(Path));
			EXPECT_EQ(Read.operator bool(), Size >= Header->Bytes.size()) << Size;
			EXPECT_TRUE(Read || !Read.Error().Message.empty()) << Size;
		}
		ForEachTruncation(Whole,
			[&](FBytes Cut)
			{
				const std::vector<FPackageRename> Rename = {{"/Game/Rock", "/Game/Stone", {{"Rock", "Stone"}}}};
				const auto Edit = RenameInPackage(Cut, "/Game/Maps/Hall", Rename);
				EXPECT_EQ(Edit.operator bool(), Cut.size() >= Header->Bytes.size()) << Cut.size();
			});
	}
}

TEST(ScanDamage, CyclesEndAndSpellingsMeet)
{
	const FBlob Bytes = BuildPackage(Cycle());
	const auto Header = ReadPackageHeader(Bytes);
	ASSERT_TRUE(Header) << Header.Error().Message;
	EXPECT_EQ(PackageDependencies(*Header).size(), 1u) << "one package, however it is spelled";
	const std::vector<FPackageRename> Rename = {{"/game/rock", "/Game/Stone", {{"Rock", "Stone"}}}};
	const auto Edit = RenameInPackage(Bytes, "/Game/Cycle", Rename);
	ASSERT_TRUE(Edit) << Edit.Error().Message;
	const auto After = ReadPackageHeader(Edit->Header);
	const std::vector<FPackageDependency> Found = PackageDependencies(*After);
	ASSERT_EQ(Found.size(), 1u);
	EXPECT_EQ(After->Names.Text(Found[0].Package), "/Game/Stone");
	EXPECT_EQ(After->Names.Text(After->SoftObjectPaths[0].Asset), "Stone");

	const FTestProject Project;
	Project.Write("Content/Cycle.uasset", AsText(Bytes));
	const FRegistrySession Session(Project);
	EXPECT_EQ(Session.Unreadable(), FTexts{});
	EXPECT_EQ(Session.Dependencies("/Game/Cycle"), FTexts{"hard game /Game/Rock"});
	EXPECT_EQ(Session.Referencers("/GAME/ROCK"), FTexts{"/Game/Cycle"});
}

TEST(ScanDamage, AFileNameThatIsNotUtf8IsListed)
{
	QV_SKIP_ON_WINDOWS("all names are UTF-16 here");
	const FTestProject Project;
	Project.Write("Content/Good.uasset", AsText(SmallPackages()[1]));
	const fs::path Folder = ToOsPath(Project.At("Content"));
	std::ofstream(Folder / "Bad\xFFName.uasset", std::ios::binary) << "x";
	const FRegistrySession Session(Project);
	EXPECT_EQ(Session.Assets("/Game"), FTexts{"/Game/Good.Rock StaticMesh"});
	ASSERT_EQ(Session.Registry.GetUnreadable().size(), 1u);
	EXPECT_EQ(Session.Registry.GetUnreadable()[0].Reason, "has bytes in its name that are not UTF-8");
}
