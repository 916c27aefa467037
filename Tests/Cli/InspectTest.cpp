// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/SamplePackages.h"
#include "Standalone/Formats/Registry/AssetRegistryBuilder.h"
#include "Tests/Cli/CliTest.h"
#include "Tests/Formats/TestContent.h"

#include <nlohmann/json.hpp>

using namespace QVFormats;
using namespace QVTest;
namespace fs = std::filesystem;
using FJson = nlohmann::json;

namespace
{
class FInspect : public FCliTest
{
protected:
	FJson Inspect(const std::string& File) const
	{
		const FProgramEnd End = Run({"inspect", File, "--format", "json"});
		EXPECT_EQ(End.Code, 0) << End.Err;
		EXPECT_EQ(End.Err, "");
		return FJson::parse(End.Out);
	}
	std::string Text(const FWords& Words) const
	{
		FWords All = {"inspect"};
		All.insert(All.end(), Words.begin(), Words.end());
		const FProgramEnd End = Run(All);
		EXPECT_EQ(End.Code, 0) << End.Err;
		return End.Out;
	}
	void PutBytes(const std::string& Name, const std::vector<std::byte>& Bytes) const
	{
		WriteBytes(Folder / Name, Bytes);
	}
};

std::vector<std::byte> Hall()
{
	return BuildWorldPackage({"/Game/Maps/Hall",
		{{"/Game/Meshes/Rock", "/Script/Engine", "StaticMesh", "Rock"},
			{"/Game/Tools/Rig", "/Script/Engine", "Texture2D", "Rig", false}},
		{"/Game/Maps/Part"}, true});
}

FJson Find(const FJson& Rows, const char* Key, const std::string& Value)
{
	for (const FJson& Row : Rows)
	{
		if (Row[Key] == Value)
		{
			return Row;
		}
	}
	return {};
}
} // namespace

TEST_F(FInspect, APackageIsToldWhateverItsFileIsCalled)
{
	PutBytes("hall.dat", Hall());
	const FJson Json = Inspect("hall.dat");
	EXPECT_EQ(Json["schema_version"], 1);
	EXPECT_EQ(Json["kind"], "package");
	EXPECT_EQ(Json["file_version_ue4"], 522);
	EXPECT_EQ(Json["file_version_ue5"], 1012);
	EXPECT_EQ(Json["package_name"], "/Game/Maps/Hall");
	EXPECT_EQ(Json["flags"], FJson({"ContainsMap"}));
	EXPECT_EQ(Json["flags_hex"], "0x00020000");
	EXPECT_EQ(Json["cooked"], false);
	EXPECT_EQ(Json["counts"]["imports"], Json["imports"].size());
	EXPECT_EQ(Json["counts"]["names"], Json["names"].size());
	EXPECT_EQ(Find(Json["imports"], "path", "/Game/Meshes/Rock.Rock"),
		FJson({{"class", "/Script/Engine.StaticMesh"}, {"path", "/Game/Meshes/Rock.Rock"},
			{"package", "/Game/Meshes/Rock"}, {"optional", false}, {"used_in_game", true}}));
	const FJson Start = Find(Json["exports"], "class", "/Script/Engine.PlayerStart");
	EXPECT_EQ(Start["outer"], "Hall:PersistentLevel");
	EXPECT_EQ(Find(Json["exports"], "name", "Hall")["asset"], true);
	EXPECT_EQ(Find(Json["dependencies"], "package", "/Game/Tools/Rig"),
		FJson({{"package", "/Game/Tools/Rig"}, {"hard", true}, {"game", false}}));
	EXPECT_EQ(Json["soft_object_paths"], FJson({"/Game/Maps/Part.Part"}));
	EXPECT_EQ(Json["soft_packages"], FJson({{{"package", "/Game/Maps/Part"}, {"used_in_game", true}}}));
	EXPECT_EQ(Json["assets"][0]["class"], "/Script/Engine.World");
	std::uint64_t End = 0;
	for (const FJson& Section : Json["sections"])
	{
		EXPECT_EQ(Section["offset"], End);
		End += Section["bytes"].get<std::uint64_t>();
	}
	EXPECT_EQ(Json["header_bytes"], End);

	const std::string Head = Text({"hall.dat", "--summary"});
	EXPECT_TRUE(Head.starts_with("hall.dat: package\n  file bytes ")) << Head;
	EXPECT_NE(Head.find("\n  flags                      ContainsMap\n"), std::string::npos) << Head;
	EXPECT_EQ(Head.find("\nImports"), std::string::npos);
	const std::string All = Text({"hall.dat"});
	EXPECT_TRUE(All.starts_with(Head.substr(0, Head.size() - 1))) << "the head is the same";
	for (const FJson& Name : Json["names"])
	{
		EXPECT_NE(All.find("\n  " + Name.get<std::string>() + "\n"), std::string::npos) << Name;
	}
}

