// SPDX-License-Identifier: MIT
#include "Standalone/Engine/TextEncoding.h"
#include "Tests/Interface/WorkshopTabSupport.h"

#include <nlohmann/json.hpp>

using namespace QVTest;

namespace
{
struct FWorkshopPublish : FWorkshopTabTest
{
	const std::string UploadFile = "Saved/QVPak/upload.json";

	void SetUp() override
	{
		Open("/Cave/Maps/Hall");
		OpenTab();
		Shell.Pipe = EQVPipeWrite::Written;
		Recording.Take();
	}
	void Press() { Tab->Press(EQVWorkshopAction::PackAndPublish); }
	/** The pack that was begun ends well. */
	void EndPack() const
	{
		ASSERT_TRUE(Packed);
		FQVExportResult Result;
		Result.bSuccess = true;
		Result.PakPath = Project.At("Saved/QVPak/Output/Cave_1.pak");
		Packed(Result);
	}
	nlohmann::json Upload() const { return nlohmann::json::parse(QVStandalone::DecodeText(Project.Read(UploadFile))); }
	std::string HandedOver() { return Project.Mask(FQVString::Join(std::exchange(Calls, {}), "\n")); }
};

const std::string MapChanged =
	"message MapChanged: 'Pier' is open now, so these are its Workshop details.\n\nCheck them over "
	"and press Pack & Publish again.";
} // namespace

TEST_F(FWorkshopPublish, WhatIsInTheBoxesIsPackedAndHandedOver)
{
	View.Boxes[EQVWorkshopRow::Title] = "uncommitted";
	View.Boxes[EQVWorkshopRow::Tags] = "a, ,b";
	Press();
	EXPECT_EQ(Packing, "Cave Hall /Game/Cave/Maps/Attic\n") << "the record's start map, another than the open one";
	EXPECT_EQ(Saved().Title, "uncommitted");
	EXPECT_FALSE(Project.Exists(UploadFile));
	Enter(EQVWorkshopRow::Title, "for the next time");
	Recording.Take();
	EndPack();
	EXPECT_EQ(Upload()["title"], "uncommitted") << "as it was when the button was pressed";
	EXPECT_EQ(Upload()["tags"].dump(), R"(["a","b"])");
	EXPECT_EQ(Upload()["start_map"], "/Game/Cave/Maps/Attic");
	EXPECT_EQ(Upload()["pak_path"], Project.At("Saved/QVPak/Output/Cave_1.pak"));
	const std::string Path = "<Project>/" + UploadFile;
	EXPECT_EQ(Logged(), "QVMap: Upload JSON written to " + Path + "\nQVMap: Handing " + Path +
							" to the game for Workshop upload\nQVMap: Workshop upload sent to running game via pipe\n");
	EXPECT_EQ(Calls.size(), 1);
	const std::string Root = Project.ProjectDir().substr(0, Project.ProjectDir().find('/') + 1);
	EXPECT_TRUE(
		HandedOver().starts_with(R"(write \\.\pipe\QUARVEL_PakLoader quarvel://workshop_upload?config=)" + Root));
	EXPECT_EQ(Shown(), "");
}

TEST_F(FWorkshopPublish, AClosedTabOrAnotherMapDoesNotStopIt)
{
	Press();
	Open("/Harbor/Deep/Er/Pier");
	EndPack();
	EXPECT_EQ(Upload()["title"], "Cave");
	EXPECT_EQ(Calls.size(), 1);
	Press();
	Project.Remove(UploadFile);
	Tab.reset();
	EndPack();
	EXPECT_EQ(Upload()["title"], "Harbor");
	EXPECT_EQ(Calls.size(), 2);
}

