// SPDX-License-Identifier: MIT
#include "Standalone/Engine/TextEncoding.h"
#include "Standalone/Formats/Package/PackageDependencies.h"
#include "Tests/Cli/CliTest.h"
#include "Tests/Formats/TestContent.h"

#include <nlohmann/json.hpp>

using namespace QVTest;
namespace fs = std::filesystem;

namespace
{
using FRealContent = FCliTest;

bool IsPackage(const std::string& Name)
{
	return Name.ends_with(".uasset") || Name.ends_with(".umap");
}

/** The packages that a package needs or names at run time. */
std::set<std::string> NamedInGame(const std::string& Bytes)
{
	const auto Header = QVFormats::ReadPackageHeader(std::as_bytes(std::span(Bytes)));
	std::set<std::string> Names;
	for (const QVFormats::FPackageDependency& Dependency : QVFormats::PackageDependencies(*Header))
	{
		if (Dependency.bGame)
		{
			Names.insert(Header->Names.Text(Dependency.Package));
		}
	}
	return Names;
}

/** What is packed is a map, belongs to one by its place, or is named by what is packed; and nothing else is. */
void ExpectClosed(const std::map<std::string, std::set<std::string>>& NamedBy, const std::set<std::string>& Left)
{
	std::set<std::string> Wanted = {"/ALS/ALSExtras/Levels/L_Als_Grid", "/ALS/ALSExtras/Levels/L_Als_Playground"};
	for (const auto& [Package, Names] : NamedBy)
	{
		Wanted.insert(Names.begin(), Names.end());
	}
	for (const auto& [Package, Names] : NamedBy)
	{
		EXPECT_TRUE(Wanted.contains(Package) || Package.starts_with("/ALS/__External")) << Package;
	}
	for (const std::string& Package : Left)
	{
		EXPECT_FALSE(Wanted.contains(Package) || Package.starts_with("/ALS/__External")) << Package;
	}
	EXPECT_GT(NamedBy.size(), 300);
	EXPECT_GT(Left.size(), 0);
}
} // namespace

TEST_F(FRealContent, APluginOfTheEditorsGoesIntoAPakAndComesBackWhole)
{
	const fs::path Content = ContentFolder();
	if (Content.empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	EnterSample();
	const fs::path Plugin = Folder / "Plugins/ALS";
	fs::create_directory(Plugin);
	fs::copy(Content / "als/ALS.uplugin", Plugin);
	fs::permissions(Plugin / "ALS.uplugin", fs::perms::owner_write, fs::perm_options::add);
	fs::copy(Content / "als/Content", Plugin / "Content", fs::copy_options::recursive);
	BuildRelease();
	const FProgramEnd Refused = Run({"-q", "pack", "L_Als_Grid", "--yes"});
	EXPECT_EQ(Refused.Code, 1);
	EXPECT_EQ(Refused.Err.find("error: This map contains content that is not supported."), 0) << Refused.Err;
	Put("Saved/QVPak/config.json", R"({"always_export_as_mod": true})");
	const FProgramEnd Packed = Run({"-q", "pack", "L_Als_Grid", "--yes"});
	ASSERT_EQ(Packed.Code, 0) << Packed.Err;
	EXPECT_EQ(Packed.Err, "");
	ASSERT_EQ(Paks().size(), 1);
	const std::string Pak = Paks()[0].string();
	EXPECT_EQ(nlohmann::json::parse(Run({"pak", "verify", Pak, "--format", "json"}).Out)["sound"], true);
	ASSERT_EQ(Run({"pak", "extract", Pak, "out"}).Code, 0);

	FTree Unpacked = ReadFiles(Folder / "out/ALS/Content");
	const std::string Manifest = Unpacked["manifest.json"];
	Unpacked.erase("manifest.json");
	ExpectSameFiles(ReadFiles(Plugin / "Saved/Cooked/Windows/SampleMaps/Plugins/ALS/Content"), Unpacked);
	FWords Maps;
	const auto Json = nlohmann::json::parse(QVStandalone::DecodeText(Manifest)); // its description has letters
	for (const auto& Map : Json["Maps"])
	{
		Maps.push_back(Map["DisplayName"].get<std::string>() + " " + Map["AssetPath"].get<std::string>());
	}
	EXPECT_EQ(Maps, (FWords{"L_Als_Grid /Game/ALS/ALSExtras/Levels/L_Als_Grid",
						"L_Als_Playground /Game/ALS/ALSExtras/Levels/L_Als_Playground"}));

	std::map<std::string, std::set<std::string>> NamedBy;
	std::set<std::string> Left;
	for (const auto& [Name, Original] : ReadFiles(Plugin / "Content"))
	{
		const std::string Stem = Name.substr(0, Name.rfind('.'));
		if (IsPackage(Name) && Unpacked.contains(Name))
		{
			EXPECT_TRUE(Unpacked[Name] + Unpacked[Stem + ".uexp"] == Original) << Name;
			NamedBy["/ALS/" + Stem] = NamedInGame(Original);
		}
		else if (IsPackage(Name))
		{
			Left.insert("/ALS/" + Stem);
		}
	}
	EXPECT_EQ(NamedBy.size() + Left.size(), 362);
	ExpectClosed(NamedBy, Left);
}