TEST_F(FInspect, ARegistryIsToldByClassAssetAndDependency)
{
	FAssetRegistryBuilder Builder(false);
	Builder.AddAsset({"/Game/Hall", "Hall", "", "/Script/Engine.World", {{"Light", "on"}}, {3}, 0x20000});
	Builder.AddAsset({"/Game/Rock", "Rock", "", "/Script/Engine.StaticMesh", {}, {}, 0});
	Builder.AddAsset({"/Game/Stone", "Stone", "", "/Script/Engine.StaticMesh", {}, {}, 0});
	Builder.AddDependency("/Game/Hall", "/Game/Rock", FDependencySet::Of(true, false));
	FRegistryPackage Package;
	Package.Name = Builder.Name("/Game/Hall");
	Package.SizeOnDisk = 5'000'000'000;
	Package.Extension = ".umap";
	Builder.AddPackage(Package);
	PutBytes("AssetRegistry.bin", *WriteAssetRegistry(Builder.Finish()));
	const FJson Json = Inspect("AssetRegistry.bin");
	EXPECT_EQ(Json["kind"], "asset registry");
	EXPECT_EQ(Json["version"], 17);
	EXPECT_EQ(Json["editor_only_filtered"], false);
	EXPECT_EQ(Json["counts"]["assets"], 3);
	EXPECT_EQ(Json["classes"], FJson({{{"class", "/Script/Engine.StaticMesh"}, {"assets", 2}},
								   {{"class", "/Script/Engine.World"}, {"assets", 1}}}));
	const FJson Hall = Find(Json["assets"], "name", "Hall");
	EXPECT_EQ(Hall["tags"], FJson({{{"key", "Light"}, {"value", "on"}}}));
	EXPECT_EQ(Hall["chunks"], FJson({3}));
	EXPECT_EQ(Json["packages"][0]["bytes"], 5'000'000'000);
	EXPECT_EQ(Json["dependencies"], FJson({{{"package", "/Game/Hall"}, {"depends_on", "/Game/Rock"}, {"hard", true},
										{"game", false}, {"build", true}}}));
	const std::string Head = Text({"AssetRegistry.bin", "--summary"});
	EXPECT_NE(Head.find("\nClasses (2)\n"), std::string::npos) << Head;
	EXPECT_EQ(Head.find("Light"), std::string::npos) << Head;
	EXPECT_NE(Text({"AssetRegistry.bin"}).find("\n      Light = on\n"), std::string::npos);
}

TEST_F(FInspect, APakIsToldByItsFooterAndTheKindsOfItsFiles)
{
	FPakForge Forge;
	Forge.Add("Maps/", "Hall.umap", "a hall").Add("", "manifest.json", "{}");
	Forge.AddZlib("Maps/", "Hall.UEXP", RandomThenZeros(10, 5000));
	PutBytes("good.pak", Forge.Make());
	const FJson Json = Inspect("good.pak");
	EXPECT_EQ(Json["kind"], "pak");
	EXPECT_EQ(Json["version"], 11);
	EXPECT_EQ(Json["mount_point"], "../../../Cave/Content/");
	EXPECT_EQ(Json["methods"], FJson({"Zlib", "Oodle"}));
	EXPECT_EQ(Json["counts"]["files"], 3);
	EXPECT_EQ(Json["counts"]["bytes"], 5018);
	EXPECT_EQ(Find(Json["compressions"], "name", "None")["bytes"], 8);
	EXPECT_EQ(Find(Json["compressions"], "name", "Zlib")["files"], 1);
	EXPECT_EQ(Find(Json["extensions"], "name", ".uexp")["bytes"], 5010);
	EXPECT_NE(Text({"good.pak", "--summary"}).find("`qvmap pak list` shows the files"), std::string::npos);

	Forge.bIndexEncrypted = true;
	PutBytes("locked.pak", Forge.Make());
	const FJson Locked = Inspect("locked.pak");
	EXPECT_EQ(Locked["index_encrypted"], true);
	EXPECT_EQ(Locked.count("counts"), 0);
	EXPECT_EQ(Locked["notes"], FJson({"its index is encrypted: what files it holds cannot be told"}));
}

TEST_F(FInspect, WhatCannotBeReadIsSaid)
{
	const std::vector<std::byte> Good = Hall();
	const std::string Bytes(reinterpret_cast<const char*>(Good.data()), Good.size());
	Put("empty.umap", "");
	Put("text.umap", "a text of some length, that is no package");
	Put("lfs.umap", "version https://git-lfs.github.com/spec/v1\noid sha256:00\nsize 1\n");
	Put("cut.umap", Bytes.substr(0, 300));
	Put("data.uexp", "some data\xC1\x83\x2A\x9E");
	Put("other.umap", "\x9E\x2A\x83\xC1");
	std::string Pak = Bytes;
	const std::vector<std::byte> Forged = FPakForge().Add("", "a", "b").Make();
	Pak.assign(reinterpret_cast<const char*>(Forged.data()), Forged.size());
	Pak[Pak.rfind("Cave")] = 'W';
	Put("index.pak", Pak);
	fs::create_directory(Folder / "folder");
	const std::pair<const char*, const char*> Cases[] = {
		{"missing.umap", "missing.umap could not be opened: No such file or directory"},
		{"folder", "folder is not a file"},
		{"empty.umap", "empty.umap: is empty"},
		{"text.umap",
			"text.umap: is neither a package, nor an asset registry, nor a pak: neither its beginning nor its "
			"end has their marks"},
		{"lfs.umap", "lfs.umap: is a Git LFS pointer: fetch the file with git lfs pull"},
		{"cut.umap", "cut.umap: is cut short or damaged in its summary (300 bytes)"},
		{"data.uexp", "data.uexp: is the data of a cooked package (.uexp): inspect the .uasset or .umap beside it"},
		{"other.umap", "other.umap: is a package of a big-endian platform; only little-endian ones are read"},
		{"index.pak", "index.pak: the index is damaged: its hash is <Hash>, and <Hash> was expected"},
	};
	for (const auto& [File, Error] : Cases)
	{
		ExpectFailure({"inspect", File}, std::string("error: ") + Error + "\n");
		const FProgramEnd Json = Run({"inspect", File, "--format", "json"});
		EXPECT_EQ(Json.Code, 1);
		EXPECT_EQ(FJson::parse(Json.Out)["error"], Error);
	}
}

TEST_F(FInspect, HostileTextsReachNeitherTheTerminalNorTheDocument)
{
	FAssetPackageSpec Spec{"/Game/\x1b[31mRed\xC2\x9B\xE2\x80\xAE", "/Script/Engine.StaticMesh", {}, {"/Game/A\nB\tC"}};
	PutBytes("red.uasset", BuildAssetPackage(Spec));
	const std::string Shown = Text({"red.uasset"});
	EXPECT_NE(Shown.find("/Game/\\x1b[31mRed\\x9b\\u202e\n"), std::string::npos) << Shown;
	EXPECT_NE(Shown.find("/Game/A\\x0aB\\x09C"), std::string::npos) << Shown;
	EXPECT_EQ(Shown.find('\x1b'), std::string::npos);
	EXPECT_EQ(Inspect("red.uasset")["package_name"], Spec.PackageName) << "a document says what is";

	FPakForge Forge;
	Forge.Version = EPakVersion::Utf8Directory;
	Forge.Add("", "cut.\xE9\x8D", "x");
	Forge.MountPoint = "../../../\x07/";
	PutBytes("cut.pak", Forge.Make());
	EXPECT_EQ(Inspect("cut.pak")["extensions"][0]["files"], 1);
	EXPECT_EQ(Text({"cut.pak"}).find('\x07'), std::string::npos);
}

TEST_F(FInspect, RealFilesOfEveryKind)
{
	if (ContentFolder().empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	int Cooked = 0;
	int Uncooked = 0;
	for (const fs::directory_entry& Each : fs::recursive_directory_iterator(ContentFolder()))
	{
		if (Each.path().extension() != ".umap")
		{
			continue;
		}
		const FJson Json = Inspect(Each.path().string());
		EXPECT_EQ(Json["counts"]["exports"], Json["exports"].size());
		EXPECT_EQ(Json["map"], true) << Each.path();
		EXPECT_TRUE(Json.contains("sections")) << Each.path();
		const bool bCooked = Json["cooked"];
		EXPECT_EQ(Json["editor_only_filtered"], bCooked) << Each.path();
		++(bCooked ? Cooked : Uncooked);
		const FJson World = Find(Json["exports"], "class", "/Script/Engine.World");
		const FJson Redirector = Find(Json["exports"], "class", "/Script/CoreUObject.ObjectRedirector");
		EXPECT_FALSE(World.is_null() && Redirector.is_null()) << Each.path() << " is no map, nor was it moved";
	}
	EXPECT_GE(Cooked, 1);
	EXPECT_GE(Uncooked, 1);
	const FJson Registry = Inspect((ContentFolder() / "simple2d/Releases/1.0/Windows/AssetRegistry.bin").string());
	EXPECT_EQ(Registry["counts"]["assets"], 3460);
	EXPECT_EQ(Registry["assets"].size(), 3460);
	const FJson Pak = Inspect(
		(ContentFolder() / "pak-v12/UE5_8/LegacyPak/Tagged/Zlib/CUE4ParseFixtures-Legacy-Tagged-Zlib.pak").string());
	EXPECT_EQ(Pak["version"], 12);
	EXPECT_EQ(Pak["counts"]["files"], 11);
}
