// SPDX-License-Identifier: MIT
#include "Interface/QVMapModWizard.h"

#include "Tests/Interface/InterfaceTest.h"
#include "Workspace/QVMapConfig.h"

using namespace QVTest;

namespace
{
constexpr const char* Template = "/QUARVEL/Templates/Start";

struct FModWizard : FInterfaceTest
{
	FModWizard()
	{
		FQVMapConfig::SetMapTemplatePath("");
		Recording.Take();
		// as an editor does it: the file is there before the level is open
		Editor.OnLevel = [this](const std::string&)
		{
			Project.Write("Plugins/Cave/Content/Maps/Cave.umap", "map");
			return true;
		};
	}
	std::string Create(const FQVCreateModRequest& Request = {"Cave", "Zoë", "A \"dark\" place"})
	{
		const FQVCreateModResult Result = FQVMapModWizard::CreateMod(Request);
		EXPECT_EQ(Result.ModName, Request.Name);
		EXPECT_EQ(Result.bCreated, Result.ErrorMessage.ToString().empty());
		return std::string(Result.bCreated ? "created" : "") + (Result.bFolderCreated ? "folder" : "") + " " +
			   Result.MapPackagePath + " " + Say(Result.ErrorMessage);
	}
	std::string Refusal(const std::string& Name)
	{
		FQVText Error;
		const bool bGood = FQVMapModWizard::ValidateNewModName(Name, Error);
		EXPECT_EQ(bGood, Error.ToString().empty());
		return Say(Error);
	}
};

const std::string Rule = "Allowed: letters, numbers, underscore, hyphen.";
} // namespace

TEST_F(FModWizard, KnowsWhereThingsOfAMapLie)
{
	EXPECT_EQ(Project.Mask(FQVMapModWizard::GetModContentDir("Cave")), "<Project>/Plugins/Cave/Content");
	EXPECT_EQ(Project.Mask(FQVMapModWizard::GetModDescriptorPath("Cave")), "<Project>/Plugins/Cave/Cave.uplugin");
	EXPECT_EQ(FQVMapModWizard::GetMapPackagePath("Cave"), "/Cave/Maps/Cave");
	EXPECT_EQ(Project.Mask(FQVMapModWizard::GetMapFilePath("Cave")), "<Project>/Plugins/Cave/Content/Maps/Cave.umap");
}

TEST_F(FModWizard, TakesOnlyNamesThatNobodyHas)
{
	Project.AddMod("Harbor", {"Maps/Pier"});
	Project.MakeFolder("Plugins/Leftover");
	Project.Write("Plugins/Aside/Aside.uplugin.disabled", "{}");
	const struct
	{
		const char* Name;
		std::string Refusal;
	} Cases[] = {
		{"Cave", ""},
		{"a_b-1", ""},
		{"Höhle", ""},
		{"", "Plugin name cannot be empty."},
		{"a b", "Plugin name 'a b' contains invalid character ' '. " + Rule},
		{"a/b", "Plugin name 'a/b' contains invalid character '/'. " + Rule},
		{"..", "Plugin name '..' contains invalid character '.'. " + Rule},
		{"GAME", "Plugin name 'GAME' is reserved and cannot be used for mods."},
		{"quarvel", "Plugin name 'quarvel' is reserved and cannot be used for mods."},
		{"7up", "The name of a plugin begins with a letter: '7up' does not."},
		{"_x", "The name of a plugin begins with a letter: '_x' does not."},
		{"harbor", "There is a plugin 'Harbor' already: <Project>/Plugins/Harbor/Harbor.uplugin."},
		{"Leftover", "FolderExists: A map called 'Leftover' already exists.\n\nPick a different name, or delete "
					 "Plugins/Leftover/ first."},
		{"Aside",
			"FolderExists: A map called 'Aside' already exists.\n\nPick a different name, or delete Plugins/Aside/ "
			"first."},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(Refusal(Case.Name), Case.Refusal) << Case.Name;
	}
}

TEST_F(FModWizard, TellsALeftoverDescriptorWhereItsFolderCannotBeSeen)
{
	struct FHidingFiles : FFaultyFiles
	{
		using FFaultyFiles::FFaultyFiles;
		bool DirectoryExists(std::string_view) const override { return false; }
	} Hiding(Files);
	Engine.Interfaces.Files = &Hiding;
	Project.Write("Plugins/Aside/Aside.uplugin.disabled", "{}");
	EXPECT_EQ(Refusal("Aside"),
		"DisabledDescriptorExists: 'Aside' is left over from an interrupted base release build.\n\nRename "
		"<Project>/Plugins/Aside/Aside.uplugin.disabled back to Aside.uplugin, or delete the folder, before reusing "
		"this name.");
}

