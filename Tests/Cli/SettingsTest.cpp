// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"

#include <nlohmann/json.hpp>

using namespace QVTest;

namespace
{
class FSettings : public FCliTest
{
protected:
	const std::filesystem::path Config = "Saved/QVPak/config.json";

	void SetUp() override { EnterSample(); }
};
} // namespace

TEST_F(FSettings, AreListedStoredAndReset)
{
	const std::string Before = "game_exe_path =                         (default)  Path of the game's executable, for "
							   "launching it directly.\n";
	const std::string Between =
		"filter_unused_assets = false            (default)  Keep files out of the pak that no map uses.\n"
		"import_external_assets = true           (default)  Bring content from outside the map's folder in for "
		"packing.\n"
		"always_export_as_mod = false            (default)  Skip the unsupported-content gate.\n"
		"use_demo_appid = false                  (default)  Launch the game's demo app instead of the full game.\n"
		"runtime_console = false                 (default)  Start the game with its console.\n"
		"show_setup_on_startup = true            (default)  Open the setup window at editor start.\n";
	const std::string After =
		"map_template_path = /QUARVEL/Templates/DefaultMapTemplate (default)  Asset that new maps are copied from.\n";
	Expect({"settings", "list"}, 0,
		Before + "verbose_logging = false                 (default)  Detailed packing logs.\n" + Between +
			"new_mod_author =                        (default)  Author remembered for new maps.\n" + After,
		"");
	Put(Config, R"({"mine": [ 1, "two" ], "show_setup_on_startup": true})");
	Expect({"settings", "set", "verbose_logging", "YES"}, 0, "verbose_logging = true\n", "");
	Expect({"settings", "set", "new_mod_author", "Zoë 鍾"}, 0, "new_mod_author = Zoë 鍾\n", "");
	Expect({"settings", "reset", "show_setup_on_startup"}, 0, "show_setup_on_startup = true\n", "");
	Expect({"settings", "list"}, 0,
		Before + "verbose_logging = true                  (set)      Detailed packing logs.\n" + Between +
			"new_mod_author = Zoë 鍾                 (set)      Author remembered for new maps.\n" + After,
		"");
	Expect({"settings", "get", "new_mod_author"}, 0, "Zoë 鍾\n", "");
	Expect({"settings", "get", "verbose_logging", "--format", "json"}, 0,
		"{\n\t\"schema_version\": 1,\n\t\"key\": \"verbose_logging\",\n\t\"value\": true,\n\t\"origin\": \"file\",\n\t"
		"\"meaning\": \"Detailed packing logs.\"\n}\n",
		"");
	Expect({"settings", "set", "new_mod_author", ""}, 0, "new_mod_author = \n", "");
	EXPECT_EQ(nlohmann::ordered_json::parse(Get(Config)).dump(),
		R"({"mine":[1,"two"],"verbose_logging":true,"new_mod_author":""})")
		<< "what was added by hand stays";

	const auto Listed = nlohmann::ordered_json::parse(Run({"settings", "list", "--format", "json"}).Out);
	EXPECT_EQ(Listed["file"], "<T>/Пример 1/Saved/QVPak/config.json");
	EXPECT_EQ(Listed["settings"].size(), 10);
	EXPECT_EQ(Listed["settings"][8].dump(),
		R"({"key":"new_mod_author","value":"","origin":"file","meaning":"Author remembered for new maps."})");

	const std::string Stored = Get(Config);
	Expect({"settings", "reset", "--all"}, 0,
		"all settings are at their defaults; the file was set aside as <T>/Пример 1/Saved/QVPak/config.json.old\n", "");
	EXPECT_EQ(Get("Saved/QVPak/config.json.old"), Stored);
	Expect({"settings", "reset", "--all"}, 0, "", "all settings are at their defaults already\n");
	Put(Config, "{}");
	EXPECT_EQ(Run({"settings", "reset", "--all"}).Code, 0);
	EXPECT_EQ(Get("Saved/QVPak/config.json.old"), Stored) << "what was set aside first is kept";
	EXPECT_EQ(Get("Saved/QVPak/config.json.old.2"), "{}");
	Expect({"settings", "get", "verbose_logging"}, 0, "false\n", "");
}

TEST_F(FSettings, ABrokenFileIsNamedAndNeverWrittenOver)
{
	const std::string Path = "<T>/Пример 1/Saved/QVPak/config.json";
	const std::string WayOut = "\n  until then the defaults are in force\n"
							   "  fix: mend it by hand, or set it aside with qvmap settings reset --all\n";
	const std::pair<std::string, std::string> Cases[] = {
		{"[1,2]", "expected a JSON object"},
		{"{\n\t\"verbose_logging\": tr", "line 2, column 23: no JSON could be read here"},
		{"", "line 1, column 1: no JSON could be read here"},
	};
	for (const auto& [Text, Problem] : Cases)
	{
		Put(Config, Text);
		for (const FWords& Words : {FWords{"list"}, FWords{"get", "verbose_logging"},
				 FWords{"set", "verbose_logging", "true"}, FWords{"reset", "verbose_logging"}})
		{
			FWords All = Words;
			All.insert(All.begin(), "settings");
			ExpectFailure(All, "error: " + Path + ": " + Problem + WayOut);
		}
		EXPECT_EQ(Get(Config), Text);
	}

	BuildRelease();
	Put(Config, "[1,2]");
	const FProgramEnd Packed = Run({"pack", "Cave"});
	EXPECT_EQ(Packed.Code, 0);
	EXPECT_EQ(WithoutProgress(Packed.Err).find("warning: Failed to parse config file: " + Path + "\nnote: "), 0);
	EXPECT_EQ(Run({"settings", "reset", "--all"}).Code, 0);
	EXPECT_EQ(Get("Saved/QVPak/config.json.old"), "[1,2]");
	EXPECT_FALSE(std::filesystem::exists(Folder / Config));
}
