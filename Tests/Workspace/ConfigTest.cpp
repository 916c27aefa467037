// SPDX-License-Identifier: MIT
#include "Workspace/QVMapConfig.h"

#include "Engine/QVDialogs.h"
#include "Tests/Support/ScriptedDialogs.h"
#include "Tests/Support/ToolkitTest.h"

using FConfigTest = QVTest::FToolkitTest;

namespace
{
constexpr std::string_view ConfigFile = "Saved/QVPak/config.json";
const std::string Saved = "QVMap: Config saved to <Project>/Saved/QVPak/config.json\n";
const std::string UnreadableConfig = "Warning: Failed to parse config file: <Project>/Saved/QVPak/config.json\n";

using FConfig = FQVMapConfig;

struct FRow
{
	const char* Key;
	const char* LogName;
	/** As JSON. */
	std::string Default;
	std::string Other;
	std::function<FQVJson()> Get;
	std::function<void()> Set;
};

FRow BoolRow(const char* Key, const char* LogName, bool bDefault, bool (*Get)(), void (*Set)(bool))
{
	return {Key, LogName, bDefault ? "true" : "false", bDefault ? "false" : "true", [Get] { return FQVJson(Get()); },
		[Set, bDefault] { Set(!bDefault); }};
}

FRow TextRow(const char* Key, const char* LogName, const std::string& Default, std::string (*Get)(),
	void (*Set)(std::string_view))
{
	return {Key, LogName, "\"" + Default + "\"", "\"C:/Spiele/x y.exe\"", [Get] { return FQVJson(Get()); },
		[Set] { Set("C:/Spiele/x y.exe"); }};
}

std::vector<FRow> AllRows()
{
	return {
		TextRow("game_exe_path", "Game exe", "", FConfig::GetGameExePath, FConfig::SetGameExePath),
		BoolRow("verbose_logging", "Verbose logging", false, FConfig::GetVerboseLogging, FConfig::SetVerboseLogging),
		BoolRow("filter_unused_assets", "Filter unused assets", false, FConfig::GetFilterUnusedAssets,
			FConfig::SetFilterUnusedAssets),
		BoolRow("import_external_assets", "Import external assets", true, FConfig::GetImportExternalAssets,
			FConfig::SetImportExternalAssets),
		BoolRow("always_export_as_mod", "Always export as mod", false, FConfig::GetAlwaysExportAsMod,
			FConfig::SetAlwaysExportAsMod),
		BoolRow("use_demo_appid", "Use demo app id", false, FConfig::GetUseDemoAppId, FConfig::SetUseDemoAppId),
		BoolRow("runtime_console", "Runtime console", false, FConfig::GetRuntimeConsole, FConfig::SetRuntimeConsole),
		BoolRow("show_setup_on_startup", "Show setup on startup", true, FConfig::GetShowSetupOnStartup,
			FConfig::SetShowSetupOnStartup),
		TextRow("new_mod_author", "New mod author", "", FConfig::GetNewModAuthor, FConfig::SetNewModAuthor),
		TextRow("map_template_path", "Map template path", "/QUARVEL/Templates/DefaultMapTemplate",
			FConfig::GetMapTemplatePath, FConfig::SetMapTemplatePath),
	};
}
} // namespace

TEST_F(FConfigTest, EveryKeyHasItsDefaultAndItsSetter)
{
	for (const FRow& Row : AllRows())
	{
		EXPECT_EQ(Row.Get().ToPrettyString(), Row.Default) << Row.Key;
		EXPECT_FALSE(Project.Exists("Saved")) << Row.Key;
		Row.Set();
		EXPECT_EQ(Row.Get().ToPrettyString(), Row.Other) << Row.Key;
		EXPECT_EQ(Project.Read(ConfigFile), QVPrintf("{\r\n\t\"%s\": %s\r\n}", Row.Key, Row.Other));
		EXPECT_EQ(Logged(),
			Saved + QVPrintf("QVMap: %s set to: %s\n", Row.LogName, FQVString::ReplaceAll(Row.Other, "\"", "")));

		const FQVMapSetting* Setting = FConfig::FindSetting(Row.Key);
		ASSERT_NE(Setting, nullptr) << Row.Key;
		EXPECT_TRUE(FConfig::IsSet(*Setting));
		EXPECT_TRUE(FConfig::Reset(*Setting) && !FConfig::IsSet(*Setting));
		EXPECT_EQ(FConfig::Get(*Setting).ToPrettyString(), Row.Default);
		EXPECT_EQ(Logged(), Saved + QVPrintf("QVMap: %s reset to its default\n", Row.LogName));
		Project.Remove("Saved");
	}
	EXPECT_EQ(FConfig::GetSettings().size(), AllRows().size());
	EXPECT_EQ(FConfig::FindSetting("Verbose_Logging"), nullptr);
}

TEST_F(FConfigTest, ASetterKeepsWhatElseTheFileHolds)
{
	Project.Write(ConfigFile, R"({"mine": {"deep": [1, 2]}, "verbose_logging": false, "other": "x"})");
	FConfig::SetVerboseLogging(true);
	FConfig::SetNewModAuthor("Zoe \"Z\"");
	EXPECT_EQ(Project.Read(ConfigFile),
		"{\r\n\t\"mine\":\r\n\t{\r\n\t\t\"deep\": [ 1, 2 ]\r\n\t},\r\n\t\"verbose_logging\": true,\r\n\t\"other\": "
		"\"x\",\r\n\t\"new_mod_author\": \"Zoe \\\"Z\\\"\"\r\n}");
	FConfig::SetNewModAuthor("Zoë");
	EXPECT_EQ(Project.Read(ConfigFile).substr(0, 4), std::string("\xFF\xFE{\0", 4)) << "no longer ASCII, so UTF-16";
	EXPECT_EQ(FConfig::GetNewModAuthor(), "Zoë");
}

