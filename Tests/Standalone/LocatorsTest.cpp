// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Descriptor.h"
#include "Standalone/Engine/EngineLocator.h"
#include "Standalone/Engine/Project.h"
#include "Standalone/Engine/ProjectLocator.h"
#include "Tests/Standalone/TestFiles.h"

#include <cstdlib>
#include <gtest/gtest.h>

using namespace QVStandalone;

namespace
{
/** Engines on disk, and a project that asks for one of them. */
class EngineLocator : public testing::Test
{
protected:
	FTestFiles Files;
	const char* OldConfig = std::getenv("XDG_CONFIG_HOME");
	FEngineSearch Search;

	void SetUp() override
	{
		for (const char* Engine : {"UE 5.4/Engine", "bundled/Engine", "source build/Engine"})
		{
			std::filesystem::create_directories(Files.OsPath(Engine) / "Binaries/Win64");
		}
		Search.Bundled = Files("bundled/Engine");
		Files.Put("config/Epic/UnrealEngine/Install.ini", "[Installations]\r\nUE_5.4=" + Files("UE 5.4") +
															  "\r\n{0-AB}=" + Files("source build") +
															  "\r\nUE_5.3=" + Files("removed") + "\r\n");
		::setenv("XDG_CONFIG_HOME", Files("config").c_str(), 1);
	}
	void TearDown() override
	{
		OldConfig != nullptr ? ::setenv("XDG_CONFIG_HOME", OldConfig, 1) : ::unsetenv("XDG_CONFIG_HOME");
	}

	/** Each attempt as "where: outcome", then the error or the folder. */
	std::string Find()
	{
		const FEngineLocation Found = FindEngine(Search);
		std::string Story;
		for (const FEngineAttempt& Attempt : Found.Tried)
		{
			Story += Attempt.Where + ": " + Attempt.Outcome + "; ";
		}
		EXPECT_NE(Found.EngineDir.empty(), Found.Error.empty());
		return Files.Mask(Story + Found.Error + Found.EngineDir + (Found.bBundled ? " (bundled)" : ""));
	}
};

std::string ListOf(const std::vector<FInstalledEngine>& Engines)
{
	std::string List;
	for (const FInstalledEngine& Engine : Engines)
	{
		List += Engine.Identifier + " in " + Engine.Root + ";";
	}
	return List;
}
} // namespace

TEST(Descriptor, IsAJsonObjectOrAReasonInTheLog)
{
	const FTestFiles Files;
	QVTest::FRecordingLog Log;
	EXPECT_EQ(LoadDescriptor(Files.Put("marked.uplugin", "\xEF\xBB\xBF{}")), FQVJson::Object());
	EXPECT_EQ(LoadDescriptor(Files.Put("wide.uplugin", {"\xFF\xFE{\0}\0", 6})), FQVJson::Object());
	EXPECT_EQ(LoadDescriptor(Files("gone.uplugin")), std::nullopt);
	EXPECT_EQ(Files.Logged(Log), FLines());
	EXPECT_EQ(LoadDescriptor(Files.Put("b.uplugin", "{\n\"A\": }")), std::nullopt);
	EXPECT_EQ(LoadDescriptor(Files.Put("c.uplugin", "[1]")), std::nullopt);
	EXPECT_EQ(Files.Logged(Log),
		(FLines{"b.uplugin: line 2, column 6: no JSON could be read here", "c.uplugin: expected a JSON object"}));
}

TEST(ProjectLocator, TakesTheOneProjectThatIsNamedOrNearest)
{
	const FTestFiles Files;
	for (const char* File : {"Карты/Outer.uproject", "Карты/Inner/Inner.UPROJECT", "Карты/Inner/Plugins/Cave/notes.txt",
			 "Карты/Other/folder.uproject/x", "two/B.uproject", "two/A.uproject"})
	{
		Files.Put(File, "");
	}
	const char* None = "no mapping project found: neither gone/x nor a folder above it holds a .uproject file. Go into "
					   "your project, or name it with --project <file>";
	const char* Two =
		"two holds 2 .uproject files (A.uproject, B.uproject): name the one you mean with --project <file>";
	const struct
	{
		FProjectLocation (*Find)(std::string_view);
		const char* Start;
		const char* Outcome;
	} Cases[] = {
		{FindProjectAbove, "Карты", "Карты/Outer.uproject"},
		{FindProjectAbove, "Карты/Other", "Карты/Outer.uproject"},
		{FindProjectAbove, "Карты/gone/further", "Карты/Outer.uproject"},
		{FindProjectAbove, "Карты/Inner/Plugins/Cave", "Карты/Inner/Inner.UPROJECT"},
		{FindProjectAbove, "two/below", Two},
		{FindProjectAbove, "gone/x", None},
		{FindNamedProject, "Карты/Inner/Inner.UPROJECT", "Карты/Inner/Inner.UPROJECT"},
		{FindNamedProject, "Карты/Inner", "Карты/Inner/Inner.UPROJECT"},
		{FindNamedProject, "Карты/Inner/Plugins/Cave/notes.txt",
			"Карты/Inner/Plugins/Cave/notes.txt is not a .uproject file: --project takes a .uproject file or the "
			"folder "
			"that holds it"},
		{FindNamedProject, "gone.uproject",
			"gone.uproject is not there: --project takes a .uproject file or the folder that holds it"},
		{FindNamedProject, "Карты/Inner/Plugins", "Карты/Inner/Plugins holds no .uproject file"},
		{FindNamedProject, "two", Two},
	};
	for (const auto& Case : Cases)
	{
		const FProjectLocation Found = Case.Find(Files(Case.Start));
		EXPECT_NE(Found.ProjectFile.empty(), Found.Error.empty());
		EXPECT_EQ(Files.Mask(Found.ProjectFile + Found.Error), Case.Outcome) << Case.Start;
	}
}

