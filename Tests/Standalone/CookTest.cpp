// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/MappedFile.h"
#include "Standalone/Formats/Package/SamplePackages.h"
#include "Standalone/Formats/Registry/AssetRegistry.h"
#include "Tests/Standalone/ChildRun.h"
#include "Tests/Standalone/TestFiles.h"

#include <chrono>

using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
const std::string Metadata = "Metadata/DevelopmentAssetRegistry.bin";
const std::string CookedMod = "Plugins/Cave/Saved/Cooked/Windows/MapWork/Plugins/Cave/";

/** A project with a mesh of its own, the game's plugin with another, a mod of a map and a prop, a plugin that is off.
 */
class CookStandIn : public testing::Test
{
protected:
	FTestFiles Files;
	const std::string Project = Files.Put("MapWork.uproject", "{}");

	void SetUp() override
	{
		const char* ContentPlugin = R"({"CanContainContent": true})";
		Files.Put("Plugins/QUARVEL/QUARVEL.uplugin", ContentPlugin);
		Files.Put("Plugins/Off/Off.uplugin", R"({"CanContainContent": true, "EnabledByDefault": false})");
		Files.Put("Plugins/Cave/Cave.uplugin", ContentPlugin);
		PutMesh("Content/Meshes/Rock.uasset", "/Game/Meshes/Rock", 3000);
		PutMesh("Plugins/QUARVEL/Content/Base.uasset", "/QUARVEL/Base", 10);
		PutMesh("Plugins/Off/Content/Unseen.uasset", "/Off/Unseen", 10);
		PutMesh("Plugins/Cave/Content/Props/Лампа.uasset", "/Cave/Props/Лампа", 100);
		Files.Put("Plugins/Cave/Content/notes.txt", "no package");
		PutHall({"/Cave/Props/Лампа"});
	}

	void PutHall(const std::vector<std::string>& SoftPackages)
	{
		FWorldPackageSpec Hall;
		Hall.PackageName = "/Cave/Maps/Hall";
		Hall.HardReferences = {{"/Game/Meshes/Rock", "/Script/Engine", "StaticMesh", "Rock", true}};
		Hall.SoftPackages = SoftPackages;
		PutBytes("Plugins/Cave/Content/Maps/Hall.umap", BuildWorldPackage(Hall));
	}

