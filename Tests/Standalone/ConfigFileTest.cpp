// SPDX-License-Identifier: MIT
#include "Standalone/Engine/ConfigFile.h"

#include "Standalone/Engine/Project.h"
#include "Tests/Standalone/TestFiles.h"

#include <gtest/gtest.h>

using namespace QVStandalone;

TEST(ConfigFile, ValuesAreFoundByTheEnginesRules)
{
	const std::string Text = "Key=before any section\n"
							 "; [Mine]\n"
							 "[Other]\r\n"
							 "Key=other\r\n"
							 "[Mine]\n"
							 "Key=first\n"
							 "key = \"the last one counts; it has a = and quotes\" \t\n"
							 "+Key=edits a list\n"
							 ";Key=not in force\n"
							 "Empty=\n"
							 "Half=\"\n"
							 "[mINE]\n"
							 "Later=Ünï\n"
							 "no assignment\n"
							 "=\n"
							 "[Unclosed\n"
							 "Last=1";
	const struct
	{
		const char* Section;
		const char* Key;
		std::optional<std::string> Value;
	} Cases[] = {
		{"Mine", "Key", "the last one counts; it has a = and quotes"},
		{"mine", "KEY", "the last one counts; it has a = and quotes"},
		{"Other", "Key", "other"},
		{"Mine", "Empty", ""},
		{"Mine", "Half", "\""},
		{"Mine", "Later", "Ünï"},
		{"Mine", "Last", "1"},
		{"Mine", "Nothing", std::nullopt},
		{"Nowhere", "Key", std::nullopt},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(FindConfigValue(Text, Case.Section, Case.Key), Case.Value) << Case.Section << " " << Case.Key;
	}
}

TEST(ConfigFile, LaterLayersCountMore)
{
	const FTestFiles Files;
	const FProject Project(Files("Maps/Maps.uproject"), Files("UE/Engine"));
	const auto Found = [&Project] { return Project.GetGameConfigString("S", "K").value_or("none"); };
	std::string Expected = "none";
	for (const std::string File :
		{"UE/Engine/Config/BaseGame.ini", "UE/Engine/Config/Windows/WindowsGame.ini", "Maps/Config/DefaultGame.ini",
			"Maps/Config/Windows/WindowsGame.ini", "Maps/Saved/Config/WindowsEditor/Game.ini"})
	{
		EXPECT_EQ(Found(), Expected);
		Files.Put(File, "[S]\nUnrelated=1\n");
		EXPECT_EQ(Found(), Expected) << File << " does not say it";
		Files.Put(File, "[S]\nK=" + File + "\n");
		Expected = File;
	}
	EXPECT_EQ(Found(), Expected);
}