TEST_F(EngineLocator, ANamedFolderIsTakenOrAnError)
{
	Search.FromEnvironment = Files("source build");
	EXPECT_EQ(Find(), "QVMAP_ENGINE_DIR: taken: source build/Engine; source build/Engine");
	Search.FromEnvironment = Files.Put("file", "");
	EXPECT_EQ(Find(),
		"QVMAP_ENGINE_DIR: file is not there; QVMAP_ENGINE_DIR names file, which is not a folder: give the "
		"engine's folder, the one that holds Binaries/Win64");
	Search.Named = Files("UE 5.4/Engine");
	EXPECT_EQ(Find(), "--engine: taken: UE 5.4/Engine; UE 5.4/Engine") << "the option counts before the environment";
	Search.Named = Files("gone");
	EXPECT_EQ(Find(),
		"--engine: gone is not there; --engine names gone, which is not a folder: give the engine's folder, "
		"the one that holds Binaries/Win64");
}

TEST_F(EngineLocator, TheProjectNamesAFolderOrAnInstalledEngine)
{
	const std::string Ini = " in config/Epic/UnrealEngine/Install.ini: ";
	const std::string Bundled = "bundled engine: taken: bundled/Engine; bundled/Engine (bundled)";
	const std::pair<std::string, std::string> Cases[] = {
		{"5.4", "\"5.4\"" + Ini + "taken: UE 5.4/Engine; UE 5.4/Engine"},
		{"ue_5.4", "\"ue_5.4\"" + Ini + "taken: UE 5.4/Engine; UE 5.4/Engine"},
		{"{0-ab}", "\"{0-ab}\"" + Ini + "taken: source build/Engine; source build/Engine"},
		{"../source build", "\"../source build\": taken: source build/Engine; source build/Engine"},
		{Files("UE 5.4"), "\"UE 5.4\": taken: UE 5.4/Engine; UE 5.4/Engine"},
		{"../gone", "\"../gone\": gone is not there; " + Bundled},
		{"5.3", "\"5.3\"" + Ini + "removed is not there; " + Bundled},
		{"5", "\"5\"" + Ini + "not listed there; " + Bundled},
	};
	for (const auto& [Association, Story] : Cases)
	{
		Search.ProjectFile = Files.Put("My Maps/My.uproject", "{\"EngineAssociation\": \"" + Association + "\"}");
		EXPECT_EQ(Find(), "EngineAssociation " + Story);
	}
	Files.Put("My Maps/My.uproject", "{}");
	EXPECT_EQ(Find(), "EngineAssociation: the project names no engine; " + Bundled);
	Search.Bundled.clear();
	EXPECT_EQ(Find(), "EngineAssociation: the project names no engine; bundled engine: there is none; no engine found: "
					  "name its folder with --engine <folder> or QVMAP_ENGINE_DIR");
}

TEST(InstallRecords, AreReadFromBothForms)
{
	EXPECT_EQ(ListOf(ParseInstallIni(
				  "A=/before\n[Other]\nB=/b\n\n[installations]\n; C=/c\nUE_5.4=/opt/UE=5\nD\n[Else]\nE=/e\n")),
		"UE_5.4 in /opt/UE=5;");
	EXPECT_EQ(ListOf(ParseLauncherInstalled(
				  R"({"InstallationList": [{"InstallLocation": "C:\\UE_5.4", "AppName": "UE_5.4"},
				      {"InstallLocation": "C:\\Game", "AppName": "Quarvel"}, 7, {"AppName": "ue_5.3"}]})")),
		"UE_5.4 in C:\\UE_5.4;ue_5.3 in ;");
	for (const char* Text : {"", "{", "[]", "{\"InstallationList\": {}}", "{\"InstallationList\": \"UE_5.4\"}"})
	{
		EXPECT_EQ(ListOf(ParseLauncherInstalled(Text)) + ListOf(ParseInstallIni(Text)), "") << Text;
	}
}

TEST(Project, TellsFoldersAndTheEnginesVersion)
{
	const FTestFiles Files;
	const FProject Project(Files("My Maps/My.uproject"), Files("Engine"));
	EXPECT_EQ(Project.ProjectDir(), Files("My Maps"));
	EXPECT_EQ(Project.GetProjectFilePath(), Files("My Maps/My.uproject"));
	EXPECT_EQ(Project.EngineDir(), Files("Engine"));
	EXPECT_EQ(Project.DevelopmentAssetRegistryFilename(), "DevelopmentAssetRegistry.bin");

	QVTest::FRecordingLog Log;
	Files.Put("Engine/Build/Build.version", R"({"MajorVersion": 5, "MinorVersion": 4, "PatchVersion": 4})");
	EXPECT_EQ(Project.EngineVersion(), "5.4.4");
	EXPECT_EQ(Files.Logged(Log), FLines());
	Files.Put("Engine/Build/Build.version", R"({"MinorVersion": 4})");
	EXPECT_EQ(Project.EngineVersion(), "5.4.0");
	EXPECT_EQ(Files.Logged(Log), FLines{"Engine/Build/Build.version tells no engine version; 5.4.0 is taken"});
}
