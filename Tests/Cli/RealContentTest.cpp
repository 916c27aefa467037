// SPDX-License-Identifier: MIT
#include "Standalone/Engine/TextEncoding.h"
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
	const FProgramEnd Packed = Run({"-q", "pack", "ALS"});
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

	int Packages = 0;
	for (const auto& [Name, Original] : ReadFiles(Plugin / "Content"))
	{
		if (IsPackage(Name))
		{
			++Packages;
			const std::string& Exports = Unpacked[Name.substr(0, Name.rfind('.')) + ".uexp"];
			EXPECT_TRUE(Unpacked[Name] + Exports == Original) << Name;
		}
	}
	EXPECT_EQ(Packages, 362);
}
