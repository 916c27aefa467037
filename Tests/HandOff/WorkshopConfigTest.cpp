// SPDX-License-Identifier: MIT
#include "HandOff/QVMapWorkshopConfig.h"

#include "HandOff/QVMapWorkshopImages.h"
#include "HandOff/QVMapWorkshopLimits.h"
#include "Standalone/Engine/TextEncoding.h"
#include "Tests/Support/SampleImages.h"
#include "Tests/Support/ToolkitTest.h"

using namespace QVTest;
using FWorkshop = FQVMapWorkshopConfig;
using FImages = FQVMapWorkshopImages;

namespace
{
struct FWorkshopConfigTest : FToolkitTest
{
	const std::string File = "Plugins/Cave/workshop_config.json";
	const std::string Upload = "Saved/QVPak/upload.json";

	FWorkshopConfigTest() { Project.MakeFolder("Plugins/Cave"); }

	std::string Dir() const { return Project.At("Plugins/Cave"); }
	/** The path of a new file of that size. */
	std::string PutImage(const std::string& Name, std::size_t Size) const
	{
		Project.Write(Name, std::string(Size, 'x'));
		return Project.At(Name);
	}
};

FQVWorkshopConfig FullConfig()
{
	FQVWorkshopConfig Config;
	Config.Title = "Cave \"1\"";
	Config.Description = "two\nlines";
	Config.Tags = {"a", "", "b c"};
	Config.PreviewImage = "C:\\Pics\\main.png";
	Config.Screenshots = {"/s/1.jpg", "/s/1.jpg"};
	Config.Visibility = "Friends_Only";
	Config.ChangeNote = "new";
	Config.StartMap = "/Game/Cave/Maps/Hall";
	return Config;
}

const std::string FullText =
	"{\r\n\t\"title\": \"Cave \\\"1\\\"\",\r\n\t\"description\": \"two\\nlines\",\r\n\t\"preview_image\": "
	"\"C:\\\\Pics\\\\main.png\",\r\n\t\"visibility\": \"Friends_Only\",\r\n\t\"change_note\": \"new\",\r\n\t"
	"\"start_map\": \"/Game/Cave/Maps/Hall\",\r\n\t\"tags\": [\r\n\t\t\"a\",\r\n\t\t\"\",\r\n\t\t\"b c\"\r\n\t],\r\n\t"
	"\"screenshots\": [\r\n\t\t\"/s/1.jpg\",\r\n\t\t\"/s/1.jpg\"\r\n\t]\r\n}";
} // namespace

TEST_F(FWorkshopConfigTest, ARecordGoesOutByteForByteAndComesBack)
{
	EXPECT_EQ(FWorkshop::GetConfigPath("/p/Cave"), "/p/Cave/workshop_config.json");
	EXPECT_TRUE(FWorkshop::Save(Dir(), FullConfig()));
	EXPECT_EQ(Logged(), "QVMap: Workshop config saved to <Project>/" + File + "\n");
	EXPECT_EQ(Project.Read(File), FullText);
	FQVWorkshopConfig Back;
	EXPECT_TRUE(FWorkshop::Load(Dir(), Back));
	EXPECT_EQ(Back, FullConfig());

	EXPECT_TRUE(FWorkshop::Save(Dir(), {}));
	EXPECT_EQ(Project.Read(File),
		"{\r\n\t\"title\": \"\",\r\n\t\"description\": \"\",\r\n\t\"preview_image\": \"\",\r\n\t"
		"\"visibility\": \"public\",\r\n\t\"change_note\": \"\",\r\n\t\"start_map\": \"\",\r\n\t"
		"\"tags\": [],\r\n\t\"screenshots\": []\r\n}");

	FQVWorkshopConfig Foreign = FullConfig();
	Foreign.Title = "Höhle 鍾";
	EXPECT_TRUE(FWorkshop::Save(Dir(), Foreign));
	EXPECT_EQ(
		Project.Read(File), QVStandalone::EncodeText(FQVString::ReplaceAll(FullText, "Cave \\\"1\\\"", "Höhle 鍾")))
		<< "UTF-16 with a mark";
	EXPECT_TRUE(FWorkshop::Load(Dir(), Back));
	EXPECT_EQ(Back, Foreign);
}