TEST_F(FWorkshopPublish, ABuildStopsItBeforeAnythingIsSaved)
{
	bBuilding = true;
	View.Boxes[EQVWorkshopRow::Title] = "typed";
	Project.Write(CaveFile, R"({"title": "stored", "start_map": "/Game/Cave/Maps/Gone"})");
	Press();
	EXPECT_EQ(
		Shown(), "message BuildRunning: The base release is still building.\n\nWait for it to finish, then publish.");
	Tab->Press(EQVWorkshopAction::Refresh);
	EXPECT_EQ(Saved().StartMap, "/Game/Cave/Maps/Gone") << "whose maps are there is not known now";
	EXPECT_EQ(Saved().Title, "stored");
	EXPECT_EQ(Packing, "");
}

TEST_F(FWorkshopPublish, OnlyTheMapThatIsShownIsPublished)
{
	Project.Write("Plugins/Harbor/workshop_config.json", R"({"title": "Cave"})");
	Project.Remove("Plugins/Harbor/Harbor.uplugin");
	Open("/Harbor/Deep/Er/Pier");
	Press();
	EXPECT_NE(Shown().find("message PluginNotFound: The open map is not set up for packing."), std::string::npos);
	Project.AddMod("Harbor", {"Deep/Er/Pier"});
	Press();
	EXPECT_EQ(Shown(), MapChanged) << "though the titles are the same";
	EXPECT_EQ(Packing, "");
	EXPECT_EQ(Tab->GetHeader().ToString(), "Pier");
	Press();
	EXPECT_EQ(Packing, "Harbor Pier /Game/Harbor/Deep/Er/Pier\n");
}

TEST_F(FWorkshopPublish, DetailsThatWillNotDoStopItButAreSaved)
{
	Dialogs.Answer = PutImage("main.png", MakePng(3, 4));
	Tab->Press(EQVWorkshopAction::BrowsePreview);
	Dialogs.Answers = {PutImage("shot.png", MakePng(16, 9))};
	Tab->Press(EQVWorkshopAction::AddScreenshots);
	View.Boxes[EQVWorkshopRow::Title] = "";
	View.Boxes[EQVWorkshopRow::Description] = "typed";
	Press();
	EXPECT_EQ(Shown(), "message TitleRequired: Give the map a title before publishing it.");
	EXPECT_EQ(Saved().Description, "typed");
	View.Boxes[EQVWorkshopRow::Title] = "  ";
	PutImage("main.png", MakePng(3, 4), 1048577);
	PutImage("shot.png", MakePng(16, 9), 2097152);
	Press();
	EXPECT_EQ(Shown(),
		"message ImagesTooBig: Steam refuses Workshop images over 1 MB, one file at a time, and rejects the "
		"whole upload if any of them is over:\n\n    Main image:  main.png  (1.00 MB)\n    Screenshot:  "
		"shot.png  (2.00 MB)\n\nReplace them with smaller versions, then press Pack & Publish again.");
	EXPECT_TRUE(Tab->GetPreviewWarning().bTooBig);
	EXPECT_TRUE(Tab->GetScreenshotWarning().bTooBig);
	EXPECT_EQ(Packing, "");
	PutImage("main.png", MakePng(3, 4));
	PutImage("shot.png", MakePng(1, 9));
	Press();
	EXPECT_EQ(Packing, "Cave Hall /Game/Cave/Maps/Attic\n") << "blanks are a title, and odd shapes stop nothing";

	PutImage("shot.png", MakePng(16, 9), 2097152);
	Recording.Take();
	EndPack();
	const std::string Error =
		"These images are over Steam's 1 MB per-file limit:\n    Screenshot:  shot.png  (2.00 MB)";
	EXPECT_EQ(Logged(), "Error: QVMap: Failed to write upload config: " + Error + "\n");
	EXPECT_EQ(Shown(),
		"message UploadJsonFailed: The map packed, but its Workshop details could not be written:\n\n" + Error);
	EXPECT_TRUE(Calls.empty()) << "nothing is handed over";
	EXPECT_FALSE(Project.Exists(UploadFile));
}