TEST_F(FConfigTest, ReadsAHandEditAtOnceAndConvertsWhatItFinds)
{
	const struct
	{
		const char* Json;
		bool bVerbose;
		bool bImport;
		const char* Author;
	} Cases[] = {
		{"{}", false, true, ""},
		{R"({"verbose_logging": true, "import_external_assets": false, "new_mod_author": "Z"})", true, false, "Z"},
		{R"({"verbose_logging": "Yes", "import_external_assets": "off", "new_mod_author": 7})", true, false, "7"},
		{R"({"verbose_logging": 1, "import_external_assets": 0, "new_mod_author": ["Z"]})", true, false, ""},
		{"\xEF\xBB\xBF{\"verbose_logging\": true}", true, true, ""},
	};
	for (const auto& Case : Cases)
	{
		Project.Write(ConfigFile, Case.Json);
		EXPECT_EQ(FConfig::GetVerboseLogging(), Case.bVerbose) << Case.Json;
		EXPECT_EQ(FConfig::GetImportExternalAssets(), Case.bImport) << Case.Json;
		EXPECT_EQ(FConfig::GetNewModAuthor(), Case.Author) << Case.Json;
	}
	EXPECT_EQ(Logged(), "");
}

TEST_F(FConfigTest, ABrokenFileWarnsAtEachReadUntilASetterReplacesIt)
{
	for (const char* Text : {"[1,2]", "{\"verbose_logging\": tru", "", "\"x\"", "null"})
	{
		Project.Write(ConfigFile, Text);
		EXPECT_TRUE(FConfig::GetImportExternalAssets()) << Text;
		EXPECT_EQ(FConfig::GetMapTemplatePath(), "/QUARVEL/Templates/DefaultMapTemplate") << Text;
		EXPECT_EQ(Logged(), UnreadableConfig + UnreadableConfig) << Text;
		EXPECT_EQ(Project.Read(ConfigFile), Text);
		FConfig::SetRuntimeConsole(true);
		EXPECT_EQ(Logged(), UnreadableConfig + Saved + "QVMap: Runtime console set to: true\n") << Text;
		EXPECT_EQ(Project.Read(ConfigFile), "{\r\n\t\"runtime_console\": true\r\n}");
	}
}

TEST_F(FConfigTest, ClearGameExePathTouchesOnlyAFileThatHasIt)
{
	FConfig::ClearGameExePath();
	EXPECT_FALSE(Project.Exists("Saved"));
	Project.Write(ConfigFile, "{\"other\": 1}");
	FConfig::ClearGameExePath();
	EXPECT_EQ(Project.Read(ConfigFile), "{\"other\": 1}");
	EXPECT_EQ(Logged(), "");
	Project.Write(ConfigFile, R"({"game_exe_path": "x", "other": 1})");
	FConfig::ClearGameExePath();
	EXPECT_EQ(Project.Read(ConfigFile), "{\r\n\t\"other\": 1\r\n}");
	EXPECT_EQ(Logged(), Saved + "QVMap: Game exe path cleared\n");
}

TEST_F(FConfigTest, AnUnwritableWorkFolderIsAnErrorInTheLogOnly)
{
	Project.Write("Saved", "a file in the folder's place");
	FConfig::SetUseDemoAppId(true);
	EXPECT_EQ(Logged(), "Error: Failed to save config to: <Project>/Saved/QVPak/config.json\n"
						"QVMap: Use demo app id set to: true\n");
	EXPECT_FALSE(FConfig::GetUseDemoAppId());
	EXPECT_FALSE(FConfig::Set(*FConfig::FindSetting("use_demo_appid"), true));
}

TEST_F(FConfigTest, PickGameExeStoresTheChoiceAsItWasGiven)
{
	QVTest::FScriptedDialogs Dialogs;
	Engine.Interfaces.Dialogs = &Dialogs;
	for (const std::optional<std::string>& Nothing : {std::optional<std::string>(), std::optional(std::string())})
	{
		Dialogs.Answer = Nothing;
		EXPECT_EQ(FConfig::PickGameExe(), "");
	}
	EXPECT_EQ(Dialogs.Asked, "Select Game Executable, Executable Files (*.exe)|*.exe");
	EXPECT_EQ(Logged(), "");
	EXPECT_FALSE(Project.Exists("Saved"));

	Dialogs.Answer = "..\\Games/QUARVEL.exe";
	EXPECT_EQ(FConfig::PickGameExe(), "..\\Games/QUARVEL.exe");
	EXPECT_EQ(FConfig::GetGameExePath(), "..\\Games/QUARVEL.exe");
	EXPECT_EQ(Logged(), Saved + "QVMap: Game exe set to: ..\\Games/QUARVEL.exe\n");

	Dialogs.bDesktop = false;
	EXPECT_EQ(FConfig::PickGameExe(), "");
	EXPECT_EQ(Logged(), "Error: QVMap: Desktop platform not available\n");
}
