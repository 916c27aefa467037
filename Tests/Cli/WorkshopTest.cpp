// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"
#include "Tests/Support/SampleImages.h"

#include <nlohmann/json.hpp>

using namespace QVTest;

namespace
{
class FWorkshop : public FCliTest
{
protected:
	const std::filesystem::path Config = "Plugins/Harbor/workshop_config.json";
	const std::string Sample = "<T>/Пример 1/";

	void SetUp() override { EnterSample(); }

	void PutImage(const std::filesystem::path& Path, std::string Bytes, std::size_t Size = 0) const
	{
		Bytes.resize(std::max(Size, Bytes.size()));
		Put(Path, Bytes);
	}
	/** `qvmap workshop` and these words; one line of result, or exit code and error. */
	void Edit(FWords Words, const std::string& Out, const std::string& Err = "") const
	{
		Words.insert(Words.begin(), "workshop");
		Expect(Words, 0, Out + "\n", Err);
	}
	void Refuse(FWords Words, int Code, const std::string& Err) const
	{
		Words.insert(Words.begin(), "workshop");
		const std::string Before = Get(Config);
		Expect(Words, Code, "", "error: " + Err + "\n");
		EXPECT_EQ(Get(Config), Before);
	}
};
} // namespace

TEST_F(FWorkshop, DetailsAreShownAndEdited)
{
	Expect({"workshop", "harbor"}, 0,
		"title         Harbor\ndescription   \ntags          \nvisibility    public\nmain image    (none)\nscreenshots "
		"  "
		"(none)\nchange note   \nstart map     /Game/Harbor/Maps/Docks\nfile          " +
			Sample + "Plugins/Harbor/workshop_config.json  (not there yet)\n",
		"");
	EXPECT_FALSE(std::filesystem::exists(Folder / Config)) << "showing writes nothing";
	PutImage("main pic.png", MakePng(64, 64));
	PutImage("a.jpg", MakeJpeg(160, 90));
	PutImage("b.jpg", MakeJpeg(50, 50));
	Edit({"set", "Harbor", "title", "Harbör"}, "title = Harbör");
	Edit({"set", "/Harbor/Maps/Pier", "description", "one\n\ttwo"}, "description = one\n\ttwo");
	Edit({"set", "Harbor", "change-note", "first"}, "change_note = first");
	Edit({"set", "Harbor", "Visibility", "FRIENDS_ONLY"}, "visibility = friends_only");
	Edit({"set", "Harbor", "start_map", "pier"}, "start_map = /Game/Harbor/Maps/Pier");
	Edit({"set", "Harbor", "preview_image", "main pic.png"}, "preview_image = " + Sample + "main pic.png");
	Edit({"add", "Harbor", "tags", "sea, ships ,", "long"}, "tags = sea, ships, long");
	Edit({"remove", "Harbor", "tags", "ships"}, "tags = sea, long");
	const std::string Odd = "warning: Not 16:9 aspect ratio: b.jpg (50x50)\n";
	Edit({"add", "Harbor", "screenshots", "a.jpg", "b.jpg", "a.jpg"},
		"screenshots = " + Sample + "a.jpg, " + Sample + "b.jpg, " + Sample + "a.jpg", Odd);
	Edit({"remove", "Harbor", "screenshots", "a.jpg"}, "screenshots = " + Sample + "b.jpg", Odd);
	Edit({"add", "Harbor", "screenshots", "a.jpg"}, "screenshots = " + Sample + "b.jpg, " + Sample + "a.jpg", Odd);

	Expect({"workshop", "Harbor"}, 0,
		"title         Harbör\ndescription   one\n              \\x09two\ntags          sea, long\nvisibility    "
		"friends_only\nmain image    " +
			Sample + "main pic.png  (64x64, 0.00 MB)\nscreenshots   " + Sample +
			"b.jpg  (50x50, 0.00 MB)\n              " + Sample +
			"a.jpg  (160x90, 0.00 MB)\nchange note   first\nstart map     /Game/Harbor/Maps/Pier\nfile          " +
			Sample + "Plugins/Harbor/workshop_config.json\n",
		Odd);
	const auto Json = nlohmann::ordered_json::parse(Run({"workshop", "Harbor", "--format", "json"}).Out);
	EXPECT_EQ(Json["title"], "Harbör");
	EXPECT_EQ(Json["stored"], true);
	EXPECT_EQ(Json["tags"].dump(), R"(["sea","long"])");
	EXPECT_EQ(Json["images"].size(), 3);
	EXPECT_EQ(Json["images"][1]["role"], "screenshot");
	EXPECT_EQ(Json["images"][1]["width"], 50);
	EXPECT_EQ(Json["images"][1]["too_big"], false);
	EXPECT_EQ(Json["warnings"].dump(), R"x(["Not 16:9 aspect ratio: b.jpg (50x50)"])x");
	Edit({"set", "Harbor", "tags", ""}, "tags = ", Odd);
	Edit({"set", "Harbor", "preview_image", ""}, "preview_image = ", Odd);
}

