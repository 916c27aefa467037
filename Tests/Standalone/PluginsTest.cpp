// SPDX-License-Identifier: MIT
#include "Standalone/Engine/StandaloneEngine.h"
#include "Standalone/Formats/Registry/AssetRegistryBuilder.h"
#include "Tests/Standalone/TestFiles.h"
#include "Tests/Support/TestPrograms.h"

#include <gtest/gtest.h>

using namespace QVStandalone;
namespace fs = std::filesystem;

namespace
{
/** A project and an engine with plugins, which are written before they are first asked for. */
class Plugins : public testing::Test
{
protected:
	FTestFiles Files;
	const std::string ProjectFile = Files.Put("My Maps/My.uproject", "{}");
	FPlugins Found{ProjectFile, Files("Engine")};

	std::string PutPlugin(std::string_view Folder, std::string_view Json = "{}")
	{
		const std::string Name(Folder.substr(Folder.rfind('/') + 1));
		return Files.Put(std::string(Folder) + "/" + Name + ".uplugin", Json);
	}
};
} // namespace

TEST_F(Plugins, LieAnywhereBelowButNotWithinEachOther)
{
	QV_SKIP_ON_WINDOWS("the standard library makes no links here");
	for (const char* File :
		{"My Maps/Plugins/Cave/Cave.uplugin", "My Maps/Plugins/Cave/Plugins/Inner/Inner.uplugin",
			"My Maps/Plugins/group/of a kind/Deep/Deep.uplugin", "My Maps/Plugins/Off/Off.uplugin.disabled",
			"My Maps/Beside/Beside.uplugin", "Engine/Plugins/Runtime/Built/Built.uplugin", "far/Linked/Linked.UPLUGIN"})
	{
		Files.Put(File, "{}");
	}
	fs::create_directory_symlink("../../far/Linked", Files.OsPath("My Maps/Plugins/Linked"));
	fs::create_directory_symlink("..", Files.OsPath("My Maps/Plugins/group/up"));
	fs::create_directory_symlink("../group", Files.OsPath("My Maps/Plugins/group/round"));
	fs::create_directory_symlink("../Cave", Files.OsPath("My Maps/Plugins/group/twin"));
	FLines Descriptors;
	for (const FQVPluginInfo& Plugin : Found.GetDiscovered())
	{
		Descriptors.push_back(Files.Mask(Plugin.DescriptorPath));
	}
	EXPECT_EQ(Descriptors,
		(FLines{"My Maps/Plugins/Cave/Cave.uplugin", "My Maps/Plugins/Linked/Linked.UPLUGIN",
			"My Maps/Plugins/group/of a kind/Deep/Deep.uplugin", "Engine/Plugins/Runtime/Built/Built.uplugin"}));
}

TEST_F(Plugins, ThatAreMadeAreKnownAtOnce)
{
	PutPlugin("Engine/Plugins/Built");
	fs::create_directories(Files.OsPath("My Maps/Plugins/Taken"));
	const std::string Location = Files("My Maps/Plugins");
	const std::vector<FQVPluginInfo>& Before = Found.GetDiscovered();
	std::string Mounted;
	Found.OnMounted = [&](const FQVPluginInfo& New) { Mounted += New.Name + " "; };
	const auto Make = [&](const char* Name, const std::string& In)
	{
		FQVNewPlugin New{Name, In, {}};
		New.Descriptor.FriendlyName = "Zoë's";
		New.Descriptor.bCanContainContent = true;
		FQVText Reason;
		const std::optional<FQVPluginInfo> Made = Found.CreateAndLoadNewPlugin(New, Reason);
		EXPECT_EQ(Made.has_value(), Reason.ToString().empty());
		return Files.Mask(Made ? Made->DescriptorPath : Reason.ToString());
	};
	EXPECT_EQ(Make("Hall-1", Location), "My Maps/Plugins/Hall-1/Hall-1.uplugin");
	EXPECT_TRUE(fs::is_directory(Files.OsPath("My Maps/Plugins/Hall-1/Content")));
	EXPECT_NE(
		Files.Get("My Maps/Plugins/Hall-1/Hall-1.uplugin").find("\"FriendlyName\": \"Zoë's\",\r\n"), std::string::npos)
		<< "UTF-8, whatever is in it";
	const std::pair<const char*, const char*> Refused[] = {
		{"", "A plugin needs a name."},
		{"3d", "The name of a plugin begins with a letter: '3d' does not."},
		{"a.b", "The name of a plugin has letters, digits, underscores and hyphens only: 'a.b' has others."},
		{"built", "There is a plugin 'Built' already: Engine/Plugins/Built/Built.uplugin."},
		{"Taken", "My Maps/Plugins/Taken is there already."},
	};
	for (const auto& [Name, Reason] : Refused)
	{
		EXPECT_EQ(Make(Name, Location), Reason) << Name;
	}
	EXPECT_EQ(Make("Elsewhere", Files("My Maps/Content")),
		"Plugins are not looked for in My Maps/Content: they go below My Maps/Plugins.");
	EXPECT_EQ(Make("Deep", Location + "/of a kind"), "My Maps/Plugins/of a kind/Deep/Deep.uplugin");
	EXPECT_EQ(Mounted, "Hall-1 Deep ");
	EXPECT_EQ(Before.size(), 1U) << "who reads it meanwhile keeps what it began with";
	EXPECT_EQ(Found.GetDiscovered().size(), 3U);
	EXPECT_TRUE(Found.FindPlugin("deep")->bEnabled && Found.FindPlugin("deep")->bCanContainContent);
}