TEST_F(FModWizard, MakesAPluginWithAnOpenLevel)
{
	EXPECT_TRUE(FQVMapMods::GetMods(false).Mods.empty());
	Recording.Take();
	EXPECT_EQ(Create(), "created /Cave/Maps/Cave ");
	EXPECT_EQ(Editor.TakeAsked(), "save prompt maps content declinable\nnew /Cave/Maps/Cave\nsave maps declinable\n");
	EXPECT_EQ(Logged(), "QVMap: Created and mounted mod plugin Cave\n"
						"QVMap: Saving newly created starter map to <Project>/Plugins/Cave/Content/Maps/Cave.umap\n"
						"QVMap: SaveDirtyPackages returned true, file exists on disk: true\n"
						"QVMap: Created mod 'Cave' with starter map /Cave/Maps/Cave\n");
	EXPECT_EQ(Project.FilesIn("Plugins/Cave"), (std::vector<std::string>{"Cave.uplugin", "Content/Maps/Cave.umap"}));
	EXPECT_EQ(Project.Read("Plugins/Cave/Cave.uplugin"),
		"{\r\n\t\"FileVersion\": 3,\r\n\t\"Version\": 1,\r\n\t\"VersionName\": \"1.0\",\r\n\t\"FriendlyName\": "
		"\"Cave\",\r\n\t\"Description\": \"A \\\"dark\\\" place\",\r\n\t\"Category\": \"QVMap Mods\",\r\n\t"
		"\"CreatedBy\": \"Zoë\",\r\n\t\"CreatedByURL\": \"\",\r\n\t\"DocsURL\": \"\",\r\n\t\"MarketplaceURL\": "
		"\"\",\r\n\t\"SupportURL\": \"\",\r\n\t\"CanContainContent\": true,\r\n\t\"IsBetaVersion\": false,\r\n\t"
		"\"IsExperimentalVersion\": false,\r\n\t\"Installed\": false\r\n}");
	EXPECT_EQ(FQVMapMods::GetMods(false).ModCount, 1) << "the map list has it at once";
	EXPECT_EQ(Create(), " "
						" There is a plugin 'Cave' already: <Project>/Plugins/Cave/Cave.uplugin.");
}

TEST_F(FModWizard, CopiesTheTemplateThatIsConfigured)
{
	Project.Write("Plugins/QUARVEL/Content/Templates/Start.umap", "template");
	FQVMapConfig::SetMapTemplatePath(Template);
	Recording.Take();
	EXPECT_EQ(Create(), "created /Cave/Maps/Cave ");
	EXPECT_EQ(Editor.TakeAsked(),
		"save prompt maps content declinable\nnew /Cave/Maps/Cave from /QUARVEL/Templates/Start\nsave maps "
		"declinable\n");
}

TEST_F(FModWizard, SaysThatTheTemplateIsMissing)
{
	FQVMapConfig::SetMapTemplatePath(Template);
	Recording.Take();
	EXPECT_EQ(Create(), "created /Cave/Maps/Cave ");
	EXPECT_NE(Editor.TakeAsked().find("\nnew /Cave/Maps/Cave\n"), std::string::npos);
	EXPECT_TRUE(Logged().starts_with(
		"QVMap: Created and mounted mod plugin Cave\nQVMap: Map template '/QUARVEL/Templates/Start' not found - "
		"creating an empty level instead\n"));
}

TEST_F(FModWizard, StopsBeforeAnythingIsMade)
{
	const std::string Building =
		"  CreateModDuringBuild: A base release build is in progress.\n\nWait for it to finish before creating a map - "
		"anything created during a build gets cooked into the base release.";
	BeginBuild();
	EXPECT_EQ(Create({"a b", "", ""}), Building) << "a build comes before a bad name";
	EndBuild();
	Engine.Interfaces.Editor = nullptr;
	EXPECT_EQ(Create({"a b", "", ""}), "  Plugin name 'a b' contains invalid character ' '. " + Rule);
	EXPECT_EQ(Create(), "  NoEditor: The editor is not available.");
	Engine.Interfaces.Editor = &Editor;
	Editor.bSaves = false;
	EXPECT_EQ(Create(), "  CreateModCancelled: Cancelled - nothing was created.");
	EXPECT_EQ(Editor.TakeAsked(), "save prompt maps content declinable\n");
	EXPECT_FALSE(Project.Exists("Plugins/Cave"));
	EXPECT_EQ(Logged(), "");
}

