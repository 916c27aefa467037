// SPDX-License-Identifier: MIT
#include "Tests/Cli/PlaySupport.h"

#include <nlohmann/json.hpp>

using namespace QVTest;
using FJson = nlohmann::json;
using QVStandalone::ToOsPath;

namespace
{
class FPublish : public FPlay
{
protected:
	const std::string Record = "Plugins/Cave/workshop_config.json";
	const std::string Upload = "Saved/QVPak/upload.json";

	/** Nothing was packed, and nobody was asked to publish anything. */
	void ExpectNothingPublished() const
	{
		EXPECT_FALSE(Project.Exists(Upload));
		EXPECT_EQ(Opened(), "");
		EXPECT_TRUE(Paks().empty());
	}
};
} // namespace

TEST_F(FPublish, ARunningGameIsHandedTheDetailsAndThePak)
{
	Put(Record, R"({"title": "Die Höhle", "description": "Dunkel", "tags": ["dark"], "visibility": "private"})");
	ScriptGame({"listen " + Pipe, "write " + Project.At("listening") + "|", "record " + Project.At("first")});
	FProgramStart How = Start({});
	How.File = ToOsPath(Game);
	FProgram Running(How);
	WaitUntil([this] { return Project.Exists("listening"); });

	const FProgramEnd End = Run({"publish", "Hall"});
	EXPECT_EQ(End.Code, 0) << End.Err;
	EXPECT_EQ(WithoutProgress(End.Err), "game  it is running and was sent the request\n");
	EXPECT_EQ(End.Out, "upload  <Project>/" + Upload + "\n");
	EXPECT_EQ(Finish(Running).Code, 0);
	EXPECT_TRUE(Project.Read("first").starts_with("quarvel://workshop_upload?config=" + Root));
	EXPECT_TRUE(Project.Read("first").ends_with("/Saved/QVPak/upload.json"));
	ASSERT_EQ(Paks().size(), 1U);
	std::string Text = Run({"workshop", "Cave", "--format", "json"}).Out;
	EXPECT_EQ(FJson::parse(Text)["title"], "Die Höhle") << "the record is as it was";
}

TEST_F(FPublish, WhatStandsInTheWayIsToldAndNothingIsPublished)
{
	LetDesktopEndWith(0);
	Put(Record, "{ \"title\": ");
	const FProgramEnd Broken = Run({"publish", "Cave"});
	EXPECT_EQ(Broken.Code, 1);
	EXPECT_NE(Broken.Err.find("workshop_config.json"), std::string::npos) << Broken.Err;
	EXPECT_EQ(Project.Read(Record), "{ \"title\": ") << "it is not written over";
	ExpectNothingPublished();

	Put("Big.png", std::string(1'048'577, 'x'));
	Put(Record, R"({"title": "Cave", "preview_image": ")" + Project.At("Big.png") + R"("})");
	const FProgramEnd TooBig = Run({"publish", "Cave", "--format", "json"});
	EXPECT_EQ(TooBig.Code, 1);
	EXPECT_NE(TooBig.Err.find("error: Steam refuses Workshop images over 1 MB"), std::string::npos) << TooBig.Err;
	EXPECT_EQ(FJson::parse(TooBig.Out)["success"], false);
	ExpectNothingPublished();

	std::filesystem::remove(ToOsPath(Project.At(Record)));
	Project.Remove("Releases");
	const FProgramEnd Asked = Run({"publish", "Cave", "--format", "json"});
	EXPECT_EQ(Asked.Code, 3);
	EXPECT_EQ(FJson::parse(Asked.Out)["stopped_at"], "BaseReleaseMissingTitle");
	EXPECT_EQ(FJson::parse(Asked.Out)["game"], "");
	ExpectNothingPublished();
	EXPECT_EQ(Run({"publish", "Cve"}).Code, 1);
}

TEST_F(FPublish, WhereNothingGoesThroughTheRequestStays)
{
	QV_SKIP_ON_WINDOWS("would start the Steam of this machine");
	const FProgramEnd End = Run({"publish", "--format", "json"});
	EXPECT_EQ(End.Code, 1);
	EXPECT_EQ(FJson::parse(End.Out)["game"], "none");
	EXPECT_EQ(FJson::parse(End.Out)["error"], "the game was not started");
	EXPECT_TRUE(Project.Exists(Upload));
}