TEST_F(FWorkshopConfigTest, WhateverTheFileHoldsIsReadAsFarAsItGoes)
{
	FQVWorkshopConfig Config;
	Config.StartMap = "/Game/Cave/Maps/Old";
	const FQVWorkshopConfig Before = Config;
	EXPECT_FALSE(FWorkshop::Load(Dir(), Config));
	EXPECT_EQ(Logged(), "") << "not there yet, as a rule";
	EXPECT_EQ(Config, Before);
	for (const char* Broken : {"", "{\"title\": \"x\"", "[\"title\"]", "\"title\"", "{} {}", "\xFF\xFE{"})
	{
		Project.Write(File, Broken);
		EXPECT_FALSE(FWorkshop::Load(Dir(), Config)) << Broken;
		EXPECT_EQ(Logged(), "Warning: QVMap: Failed to parse workshop config: <Project>/" + File + "\n");
		EXPECT_EQ(Config, Before);
	}

	Project.Write(File, "{}");
	Config.Title = "mine";
	Config.Tags = {"mine"};
	EXPECT_TRUE(FWorkshop::Load(Dir(), Config));
	EXPECT_EQ(Config, Before) << "missing keys are empty; the start map stays, the visibility is public";

	Project.Write(File, R"({"title": 7, "description": null, "preview_image": {"a": 1}, "visibility": "hidden",
		"start_map": "", "tags": ["a", 1.5, true, null, ["b"], {}, ""], "screenshots": "/s/1.png", "more": 1})");
	EXPECT_TRUE(FWorkshop::Load(Dir(), Config));
	FQVWorkshopConfig Odd;
	Odd.Title = "7";
	Odd.Visibility = "hidden";
	Odd.Tags = {"a", "1.5", "true", ""};
	EXPECT_EQ(Config, Odd);

	Project.Write(File, std::string("\xEF\xBB\xBF{\"title\": \"ü\", \"visibility\": \"\"}"));
	EXPECT_TRUE(FWorkshop::Load(Dir(), Config));
	EXPECT_EQ(Config.Title, "ü");
	EXPECT_EQ(Config.Visibility, "public");
}

TEST_F(FWorkshopConfigTest, ARecordThatCannotBeSavedLeavesTheOldOne)
{
	Project.Write(File, "old");
	Files.Refuse = [](std::string_view Operation, std::string_view) { return Operation == "save"; };
	EXPECT_FALSE(FWorkshop::Save(Dir(), FullConfig()));
	EXPECT_EQ(Logged(), "Error: QVMap: Failed to save workshop config to: <Project>/" + File + "\n");
	EXPECT_EQ(Project.Read(File), "old");
}

TEST_F(FWorkshopConfigTest, ImagesAboveOneMegabyteAreNamed)
{
	FQVWorkshopConfig Config;
	Config.PreviewImage = PutImage("in/main.png", 2'500'000);
	Config.Screenshots = {PutImage("a.jpg", 1048576), "", PutImage("in/b.JPG", 1048577), Project.At("gone.jpg"),
		Project.At("in"), PutImage("empty.png", 0)};
	std::int64_t Size = 5;
	EXPECT_FALSE(FWorkshop::IsImageOversize("", Size));
	EXPECT_EQ(Size, 0);
	EXPECT_FALSE(FWorkshop::IsImageOversize(Config.Screenshots[0], Size));
	EXPECT_EQ(Size, 1048576);
	EXPECT_FALSE(FWorkshop::IsImageOversize(Config.Screenshots[3], Size));
	EXPECT_EQ(Size, 0);
	EXPECT_EQ(FWorkshop::FormatOversizeImages(FWorkshop::FindOversizeImages(Config)),
		"    Main image:  main.png  (2.38 MB)\n    Screenshot:  b.JPG  (1.00 MB)");
	EXPECT_EQ(FWorkshop::FormatOversizeImages({}), "");
}

