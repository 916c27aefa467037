// SPDX-License-Identifier: MIT
#include "Tests/Cli/QuestionSupport.h"

using namespace QVFormats;
using namespace QVTest;

namespace
{
using FStripQuestion = FQuestionTest;
} // namespace

TEST_F(FStripQuestion, ALevelBlueprintIsStrippedOnlyWhenThatIsSaid)
{
	const FWords Answers = {"PreflightTitle=PackAnyway", "UnsupportedContentTitle=strip"};
	PutHall(ScriptedHall());
	ScriptStripAndCook(ScriptedHall());
	const std::string Scripted = Get(HallFile);
	EXPECT_EQ(Pack({"--yes"}).Code, 3);
	EXPECT_EQ(Get(HallFile), Scripted);
	const FProgramEnd End = PackAnswering(Answers, {"--format", "json"});
	EXPECT_EQ(End.Code, 0) << End.Err;
	EXPECT_EQ(FJson::parse(End.Out)["stopped_at"], "") << "the answer led on";
	EXPECT_EQ(Get(HallFile), Get("stripped"));
	EXPECT_EQ(Pack().Code, 0) << "the map is as it should be from now on";
	const FWords Kept = Project.FilesIn("Saved/QVPak/Backup");
	ASSERT_EQ(Kept.size(), 1U);
	EXPECT_EQ(Project.Read("Saved/QVPak/Backup/" + Kept[0]), Scripted);
	Project.Remove("Saved/QVPak/Backup"); // named by the second

	const FActorSpec Odd{"Odd", "/Cave/BP_Odd.BP_Odd_C"};
	PutHall(ScriptedHall({Odd}));
	ScriptStripAndCook(ScriptedHall({Odd}));
	const FProgramEnd Mixed = PackAnswering(Answers);
	EXPECT_EQ(Mixed.Code, 1);
	EXPECT_TRUE(Mixed.Err.starts_with("error: Level Blueprint was stripped, but unsupported content remains: "))
		<< Mixed.Err;
}

TEST_F(FStripQuestion, WhatOnlyTheEditorCanEmptyIsSaidAndNothingIsPacked)
{
	const FActorSpec Odd{"Odd", "/Cave/BP_Odd.BP_Odd_C"};
	const std::pair<std::vector<FActorSpec>, std::string> Cases[] = {{{}, "StripAndExport"}, {{Odd}, "StripLevelBP"}};
	for (const auto& [More, Choice] : Cases)
	{
		PutHall(ScriptedHall(More));
		const FTree Before = Snapshot(Folder);
		const FProgramEnd End =
			PackAnswering({"UnsupportedContentTitle=" + Choice, "PreflightTitle=PackAnyway"}, {"--format", "json"});
		EXPECT_EQ(End.Code, 1);
		EXPECT_TRUE(End.Err.starts_with("error: The Level Blueprint could not be stripped, so nothing was packed. "))
			<< End.Err;
		EXPECT_NE(End.Err.find("Only Unreal Editor can take the code out of a Level Blueprint"), std::string::npos);
		EXPECT_EQ(FJson::parse(End.Out)["stopped_at"], "");
		EXPECT_NE(FJson::parse(End.Out)["error"], "");
		ExpectSameFiles(Before, Snapshot(Folder));
	}
}

TEST_F(FStripQuestion, WhatCannotBeDecidedIsAFailure)
{
	FLevelPackageSpec Level{.PackageName = {}, .Actors = PlayableActors()};
	Level.Actors.push_back({"Odd", "/Cave/BP_Odd.BP_Odd_C"});
	PutHall(Level);
	const FTree Before = Snapshot(Folder);
	const FProgramEnd End = Pack({"--yes", "--format", "json"});
	EXPECT_EQ(End.Code, 1);
	EXPECT_TRUE(End.Err.starts_with("error: This map contains content that is not supported.")) << End.Err;
	const FJson Json = FJson::parse(End.Out);
	EXPECT_EQ(Json["stopped_at"], "");
	EXPECT_NE(Json["error"].get<std::string>().find("[Untrusted Actor]"), std::string::npos) << Json;
	ExpectSameFiles(Before, Snapshot(Folder));
}