TEST_F(FModWizard, TellsWhyThereIsNoPlugin)
{
	struct FRefusingPlugins : IQVPlugins
	{
		FQVText Reason;
		std::optional<FQVPluginInfo> FindPlugin(std::string_view) const override { return std::nullopt; }
		bool ValidateNewPluginNameAndLocation(std::string_view, std::string_view, FQVText&) const override
		{
			return true;
		}
		std::optional<FQVPluginInfo> CreateAndLoadNewPlugin(const FQVNewPlugin&, FQVText& OutReason) override
		{
			OutReason = Reason;
			return std::nullopt;
		}
	} Refusing;
	Engine.Interfaces.Plugins = &Refusing;
	EXPECT_EQ(Create(), "  CreatePluginFailed: Could not create the map 'Cave'.");
	EXPECT_EQ(Logged(), "Error: QVMap: Mod plugin creation failed: Could not create the map 'Cave'.\n");
	Refusing.Reason = FQVText::FromString("No room.");
	EXPECT_EQ(Create(), "  No room.");
	EXPECT_EQ(Logged(), "Error: QVMap: Mod plugin creation failed: No room.\n");
	EXPECT_EQ(Editor.TakeAsked(), "save prompt maps content declinable\nsave prompt maps content declinable\n");
}

TEST_F(FModWizard, TellsThatThePluginHasNoMap)
{
	const std::string Remedy = "Create a level yourself and save it into Plugins/Cave/Content/Maps/ - the folder is "
							   "ignored until it holds a map.";
	Editor.bHasLevelEditor = false;
	EXPECT_EQ(Create(),
		"folder /Cave/Maps/Cave NoLevelSubsystem: The folder for 'Cave' was created, but the map could not be "
		"added.\n\n" +
			Remedy);
	EXPECT_EQ(Logged(), "QVMap: Created and mounted mod plugin Cave\n");

	Editor.bHasLevelEditor = true;
	Editor.OnLevel = [](const std::string&) { return false; };
	const FQVCreateModResult Result = FQVMapModWizard::CreateMod({"Harbor", "", ""});
	EXPECT_TRUE(Result.bFolderCreated && !Result.bCreated);
	EXPECT_EQ(Say(Result.ErrorMessage),
		"NewLevelFailed: The folder for 'Harbor' was created, but the map could not be saved to "
		"/Harbor/Maps/Harbor.\n\nCreate a level yourself and save it into Plugins/Harbor/Content/Maps/ - the folder "
		"is ignored until it holds a map.");
	EXPECT_EQ(Logged(), "QVMap: Created and mounted mod plugin Harbor\n"
						"Error: QVMap: NewLevel failed for /Harbor/Maps/Harbor\n");
	EXPECT_TRUE(Project.Exists("Plugins/Harbor/Harbor.uplugin"));
}

TEST_F(FModWizard, RefusesALevelWithWorldPartition)
{
	Editor.World.bWorldPartition = true;
	const std::string Message =
		"'/Cave/Maps/Cave' was created as a World Partition map, which QVMap cannot pack.\n\nTurn off World "
		"Partition for new levels in Project Settings, then delete and recreate this map.";
	EXPECT_EQ(Create(), " /Cave/Maps/Cave NewLevelIsWorldPartition: " + Message);
	EXPECT_EQ(Logged(), "QVMap: Created and mounted mod plugin Cave\nError: QVMap: " + Message + "\n");
	EXPECT_EQ(Editor.TakeAsked(), "save prompt maps content declinable\nnew /Cave/Maps/Cave\n") << "no further save";
	EXPECT_TRUE(Project.Exists("Plugins/Cave/Cave.uplugin"));
}

TEST_F(FModWizard, AStarterThatIsNotSavedIsCreatedAllTheSame)
{
	Editor.OnLevel = nullptr;
	EXPECT_EQ(Create(), "created /Cave/Maps/Cave ");
	EXPECT_NE(Logged().find("file exists on disk: false\n"), std::string::npos);

	struct FWorldlessEditor : FScriptedEditor
	{
		const IQVWorld* GetOpenWorld() const override { return nullptr; }
	} Worldless;
	Engine.Interfaces.Editor = &Worldless;
	EXPECT_TRUE(FQVMapModWizard::CreateMod({"Harbor", "", ""}).bCreated);
	EXPECT_EQ(Logged(), "QVMap: Created and mounted mod plugin Harbor\n"
						"Warning: QVMap: NewWorld is null after NewLevelFromTemplate/NewLevel; cannot save starter "
						"map\nQVMap: Created mod 'Harbor' with starter map /Harbor/Maps/Harbor\n");
}
