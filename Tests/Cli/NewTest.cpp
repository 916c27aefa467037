// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"
#include "Tests/Support/TestPrograms.h"

#include <fstream>
#include <nlohmann/json.hpp>

using namespace QVTest;
namespace fs = std::filesystem;

namespace
{
class FNew : public FCliTest
{
protected:
	void SetUp() override { EnterSample(); }

	const std::string Hints =
		"  put everything the map uses in that folder of assets: what is left outside it gets copied into your pak\n"
		"  next: qvmap open Grotto, qvmap check Grotto\n";
	const std::string Project = "<T>/Пример 1";
	const std::string Made = "map     /Grotto/Maps/Grotto\n"
							 "file    " +
							 Project +
							 "/Plugins/Grotto/Content/Maps/Grotto.umap\n"
							 "assets  " +
							 Project + "/Plugins/Grotto/Content\n";
};
} // namespace

TEST_F(FNew, MapIsACopyOfTheTemplateThatCanBeCheckedAndPacked)
{
	Expect({"new", " Grotto ", "--author", " Ада ", "--description", "A dark place"}, 0, Made,
		"  the level is a copy of /QUARVEL/Templates/DefaultMapTemplate\n" + Hints);
	const auto Descriptor = nlohmann::ordered_json::parse(Get("Plugins/Grotto/Grotto.uplugin"));
	EXPECT_EQ(Descriptor["CreatedBy"], "Ада");
	EXPECT_EQ(Descriptor["Description"], "A dark place");
	Expect({"settings", "get", "new_mod_author"}, 0, "Ада\n", "");

	const FProgramEnd Checked = Run({"check", "Grotto", "--format", "json", "-q"});
	EXPECT_EQ(Checked.Code, 1) << "there is no base release yet";
	const auto Report = nlohmann::json::parse(Checked.Out);
	EXPECT_EQ(Report["map"], "/Grotto/Maps/Grotto");
	std::string Errors;
	for (const auto& Finding : Report["findings"])
	{
		Errors += Finding["severity"] == "error" ? Finding["id"].get<std::string>() + " " : "";
	}
	EXPECT_EQ(Errors, "Env.BaseRelease ");

	BuildRelease();
	EXPECT_EQ(Run({"pack", "Grotto", "-q"}).Code, 0);
	EXPECT_EQ(Paks().size(), 1U);
}

TEST_F(FNew, MapIsEmptyWithoutATemplate)
{
	fs::remove(Folder / "Plugins/QUARVEL/Content/Templates/DefaultMapTemplate.umap");
	Expect({"new", "Grotto"}, 0, Made,
		"  the level is empty: there is no template /QUARVEL/Templates/DefaultMapTemplate\n" + Hints);
	EXPECT_EQ(Run({"settings", "set", "map_template_path", ""}).Code, 0);
	EXPECT_EQ(Run({"settings", "set", "new_mod_author", "Ада"}).Code, 0);
	const FProgramEnd End = Run({"new", "Höhle", "--format", "json", "--author", ""});
	EXPECT_EQ(End.Err, "");
	const std::string Plugin = Project + "/Plugins/Höhle/";
	EXPECT_EQ(nlohmann::ordered_json::parse(End.Out).dump(),
		R"({"schema_version":1,"project":")" + Project + R"(/SampleMaps.uproject","mod":"Höhle","descriptor":")" +
			Plugin + R"(Höhle.uplugin","content":")" + Plugin + R"(Content","package":"/Höhle/Maps/Höhle","file":")" +
			Plugin + R"(Content/Maps/Höhle.umap","template":""})");
	Expect({"settings", "get", "new_mod_author"}, 0, "Ада\n", "");
	const FProgramEnd Listed = Run({"maps"});
	EXPECT_NE(Listed.Out.find("Höhle  (1 map)\n  /Höhle/Maps/Höhle\n"), std::string::npos) << Listed.Out;
	const FProgramEnd Checked = Run({"check", "Grotto", "-q"});
	EXPECT_EQ(Checked.Out.find("Map file readable"), std::string::npos);
	EXPECT_NE(Checked.Out.find("2 errors, "), std::string::npos) << Checked.Out;
}

TEST_F(FNew, RefusesNamesAndLeavesTheProjectAlone)
{
	Put("Plugins/Aside/Aside.uplugin.disabled", "{}");
	const FTree Before = Snapshot(Folder);
	const std::string Allowed = "Allowed: letters, numbers, underscore, hyphen.\n";
	const std::pair<const char*, std::string> Cases[] = {
		{" ", "Plugin name cannot be empty.\n"},
		{"a b", "Plugin name 'a b' contains invalid character ' '. " + Allowed},
		{"../x", "Plugin name '../x' contains invalid character '.'. " + Allowed},
		{"Game", "Plugin name 'Game' is reserved and cannot be used for mods.\n"},
		{"1st", "The name of a plugin begins with a letter: '1st' does not.\n"},
		{"harbor", "There is a plugin 'Harbor' already: " + Project + "/Plugins/Harbor/Harbor.uplugin.\n"},
		{"Aside", "A map called 'Aside' already exists. Pick a different name, or delete Plugins/Aside/ first.\n"},
	};
	for (const auto& [Name, Why] : Cases)
	{
		ExpectFailure({"new", Name, "--author", "Ада"}, "error: " + Why);
	}
	EXPECT_EQ(Run({"new"}).Code, 2);
	ExpectSameFiles(Before, Snapshot(Folder));
	const FProgramEnd Json = Run({"new", "a b", "--format", "json"});
	EXPECT_EQ(nlohmann::json::parse(Json.Out)["error"],
		"Plugin name 'a b' contains invalid character ' '. Allowed: letters, numbers, underscore, hyphen.");
}

TEST_F(FNew, TellsWhatADamagedTemplateLeaves)
{
	const fs::path Template = Folder / "Plugins/QUARVEL/Content/Templates/DefaultMapTemplate.umap";
	fs::resize_file(Template, fs::file_size(Template) / 2);
	const FProgramEnd End = Run({"new", "Grotto"});
	EXPECT_EQ(End.Code, 1);
	EXPECT_EQ(End.Out, "");
	EXPECT_TRUE(End.Err.starts_with(
		"error: The folder for 'Grotto' was created, but the map could not be saved to /Grotto/Maps/Grotto. Create a "
		"level yourself and save it into Plugins/Grotto/Content/Maps/ - the folder is ignored until it holds a map.\n"
		"  cause: /Grotto/Maps/Grotto could not be made: the template " +
		Project + "/Plugins/QUARVEL/Content/Templates/DefaultMapTemplate.umap "))
		<< End.Err;
	EXPECT_TRUE(End.Err.ends_with("  to try again, delete " + Project + "/Plugins/Grotto first\n")) << End.Err;
	EXPECT_TRUE(fs::exists(Folder / "Plugins/Grotto/Grotto.uplugin"));
	EXPECT_FALSE(fs::exists(Folder / "Plugins/Grotto/Content/Maps/Grotto.umap"));
}

TEST_F(FNew, LeavesNothingOnAFullDisk)
{
	QV_SKIP_ON_WINDOWS("no full disk is played here");
	MostFileBytes = 100;
	const FProgramEnd End = Run({"new", "Grotto"});
	EXPECT_EQ(End.Code, 1);
	EXPECT_NE(
		End.Err.find("error: " + Project + "/Plugins/Grotto/Grotto.uplugin could not be written: File too large.\n"),
		std::string::npos)
		<< End.Err;
	EXPECT_FALSE(fs::exists(Folder / "Plugins/Grotto"));
}