TEST_F(FWorkshopConfigTest, TheRequestHasWhatIsNotEmpty)
{
	EXPECT_EQ(FWorkshop::GetUploadPath(), Project.At(Upload));
	FQVWorkshopConfig Config = FullConfig();
	Config.Tags = {" a\t", "  ", "\xC2\xA0\xE3\x80\x80", "b c",
		"\xE2\x80\x83"
		"d\r\n"};
	Config.Screenshots = {"/s/../s/./1.jpg", "D:\\x\\2.png"};
	std::string Error = "untouched";
	EXPECT_TRUE(FWorkshop::WriteUploadJson(Config, "/out\\Cave_1.pak", Project.At(Upload), Error));
	EXPECT_EQ(Error, "untouched");
	EXPECT_EQ(Logged(), "QVMap: Upload JSON written to <Project>/" + Upload + "\n");
	EXPECT_EQ(Project.Read(Upload),
		"{\r\n\t\"pak_path\": \"/out/Cave_1.pak\",\r\n\t\"title\": \"Cave \\\"1\\\"\",\r\n\t\"description\": "
		"\"two\\nlines\",\r\n\t\"preview_image\": \"C:/Pics/main.png\",\r\n\t\"visibility\": \"friends_only\",\r\n\t"
		"\"change_note\": \"new\",\r\n\t\"start_map\": \"/Game/Cave/Maps/Hall\",\r\n\t\"tags\": "
		"[\r\n\t\t\"a\",\r\n\t\t\"b c\",\r\n\t\t\"d\"\r\n\t],\r\n\t\"screenshots\": "
		"[\r\n\t\t\"/s/1.jpg\",\r\n\t\t\"D:/x/2.png\"\r\n\t]\r\n}");

	FQVWorkshopConfig Bare;
	Bare.Title = "  ";
	Bare.Visibility = "";
	Bare.Tags = {"", " "};
	EXPECT_TRUE(FWorkshop::WriteUploadJson(Bare, "Saved/x.pak", Project.At(Upload), Error));
	EXPECT_EQ(Project.Mask(QVStandalone::DecodeText(Project.Read(Upload))),
		"{\r\n\t\"pak_path\": \"<Project>/Saved/x.pak\",\r\n\t\"title\": \"  \",\r\n\t\"tags\": []\r\n}")
		<< "blanks are a title";
}

TEST_F(FWorkshopConfigTest, NoRequestIsWrittenWhenItsDetailsWillNotDo)
{
	std::string Error;
	EXPECT_FALSE(FWorkshop::WriteUploadJson({}, "/x.pak", Project.At(Upload), Error));
	EXPECT_EQ(Error, "Title is required");
	FQVWorkshopConfig Config;
	Config.Title = "x";
	Config.Screenshots = {PutImage("a.png", 1048577)};
	EXPECT_FALSE(FWorkshop::WriteUploadJson(Config, "/x.pak", Project.At(Upload), Error));
	EXPECT_EQ(Error, "These images are over Steam's 1 MB per-file limit:\n    Screenshot:  a.png  (1.00 MB)");
	EXPECT_FALSE(Project.Exists("Saved"));
	Config.Screenshots = {Project.At("gone.png")};
	Files.Refuse = [](std::string_view Operation, std::string_view) { return Operation == "save"; };
	EXPECT_FALSE(FWorkshop::WriteUploadJson(Config, "/x.pak", Project.At(Upload), Error));
	EXPECT_EQ(Project.Mask(Error), "Failed to write upload JSON to: <Project>/" + Upload);
	EXPECT_EQ(Logged(), "");
	Files.Refuse = {};
	EXPECT_TRUE(FWorkshop::WriteUploadJson(Config, "/x.pak", Project.At(Upload), Error));
	EXPECT_NE(QVStandalone::DecodeText(Project.Read(Upload)).find("gone.png"), std::string::npos);
}