TEST_F(Plugins, AreEnabledByPlaceDescriptorAndProjectList)
{
	const struct
	{
		const char* Folder;
		const char* Json;
		bool bEnabled;
	} Cases[] = {
		{"My Maps/Plugins/Plain", "{}", true},
		{"My Maps/Plugins/Off", R"({"EnabledByDefault": false})", false},
		{"My Maps/Plugins/OffButListed", R"({"EnabledByDefault": false})", true},
		{"My Maps/Plugins/ListedOff", R"({"EnabledByDefault": true})", false},
		{"My Maps/Plugins/Broken", "{", false},
		{"My Maps/Plugins/Marked", "\xEF\xBB\xBF{\"EnabledByDefault\": true}", true},
		{"Engine/Plugins/EngineOwn", "{}", false},
		{"Engine/Plugins/EngineOn", R"({"EnabledByDefault": true})", true},
		{"Engine/Plugins/EngineListed", "{}", true},
	};
	Files.Put("My Maps/My.uproject", R"({"Plugins": [{"Name": "offbutlisted", "Enabled": true},
		{"Name": "ListedOff", "Enabled": false}, {"Name": "EngineListed", "Enabled": true},
		{"Name": "Plain"}, {"Name": "Gone", "Enabled": true}, 7]})");
	for (const auto& Case : Cases)
	{
		PutPlugin(Case.Folder, Case.Json);
	}
	QVTest::FRecordingLog Log;
	for (const auto& Case : Cases)
	{
		const std::string Folder = Case.Folder;
		const auto Plugin = Found.FindPlugin(Folder.substr(Folder.rfind('/') + 1));
		ASSERT_TRUE(Plugin.has_value()) << Folder;
		EXPECT_EQ(Plugin->bEnabled, Case.bEnabled) << Folder;
	}
	EXPECT_EQ(Files.Logged(Log),
		FLines{"My Maps/Plugins/Broken/Broken.uplugin: line 1, column 2: no JSON could be read here"});
}

