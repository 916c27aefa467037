// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/TextEncoding.h"
#include "Standalone/Formats/Package/RedirectorPackage.h"
#include "Standalone/Formats/Package/SamplePackages.h"
#include "Tests/Cli/CliTest.h"

#include <nlohmann/json.hpp>

using namespace QVFormats;
using namespace QVTest;
namespace fs = std::filesystem;
using FOrderedJson = nlohmann::ordered_json;

namespace
{
/** A sample project in which a crate has moved into the mod Cave and back out of the sight of its map. */
class FRedirectorsVerb : public FCliTest
{
protected:
	void SetUp() override
	{
		EnterSample();
		PutMap({Mesh("/Game/Crate")});
		PutMesh("Plugins/Cave/Content/Box.uasset", "/Cave/Box", {});
		PutMesh("Content/Shelf.uasset", "/Game/Shelf", {Mesh("/Game/Crate")});
		PutRedirector("Content/Crate.uasset", "/Game/Crate", "/Cave/Box");
	}

	static FHardReference Mesh(const std::string& Package)
	{
		return {Package, "/Script/Engine", "StaticMesh", Package.substr(Package.rfind('/') + 1)};
	}
	void PutBytes(const fs::path& File, const std::vector<std::byte>& Bytes) const
	{
		Put(File, {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	}
	void PutMap(std::vector<FHardReference> Hard) const
	{
		PutBytes(
			"Plugins/Cave/Content/Maps/Hall.umap", BuildWorldPackage({"/Cave/Maps/Hall", std::move(Hard), {}, false}));
	}
	void PutMesh(const fs::path& File, const std::string& Package, std::vector<FHardReference> Hard) const
	{
		PutBytes(File, BuildAssetPackage({Package, "/Script/Engine.StaticMesh", std::move(Hard), {}, 0, 0}));
	}
	void PutRedirector(const fs::path& File, const std::string& Package, const std::string& Target) const
	{
		PutBytes(File, BuildRedirectorPackage({Package, Target, "/Script/Engine", "StaticMesh"}));
	}

	/** The redirectors verb's end, without the lines of progress. */
	FProgramEnd Redirectors(const FWords& More) const
	{
		FWords Words = {"redirectors"};
		Words.insert(Words.end(), More.begin(), More.end());
		FProgramEnd End = Run(Words);
		End.Err = WithoutProgress(End.Err);
		return End;
	}
};
} // namespace

TEST_F(FRedirectorsVerb, ListsTriesAndFixes)
{
	const FTree Before = Snapshot(Folder);
	const std::string Tried = "redirector  /Game/Crate -> /Cave/Box\n"
							  "would repoint  /Cave/Maps/Hall: 2 reference(s)\n"
							  "would repoint  /Game/Shelf: 2 reference(s)\n";
	for (const FWords& Words : {FWords{"list", "Cave"}, FWords{"list", "Hall"}, FWords{"fix", "cave", "--dry-run"}})
	{
		const FProgramEnd End = Redirectors(Words);
		EXPECT_EQ(End.Code, 0) << End.Err;
		EXPECT_EQ(End.Out, Tried);
	}
	ExpectSameFiles(Before, Snapshot(Folder));

	const FProgramEnd Fixed = Redirectors({"fix", "Cave", "--format", "json"});
	EXPECT_EQ(Fixed.Code, 0) << Fixed.Err;
	FOrderedJson Json = FOrderedJson::parse(Fixed.Out);
	const std::string Backup = Json["backup"];
	Json.erase("backup");
	EXPECT_EQ(Json.dump(),
		R"({"schema_version":1,"mod":"Cave","applied":true,"redirectors":[{"package":"/Game/Crate",)"
		R"("target":"/Cave/Box","file":"<T>/Пример 1/Content/Crate.uasset",)"
		R"("referencers":["/Cave/Maps/Hall","/Game/Shelf"],"deleted":true,"obstacle":""}],"referencers":[)"
		R"({"package":"/Cave/Maps/Hall","file":"<T>/Пример 1/Plugins/Cave/Content/Maps/Hall.umap","references":2,)"
		R"("rewritten":true,"obstacle":""},{"package":"/Game/Shelf","file":"<T>/Пример 1/Content/Shelf.uasset",)"
		R"("references":2,"rewritten":true,"obstacle":""}]})");
	EXPECT_FALSE(fs::exists(Folder / "Content/Crate.uasset"));
	const FProgramEnd References = Run({"references", "Cave", "--format", "json"});
	EXPECT_EQ(FOrderedJson::parse(References.Out)["untrusted"].size(), 0u) << References.Out;

	const FProgramEnd Nothing = Redirectors({"fix", "Cave"});
	EXPECT_EQ(Nothing.Code, 0);
	EXPECT_EQ(Nothing.Out + Nothing.Err, "Cave has no redirectors, and its maps meet none\n");

	// undone as it says: the files as they were, copied back
	const fs::path Kept = Folder / "Saved/QVPak/Backup" / fs::path(Backup).filename();
	for (const auto& [Name, Bytes] : ReadFiles(Kept))
	{
		Put(QVStandalone::ToOsPath(Name), Bytes);
	}
	fs::remove_all(Folder / "Saved/QVPak/Backup");
	ExpectSameFiles(Before, Snapshot(Folder));
}

TEST_F(FRedirectorsVerb, WhatStaysIsSaidWithTheReason)
{
	PutRedirector("Plugins/Cave/Content/Lost.uasset", "/Cave/Lost", "/Cave/Nowhere");
	fs::permissions(Folder / "Content/Shelf.uasset", fs::perms::owner_read);
	const FTree Before = Snapshot(Folder);
	const FProgramEnd End = Redirectors({"fix", "Cave"});
	EXPECT_EQ(End.Code, 1);
	const std::string Out = End.Out.substr(0, End.Out.find("the files as they were"));
	EXPECT_EQ(Out, "stays  /Game/Crate -> /Cave/Box\n    /Game/Shelf still refers to it\n"
				   "stays  /Cave/Lost\n    what it leads to is not there: /Cave/Nowhere\n"
				   "repointed  /Cave/Maps/Hall: 2 reference(s)\n"
				   "stays  /Game/Shelf: 2 reference(s)\n"
				   "    <T>/Пример 1/Content/Shelf.uasset could not be written: Permission denied\n");
	EXPECT_NE(End.Err.find("error: not every redirector could be fixed\n"), std::string::npos) << End.Err;
	const FTree After = Snapshot(Folder);
	EXPECT_EQ(After.at("Content/Shelf.uasset"), Before.at("Content/Shelf.uasset"));
	EXPECT_TRUE(After.contains("Content/Crate.uasset") && After.contains("Plugins/Cave/Content/Lost.uasset"));

	const FProgramEnd Unknown = Redirectors({"list", "Cavee"});
	EXPECT_EQ(Unknown.Code, 1);
	EXPECT_EQ(Unknown.Err, "error: there is no mod or map 'Cavee': see qvmap maps\n  did you mean 'Cave'?\n");
}

TEST_F(FRedirectorsVerb, WhatCannotBeReadMayReferToThem)
{
	Put("Content/Pointer.uasset", "version https://git-lfs.github.com/spec/v1\n");
	const FTree Before = Snapshot(Folder);
	const FProgramEnd Unsure = Redirectors({"fix", "Cave"});
	EXPECT_EQ(Unsure.Code, 1);
	EXPECT_EQ(Unsure.Out, "stays  /Game/Crate -> /Cave/Box\n    what could not be read may refer to it: <T>/Пример "
						  "1/Content/Pointer.uasset is a Git LFS pointer: fetch the file with git lfs pull\n"
						  "stays  /Cave/Maps/Hall: 0 reference(s)\nstays  /Game/Shelf: 0 reference(s)\n");
	ExpectSameFiles(Before, Snapshot(Folder));
	EXPECT_EQ(Redirectors({"fix", "Cave", "--despite-unreadable"}).Code, 0);
	EXPECT_FALSE(fs::exists(Folder / "Content/Crate.uasset"));
}

TEST_F(FScriptedToolsTest, FilteringLeavesOutWhatNoMapUses)
{
	Project.ScriptEditorCmd({CookMapAlone, "write " + Cooked + "Unused.uasset|x", "write " + Cooked + "Unused.uexp|y",
		"write " + Cooked + "ShaderArchive-Cave.ushaderbytecode|z"});
	Project.ScriptUnrealPak({"write {1}|pak"});
	Put("Saved/QVPak/config.json", R"({"filter_unused_assets": true})");
	const FProgramEnd Packed = Run({"pack", "Cave"});
	EXPECT_EQ(Packed.Code, 0) << Packed.Err;
	EXPECT_NE(Packed.Out.find("\n     2 file(s) that no map uses were left out\n"), std::string::npos) << Packed.Out;
	const std::string List = QVStandalone::DecodeText(Get("Saved/QVPak/Temp/Cave_filelist.txt"));
	EXPECT_NE(List.find("Maps/Hall.umap"), std::string::npos);
	EXPECT_NE(List.find("ShaderArchive-Cave"), std::string::npos);
	EXPECT_EQ(List.find("Unused"), std::string::npos) << List;
	const FOrderedJson Json = FOrderedJson::parse(Run({"pack", "Cave", "--format", "json"}).Out);
	EXPECT_EQ(Json["filter_unused_active"], true);
	EXPECT_EQ(Json["files_skipped"], 2);
}