	void PutBytes(const std::string& Path, const std::vector<std::byte>& Bytes)
	{
		Files.Put(Path, {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	}

	void PutMesh(const std::string& Path, const std::string& Package, std::size_t Payload)
	{
		FAssetPackageSpec Spec;
		Spec.PackageName = Package;
		Spec.ClassPath = "/Script/Engine.StaticMesh";
		Spec.PayloadBytes = Payload;
		PutBytes(Path, BuildAssetPackage(Spec));
	}

	FChildEnd Cook(const std::string& Mode)
	{
		return RunTool(Files, "UnrealEditor-Cmd.exe",
			"\"" + Project + "\" -run=cook -targetplatform=Windows " + Mode + " -stdout -UTF8Output -NoLogTimes");
	}

	FChildEnd CookRelease() { return Cook("-createreleaseversion=1.0 -iterate"); }

	FChildEnd CookDlc(const std::string& Plugin = "Cave", const std::string& Maps = "/Cave/Maps/Hall")
	{
		return Cook("-basedonreleaseversion=1.0 -dlcname=" + Plugin + " -map=" + Maps + " -diff");
	}

	/** Cooks a release without the mod, as the toolkit has it done. */
	void MakeBaseRelease()
	{
		const fs::path Descriptor = Files.OsPath("Plugins/Cave/Cave.uplugin");
		const fs::path SetAside = Files.OsPath("Plugins/Cave/Cave.uplugin.disabled");
		fs::rename(Descriptor, SetAside);
		ASSERT_EQ(CookRelease().Code, 0);
		fs::rename(SetAside, Descriptor);
	}

	/** Assets as "class package.asset", packages with their size, and what a package depends on. */
	FLines ReadRegistry(const std::string& Path)
	{
		const auto File = FMappedFile::Open(Files.OsPath(Path));
		const auto State = File ? ReadAssetRegistry(File->Bytes()) : File.Error();
		if (!State)
		{
			return {State.Error().Message};
		}
		FLines Lines;
		for (const FRegistryAsset& Asset : State->Assets)
		{
			Lines.push_back(State->Text(Asset.ClassPackage) + "." + State->Text(Asset.ClassName) + " " +
							State->Text(Asset.PackageName) + "." + State->Text(Asset.AssetName));
		}
		for (const FRegistryPackage& Package : State->Packages)
		{
			Lines.push_back(State->Text(Package.Name) + Package.Extension + " " + std::to_string(Package.SizeOnDisk));
		}
		for (const FRegistryNode& Node : State->Nodes)
		{
			for (const FRegistryDependency& On : Node.Packages)
			{
				Lines.push_back(State->Text(Node.Package) + (On.Set.IsHard() ? " needs " : " names ") +
								State->Text(State->Nodes[static_cast<std::size_t>(On.Node)].Package));
			}
		}
		std::sort(Lines.begin(), Lines.end());
		return Lines;
	}

	std::string SizeOf(const std::string& Path) { return " " + std::to_string(Files.Get(Path).size()); }

	void ExpectSplit(const std::string& Source, const std::string& CookedHeader)
	{
		const std::string Exports = CookedHeader.substr(0, CookedHeader.rfind('.')) + ".uexp";
		EXPECT_TRUE(Files.Get(CookedHeader) + Files.Get(Exports) == Files.Get(Source)) << CookedHeader;
		EXPECT_FALSE(Files.Get(CookedHeader).empty() || Files.Get(Exports).empty()) << CookedHeader;
	}
};
} // namespace

TEST_F(CookStandIn, SaysWhatItIsAndHowItWent)
{
	const FChildEnd End = CookRelease();
	EXPECT_EQ(End.Code, 0);
	const FLines Lines = End.Lines("");
	EXPECT_EQ(Lines.front(),
		"LogInit: Display: This is QVMap's stand-in for UnrealEditor-Cmd: content is laid out, not "
		"converted, and the game will not load it.");
	EXPECT_EQ(Lines.back(), "LogInit: Display: Success - 0 error(s), 0 warning(s)");
	const FChildEnd Wrong = RunTool(Files, "UnrealEditor-Cmd.exe", "-game");
	EXPECT_EQ(Wrong.Code, 1);
	EXPECT_EQ(Wrong.Lines("LogInit: ").back(), "LogInit: Display: Failure - 1 error(s), 0 warning(s)");
	EXPECT_EQ(Wrong.Lines("LogInit: Error"),
		FLines{"LogInit: Error: commandlet '' is not one of the stand-in's: it knows -run=cook only"});
}

TEST_F(CookStandIn, ABaseReleaseHoldsTheProjectAndItsEnabledPlugins)
{
	MakeBaseRelease();
	EXPECT_EQ(Files.Below("Releases"), (FLines{"1.0/Windows/AssetRegistry.bin", "1.0/Windows/" + Metadata}));
	EXPECT_EQ(Files.Below("Saved/Cooked/Windows/MapWork"),
		(FLines{"AssetRegistry.bin", "Content/Meshes/Rock.uasset", "Content/Meshes/Rock.uexp",
			"Content/ShaderArchive-MapWork-PCD3D_SM6-PCD3D_SM6.ushaderbytecode", Metadata,
			"Plugins/QUARVEL/Content/Base.uasset", "Plugins/QUARVEL/Content/Base.uexp"}));
	ExpectSplit("Content/Meshes/Rock.uasset", "Saved/Cooked/Windows/MapWork/Content/Meshes/Rock.uasset");
	const FLines Runtime = {
		"/Script/Engine.StaticMesh /Game/Meshes/Rock.Rock", "/Script/Engine.StaticMesh /QUARVEL/Base.Base"};
	EXPECT_EQ(ReadRegistry("Releases/1.0/Windows/AssetRegistry.bin"), Runtime);
	EXPECT_EQ(ReadRegistry("Releases/1.0/Windows/" + Metadata),
		(FLines{"/Game/Meshes/Rock needs /Script/Engine",
			"/Game/Meshes/Rock.uasset" + SizeOf("Content/Meshes/Rock.uasset"), "/QUARVEL/Base needs /Script/Engine",
			"/QUARVEL/Base.uasset" + SizeOf("Plugins/QUARVEL/Content/Base.uasset"), Runtime[0], Runtime[1]}));
}

TEST_F(CookStandIn, IterateCooksOnlyWhatChanged)
{
	const std::string Cooked = "Saved/Cooked/Windows/MapWork/";
	const auto Now = fs::file_time_type::clock::now();
	for (const char* Source : {"Content/Meshes/Rock.uasset", "Plugins/QUARVEL/Content/Base.uasset",
			 "Plugins/Cave/Content/Props/Лампа.uasset", "Plugins/Cave/Content/Maps/Hall.umap"})
	{
		fs::last_write_time(Files.OsPath(Source), Now - std::chrono::hours(1));
	}
	EXPECT_EQ(CookRelease().Lines("LogCook: Display: Cooking /").size(), 4);
	const FChildEnd Again = CookRelease();
	EXPECT_EQ(Again.Lines("LogCook: Display: Cooking /"), FLines());
	EXPECT_EQ(Again.Lines("LogCook: Display: Saving"), FLines{"LogCook: Display: Saving asset registry of 4 packages"});
	EXPECT_EQ(ReadRegistry("Releases/1.0/Windows/AssetRegistry.bin").size(), 4);

	fs::last_write_time(Files.OsPath("Content/Meshes/Rock.uasset"), Now + std::chrono::hours(1));
	PutMesh("Plugins/QUARVEL/Content/Base.uasset", "/QUARVEL/Base", 11);
	fs::last_write_time(Files.OsPath("Plugins/QUARVEL/Content/Base.uasset"), Now - std::chrono::hours(1));
	fs::remove(Files.OsPath("Saved/Cooked/Windows/MapWork/Plugins/Cave/Content/Maps/Hall.uexp"));
	EXPECT_EQ(CookRelease().Lines("LogCook: Display: Cooking /"),
		(FLines{"LogCook: Display: Cooking /Game/Meshes/Rock -> " + Cooked + "Content/Meshes/Rock.uasset",
			"LogCook: Display: Cooking /Cave/Maps/Hall -> " + Cooked + "Plugins/Cave/Content/Maps/Hall.umap",
			"LogCook: Display: Cooking /QUARVEL/Base -> " + Cooked + "Plugins/QUARVEL/Content/Base.uasset"}));
	ExpectSplit(
		"Plugins/QUARVEL/Content/Base.uasset", "Saved/Cooked/Windows/MapWork/Plugins/QUARVEL/Content/Base.uasset");
}

TEST_F(CookStandIn, AModIsLaidOutWhereTheToolkitLooksForIt)
{
	MakeBaseRelease();
	const FChildEnd End = CookDlc();
	EXPECT_EQ(End.Code, 0) << End.Output;
	EXPECT_EQ(End.Lines("LogCook: Display: Based"), FLines{"LogCook: Display: Based on release 1.0 with 2 packages"});
	EXPECT_EQ(Files.Below(CookedMod),
		(FLines{"AssetRegistry.bin", "Content/Maps/Hall.uexp", "Content/Maps/Hall.umap", "Content/Props/Лампа.uasset",
			"Content/Props/Лампа.uexp", "Content/ShaderArchive-Cave-PCD3D_SM6-PCD3D_SM6.ushaderbytecode", Metadata}));
	ExpectSplit("Plugins/Cave/Content/Maps/Hall.umap", CookedMod + "Content/Maps/Hall.umap");
	ExpectSplit("Plugins/Cave/Content/Props/Лампа.uasset", CookedMod + "Content/Props/Лампа.uasset");

	const FLines Runtime = {
		"/Script/Engine.StaticMesh /Cave/Props/Лампа.Лампа", "/Script/Engine.World /Cave/Maps/Hall.Hall"};
	EXPECT_EQ(ReadRegistry(CookedMod + "AssetRegistry.bin"), Runtime);
	EXPECT_EQ(ReadRegistry(CookedMod + Metadata),
		(FLines{"/Cave/Maps/Hall names /Cave/Props/Лампа", "/Cave/Maps/Hall needs /Game/Meshes/Rock",
			"/Cave/Maps/Hall needs /Script/Engine",
			"/Cave/Maps/Hall.umap" + SizeOf("Plugins/Cave/Content/Maps/Hall.umap"),
			"/Cave/Props/Лампа needs /Script/Engine",
			"/Cave/Props/Лампа.uasset" + SizeOf("Plugins/Cave/Content/Props/Лампа.uasset"), Runtime[0], Runtime[1]}));
}

TEST_F(CookStandIn, AModsCookFollowsReferencesAsFarAsTheReleaseDoesNotHoldThem)
{
	MakeBaseRelease();
	PutMesh("Content/Meshes/New.uasset", "/Game/Meshes/New", 10);
	PutMesh("Plugins/QUARVEL/Content/Late.uasset", "/QUARVEL/Late", 10);
	PutMesh("Plugins/Cave/Content/Unused.uasset", "/Cave/Unused", 10);
	FAssetPackageSpec Prop;
	Prop.PackageName = "/Cave/Prop";
	Prop.ClassPath = "/Script/Engine.StaticMesh";
	Prop.HardReferences = {{"/Cave/EditorOnly", "/Script/Engine", "StaticMesh", "EditorOnly", false},
		{"/Game/Meshes/New", "/Script/Engine", "StaticMesh", "New", true}};
	Prop.SoftPackages = {"/quarvel/late", "/Cave/Gone", "/Cave/Maps/Hall"};
	PutBytes("Plugins/Cave/Content/Prop.uasset", BuildAssetPackage(Prop));
	PutMesh("Plugins/Cave/Content/EditorOnly.uasset", "/Cave/EditorOnly", 10);
	PutHall({"/Cave/Prop"});
	const FChildEnd End = CookDlc();
	EXPECT_EQ(End.Code, 0) << End.Output;
	EXPECT_EQ(End.Lines("LogCook: Warning"),
		FLines{"LogCook: Warning: /Cave/Gone is referred to, but there is no such package"});
	const std::string Root = "Plugins/Cave/Saved/Cooked/Windows/MapWork/";
	EXPECT_EQ(Files.Below(Root + "Content"), (FLines{"Meshes/New.uasset", "Meshes/New.uexp"}));
	EXPECT_EQ(Files.Below(Root + "Plugins/QUARVEL/Content"), (FLines{"Late.uasset", "Late.uexp"}));
	EXPECT_EQ(
		Files.Below(CookedMod + "Content"), (FLines{"Maps/Hall.uexp", "Maps/Hall.umap", "Prop.uasset", "Prop.uexp",
												"ShaderArchive-Cave-PCD3D_SM6-PCD3D_SM6.ushaderbytecode"}));
}

TEST_F(CookStandIn, WithoutABaseReleaseMapOrPluginItFails)
{
	EXPECT_EQ(CookDlc().Lines("LogCook: Error"),
		FLines{"LogCook: Error: release 1.0 cannot be based on: Releases/1.0/Windows/" + Metadata +
			   " is missing or unreadable"});
	MakeBaseRelease();
	const struct
	{
		const char* Plugin;
		const char* Maps;
		FLines Errors;
	} Cases[] = {
		{"Cave", "/Cave/Maps/Hall+/Cave/Maps/Gone+/Nope/Hall",
			{"LogCook: Error: map /Cave/Maps/Gone was not found at Plugins/Cave/Content/Maps/Gone.umap",
				"LogCook: Error: map /Nope/Hall was not found"}},
		{"Cave", "/Cave/Props/Лампа",
			{"LogCook: Error: map /Cave/Props/Лампа was not found at Plugins/Cave/Content/Props/Лампа.umap"}},
		{"Nope", "/Cave/Maps/Hall", {"LogCook: Error: plugin Nope was not found below the project"}},
	};
	for (const auto& Case : Cases)
	{
		const FChildEnd End = CookDlc(Case.Plugin, Case.Maps);
		EXPECT_EQ(End.Code, 1) << Case.Maps;
		EXPECT_EQ(End.Lines("LogCook: Error"), Case.Errors);
		EXPECT_EQ(End.Lines("LogInit: ").back(),
			"LogInit: Display: Failure - " + std::to_string(Case.Errors.size()) + " error(s), 0 warning(s)");
	}
	EXPECT_FALSE(Files.Has("Plugins/Cave/Saved"));
}

TEST_F(CookStandIn, ABrokenPackageIsNamedAndFailsTheCook)
{
	MakeBaseRelease();
	const struct
	{
		const char* File;
		std::string Bytes;
		const char* Reason;
	} Cases[] = {
		{"Broken.uasset", "not a package at all",
			" is not an Unreal package: begins with 0x20746F6E, expected 0x9E2A83C1"},
		{"Empty.umap", "", " is empty, expected an Unreal package"},
		{"Pointer.uasset", "version https://git-lfs.github.com/spec/v1\noid sha256:00\nsize 1\n",
			" is a Git LFS pointer: fetch the file with git lfs pull"},
	};
	for (const auto& Case : Cases)
	{
		const std::string Path = std::string("Plugins/Cave/Content/") + Case.File;
		Files.Put(Path, Case.Bytes);
		PutHall({});
		const FChildEnd Unreached = CookDlc();
		EXPECT_EQ(Unreached.Code, 0) << Case.File;
		EXPECT_EQ(Unreached.Lines("LogCook: Warning"), FLines{"LogCook: Warning: " + Path + Case.Reason});
		PutHall({"/Cave/" + fs::path(Case.File).stem().string()});
		const FChildEnd End = CookDlc();
		EXPECT_EQ(End.Code, 1) << Case.File;
		EXPECT_EQ(End.Lines("LogCook: Error"), FLines{"LogCook: Error: " + Path + Case.Reason});
		EXPECT_EQ(End.Lines("LogInit: ").back(), "LogInit: Display: Failure - 1 error(s), 0 warning(s)");
		fs::remove(Files.OsPath(Path));
	}

	Files.Put("Content/Pointer.uasset", Cases[2].Bytes);
	fs::remove_all(Files.OsPath("Releases"));
	const FChildEnd Release = CookRelease();
	EXPECT_EQ(Release.Code, 1);
	EXPECT_EQ(Release.Lines("LogCook: Error"),
		FLines{std::string("LogCook: Error: Content/Pointer.uasset") + Cases[2].Reason});
	EXPECT_FALSE(Files.Has("Releases")) << "half a release would pass for a whole one";
}

TEST_F(CookStandIn, WhatCannotBeWrittenIsNamed)
{
	MakeBaseRelease();
	Files.Put("Plugins/Cave/Saved", "a file where the folder should be");
	const FChildEnd End = CookDlc();
	EXPECT_EQ(End.Code, 1);
	EXPECT_EQ(End.Lines("LogCook: Error").front(),
		"LogCook: Error: " + CookedMod + "Content/Maps/Hall.umap could not be written: Not a directory");
}