TEST_F(Plugins, AreFoundByNameWithoutCaseTheProjectsFirstAndRemembered)
{
	const std::string Descriptor = PutPlugin(
		"My Maps/Plugins/Cave", R"({"VersionName": "1.4", "CanContainContent": true, "FriendlyName": "Not the name"})");
	PutPlugin("Engine/Plugins/Cave", R"({"VersionName": "engine's"})");
	const auto Plugin = Found.FindPlugin("cAVE");
	ASSERT_TRUE(Plugin.has_value());
	EXPECT_EQ(Plugin->Name, "Cave");
	EXPECT_EQ(Plugin->BaseDir, Files("My Maps/Plugins/Cave"));
	EXPECT_EQ(Plugin->DescriptorPath, Descriptor);
	EXPECT_EQ(Plugin->VersionName, "1.4");
	EXPECT_TRUE(Plugin->bEnabled && Plugin->bCanContainContent);

	fs::remove_all(Files.OsPath("My Maps/Plugins"));
	PutPlugin("My Maps/Plugins/Late");
	EXPECT_TRUE(Found.FindPlugin("Cave").has_value()) << "an editor remembers what it started with";
	EXPECT_FALSE(Found.FindPlugin("Late").has_value());
	EXPECT_FALSE(Found.FindPlugin("").has_value());
}

TEST_F(Plugins, EnabledContentPluginsServePackages)
{
	const char* Content = R"({"CanContainContent": true})";
	PutPlugin("My Maps/Plugins/Cave", Content);
	PutPlugin("My Maps/Plugins/Code");
	PutPlugin("My Maps/Plugins/Off", R"({"CanContainContent": true, "EnabledByDefault": false})");
	PutPlugin("My Maps/Plugins/Broken", "{");
	PutPlugin("Engine/Plugins/Built", R"({"CanContainContent": true, "EnabledByDefault": true})");
	PutPlugin("Engine/Plugins/Cave", R"({"CanContainContent": true, "EnabledByDefault": true})");
	const FPackages Packages(Files("My Maps"), Files("Engine"), Found);
	const std::pair<const char*, const char*> Cases[] = {
		{"/Game/Maps/Hall", "My Maps/Content/Maps/Hall.umap"},
		{"/game/Hall", "My Maps/Content/Hall.umap"},
		{"/Engine/Basic/Cube", "Engine/Content/Basic/Cube.umap"},
		{"/Cave/Maps/Hall", "My Maps/Plugins/Cave/Content/Maps/Hall.umap"},
		{"/CAVE/Пещера", "My Maps/Plugins/Cave/Content/Пещера.umap"},
		{"/Built/x", "Engine/Plugins/Built/Content/x.umap"},
	};
	for (const auto& [Name, Expected] : Cases)
	{
		std::string File;
		EXPECT_TRUE(Packages.TryConvertLongPackageNameToFilename(Name, File, IQVPackages::MapPackageExtension));
		EXPECT_EQ(Files.Mask(File), Expected);
	}
	for (const char* Name : {"/Cavern/x", "/Cave", "Cave/x", "/Code/x", "/Off/x", "/Broken/x", "/Script/Engine", ""})
	{
		std::string File;
		EXPECT_FALSE(Packages.TryConvertLongPackageNameToFilename(Name, File, IQVPackages::MapPackageExtension))
			<< Name;
		EXPECT_EQ(File, "");
	}
	FLines Roots;
	for (const FMountPoint& Point : Packages.GetMountPoints())
	{
		Roots.push_back(Point.Root + " " + Files.Mask(Point.Folder));
	}
	EXPECT_EQ(
		Roots, (FLines{"/Game/ My Maps/Content/", "/Engine/ Engine/Content/", "/Cave/ My Maps/Plugins/Cave/Content/",
				   "/Built/ Engine/Plugins/Built/Content/", "/Cave/ Engine/Plugins/Cave/Content/"}));
}

TEST(StandaloneEngine, IsInstalledAsLongAsItLives)
{
	const FTestFiles Files;
	const FStandaloneEngine Engine(Files("My.uproject"), Files("Engine"));
	EXPECT_EQ(&FQVEngine::Get(), &Engine.Interfaces);
	EXPECT_EQ(FQVEngine::Get().Project->EngineDir(), Files("Engine"));
	EXPECT_FALSE(FQVEngine::Get().Dialogs->HasDesktop());
	EXPECT_FALSE(FQVEngine::Get().Dialogs->OpenFileDialog("", "").has_value());
	EXPECT_TRUE(FQVEngine::Get().GameThread->IsInGameThread());
	FQVEngine::Get().Editor->FinishAllCompilation();
}

TEST(RegistryFile, CountsPackagesOrNamesFileAndCause)
{
	QVFormats::FAssetRegistryBuilder Builder(true);
	for (const char* Asset : {"Rock", "Rock_1", "Grass"})
	{
		QVFormats::FRegistryAssetSpec Spec;
		Spec.PackageName = Asset[0] == 'R' ? "/Game/Rock" : "/Game/Grass";
		Spec.AssetName = Asset;
		Spec.ClassPath = "/Script/Engine.StaticMesh";
		Builder.AddAsset(Spec);
	}
	const auto Written = QVFormats::WriteAssetRegistry(Builder.Finish());
	ASSERT_TRUE(Written.IsOk());
	const std::string Good(reinterpret_cast<const char*>(Written->data()), Written->size());
	std::string Newer = Good;
	Newer[16] = 99;

	const FTestFiles Files;
	QVTest::FRecordingLog Log;
	std::int32_t Count = -1;
	EXPECT_TRUE(FRegistryFile().LoadFromDisk(Files.Put("good.bin", Good), Count));
	EXPECT_EQ(Count, 2);
	EXPECT_EQ(Files.Logged(Log), FLines());

	const struct
	{
		const char* Name;
		std::string Bytes;
		std::string Cause;
	} Cases[] = {
		{"empty.bin", "", "is empty, expected an asset registry"},
		{"cut.bin", Good.substr(0, Good.size() - 1),
			"is cut short or damaged in its package data (asset registry of version 17, " +
				std::to_string(Good.size() - 1) + " bytes)"},
		{"other.bin", std::string(100, 'x'), "is not an asset registry: it does not begin with the guid of one"},
		{"newer.bin", Newer, "is an asset registry of version 99, newer than this program knows (24)"},
		{"lfs.bin", "version https://git-lfs.github.com/spec/v1\n",
			"is a Git LFS pointer: fetch the file with git lfs pull"},
	};
	for (const auto& Case : Cases)
	{
		Count = -1;
		EXPECT_FALSE(FRegistryFile().LoadFromDisk(Files.Put(Case.Name, Case.Bytes), Count)) << Case.Name;
		EXPECT_EQ(Count, -1) << Case.Name;
		EXPECT_EQ(Files.Logged(Log), FLines{std::string(Case.Name) + " " + Case.Cause});
	}
	EXPECT_FALSE(FRegistryFile().LoadFromDisk(Files("gone.bin"), Count));
	EXPECT_EQ(Files.Logged(Log), FLines{"gone.bin could not be opened: No such file or directory"});
}