TEST_F(FWorkshopConfigTest, WarningsOfImagesSayWhatSteamRefusesAndWhatLooksOdd)
{
	const auto Put = [this](const std::string& Name, std::string Bytes, std::size_t Size = 0)
	{
		Bytes.resize(std::max(Size, Bytes.size()));
		Project.Write(Name, Bytes);
		return Project.At(Name);
	};
	const struct
	{
		std::string Path;
		bool bTooBig;
		const char* Text;
	} Previews[] = {
		{"", false, ""},
		{Project.At("gone.png"), false, ""},
		{Put("a.png", MakePng(512, 512), 1048576), false, ""},
		{Put("b.PNG", MakePng(512, 511)), false, "Image is 512x511 -- should be square (1:1). Recommended: 512x512"},
		{Put("c.jpeg", MakeJpeg(8, 16), 1572864), true,
			"Over Steam's 1 MB limit at 1.50 MB, publishing is blocked until it is smaller\n"
			"Image is 8x16 -- should be square (1:1). Recommended: 512x512"},
		{Put("wide.png", MakePngHeader(30'000, 30)), false,
			"Image is 30000x30 -- should be square (1:1). Recommended: 512x512"},
		{Put("text.png", "no image"), false, ""},
		{Put("other.jpg", MakePng(3, 4)), false, ""},
		{Put("ending.bmp", MakePng(3, 4), 1048577), true,
			"Over Steam's 1 MB limit at 1.00 MB, publishing is blocked until it is smaller"},
	};
	for (const auto& Case : Previews)
	{
		const FQVWorkshopImageWarning Warning = FImages::CheckPreview(Case.Path);
		EXPECT_EQ(Warning.Text, Case.Text) << Case.Path;
		EXPECT_EQ(Warning.bTooBig, Case.bTooBig) << Case.Path;
	}
	const std::vector<std::string> Screenshots = {Put("1.png", MakePngHeader(1920, 1081)),
		Put("2.png", MakePngHeader(1600, 900)), Put("3.png", MakePngHeader(1000, 640), 2097152), "",
		Put("4.jpg", MakeJpeg(1280, 800)), Project.At("gone.png"), Put("5.png", "text", 1048577)};
	const FQVWorkshopImageWarning Warning = FImages::CheckScreenshots(Screenshots);
	EXPECT_TRUE(Warning.bTooBig);
	EXPECT_EQ(Warning.Text, "Over Steam's 1 MB limit, publishing is blocked until these are smaller: 3.png (2.00 MB), "
							"5.png (1.00 MB)\nNot 16:9 aspect ratio: 3.png (1000x640), 4.jpg (1280x800)");
	EXPECT_EQ(FImages::CheckScreenshots({Screenshots[4]}).Text, "Not 16:9 aspect ratio: 4.jpg (1280x800)");
	EXPECT_FALSE(FImages::CheckScreenshots({Screenshots[4]}).bTooBig);
	EXPECT_EQ(FImages::CheckScreenshots({Screenshots[0], Screenshots[1]}).Text, "");
	const std::string Huge = Put("huge.png", MakePng(3, 4), FImages::MostFileBytes + 1);
	EXPECT_EQ(FImages::ReadSize(Huge), std::nullopt) << "is not even read";
}

TEST(WorkshopLimits, TextsThatSteamWouldCutAreCountedInBytes)
{
	using FLimits = FQVMapWorkshopLimits;
	FQVWorkshopConfig Config;
	Config.Title = std::string(128, 'x');
	Config.Description = std::string(8000, 'x');
	Config.ChangeNote = std::string(8000, 'x');
	Config.Tags = {std::string(512, 'x'), std::string(511, 'x')};
	EXPECT_EQ(FLimits::FindTooLong(Config), std::vector<std::string>());
	Config.Title = FQVString::ReplaceAll(std::string(65, 'x'), "x", "ö");
	Config.Description += "x";
	Config.ChangeNote += "x";
	Config.Tags.emplace_back();
	EXPECT_EQ(
		FLimits::FindTooLong(Config), (std::vector<std::string>{"the title has 130 bytes, and Steam takes 128 at most",
										  "the description has 8001 bytes, and Steam takes 8000 at most",
										  "the change note has 8001 bytes, and Steam takes 8000 at most",
										  "the list of tags has 1025 bytes, and Steam takes 1024 at most"}));
}