TEST_F(FWorkshop, WhatSteamWouldRefuseIsSaid)
{
	Edit({"set", "Harbor", "title", std::string(129, 'x')}, "title = " + std::string(129, 'x'),
		"warning: the title has 129 bytes, and Steam takes 128 at most\n");
	Edit({"set", "Harbor", "title", "  "}, "title =   ", "warning: the title is blank\n");
	Edit({"set", "Harbor", "title", ""}, "title = ", "warning: the title is blank\n");
	PutImage("big.png", MakePng(16, 9), 2097152);
	PutImage("text.png", "Dear diary");
	PutImage("note.txt", "Dear diary");
	PutImage("cut.jpg", MakeJpeg(64, 64).substr(0, 30));
	PutImage("wide.png", MakePngHeader(30'000, 2));
	for (const FWords& Words : {FWords{"set", "Harbor", "preview_image"}, FWords{"add", "Harbor", "screenshots"}})
	{
		const auto With = [&Words](const char* File)
		{
			FWords All = Words;
			All.emplace_back(File);
			return All;
		};
		Refuse(With("gone.png"), 1, "there is no file " + Sample + "gone.png");
		Refuse(With("Plugins"), 1, "there is no file " + Sample + "Plugins");
		Refuse(With("big.png"), 1, Sample + "big.png is 2.00 MB: Steam refuses Workshop images over 1 MB");
		Refuse(With("text.png"), 1, Sample + "text.png is not the image that its ending says");
		Refuse(With("cut.jpg"), 1, Sample + "cut.jpg is not the image that its ending says");
		Refuse(With("note.txt"), 1, Sample + "note.txt: expected a file that ends in .png, .jpg or .jpeg");
	}
	Edit({"set", "Harbor", "title", "Harbor"}, "title = Harbor");
	Edit({"set", "Harbor", "preview_image", "wide.png"}, "preview_image = " + Sample + "wide.png",
		"warning: Image is 30000x2 -- should be square (1:1). Recommended: 512x512\n");
	std::filesystem::remove(Folder / "wide.png");
	Edit({"set", "Harbor", "title", "Harbor"}, "title = Harbor",
		"warning: the main image is missing: " + Sample + "wide.png\n");
}

TEST_F(FWorkshop, WrongWordsAreNamedWithWhatWasMeant)
{
	const std::string Fields =
		"title, description, tags, visibility, preview_image, screenshots, change_note, start_map";
	Refuse({"set", "Harbor", "titel", "x"}, 2, "there is no field 'titel'. Did you mean 'title'?");
	Refuse({"set", "Harbor", "zzzzzz", "x"}, 2, "there is no field 'zzzzzz': " + Fields);
	Refuse({"add", "Harbor", "tag", "x"}, 2, "there is no list 'tag'. Did you mean 'tags'?");
	Refuse({"add", "Harbor", "title", "x"}, 2, "there is no list 'title': tags, screenshots");
	Refuse({"set", "Harbor", "visibility", "privat"}, 1, "there is no visibility 'privat'. Did you mean 'private'?");
	Refuse({"set", "Harbor", "start_map", "Dock"}, 1, "Harbor has no map 'Dock'. Did you mean 'Docks'?");
	Refuse({"set", "Harbor", "title", "two", "values"}, 1, "title takes one value, not 2");
	Refuse({"remove", "Harbor", "tags", "x"}, 1, "tags has no 'x': it is empty");
	Refuse(
		{"set", "Harbr", "title", "x"}, 1, "there is no mod or map 'Harbr': see qvmap maps\n  did you mean 'Harbor'?");
	Refuse({}, 2, "name the map, as in qvmap workshop Cave");
	Refuse({"set", "Harbor"}, 2, "field is required\n  see: qvmap workshop set --help");
	const FProgramEnd Help = Run({"workshop", "--help"});
	EXPECT_NE(Help.Out.find("Example:\n  qvmap workshop Cave\n"), std::string::npos);
	EXPECT_NE(Run({"workshop", "add", "--help"}).Out.find("One of: tags, screenshots"), std::string::npos);
}

TEST_F(FWorkshop, ABrokenRecordIsNamedAndNeverWrittenOver)
{
	const std::string Path = Sample + "Plugins/Harbor/workshop_config.json";
	const std::pair<std::string, std::string> Cases[] = {
		{"[1]", "expected a JSON object"}, {"{\"title\": ", "line 1, column 11: no JSON could be read here"}};
	for (const auto& [Text, Problem] : Cases)
	{
		Put(Config, Text);
		for (const FWords& Words : {FWords{"Harbor"}, FWords{"set", "Harbor", "title", "x"}})
		{
			Refuse(Words, 1, Path + ": " + Problem + "\n  fix: mend it by hand, or delete it to begin anew");
		}
	}
}
