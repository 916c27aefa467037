// SPDX-License-Identifier: MIT
#include "Tests/Interface/WorkshopTabSupport.h"

using namespace QVTest;
using FWorkshopTabImages = FWorkshopTabTest;

namespace
{
using EAction = EQVWorkshopAction;
using FPaths = std::vector<std::string>;

const std::string ImageDialog = "Image Files (*.jpg;*.jpeg;*.png)|*.jpg;*.jpeg;*.png";
} // namespace

TEST_F(FWorkshopTabImages, TheMainImageIsPickedShownAndWarnedOf)
{
	Open("/Cave/Maps/Hall");
	OpenTab();
	const auto Browse = [this](const std::optional<std::string>& Answer)
	{
		Dialogs.Answer = Answer;
		Tab->Press(EAction::BrowsePreview);
		return std::pair(std::string(Tab->GetPreviewWarning().Text), Tab->GetPreviewBrush() != nullptr);
	};
	const std::string Odd = "Image is 4x2 -- should be square (1:1). Recommended: 512x512";
	EXPECT_EQ(Browse({}), std::pair(std::string(), false));
	EXPECT_EQ(Dialogs.Asked, "Select Preview Image, " + ImageDialog);
	EXPECT_EQ(Browse(""), std::pair(std::string(), false));
	EXPECT_EQ(Browse(PutImage("pics/a.PNG", MakePng(4, 2), 1048576)), std::pair(Odd, true));
	EXPECT_EQ(SQVWorkshopTab::GetColor(Tab->GetPreviewWarning()), FQVWorkshopForm::WarningColor);
	EXPECT_EQ(Tab->GetPreviewName().ToString(), "a.PNG");
	EXPECT_EQ(Tab->GetPreviewBrush()->ResourceName, "QVWorkshopPreview_a.PNG");
	EXPECT_EQ(Tab->GetPreviewBrush()->Image.Size, (FQVImageSize{4, 2}));
	EXPECT_EQ(Saved().PreviewImage, Project.At("pics/a.PNG"));
	EXPECT_EQ(Shown(), "");

	EXPECT_EQ(Browse(PutImage("big.png", MakePng(4, 4), 1572864)), std::pair(Odd, true)) << "is not taken";
	EXPECT_EQ(Shown(),
		"message PreviewTooBig: 'big.png' is 1.50 MB.\n\nSteam refuses Workshop images over 1 MB, so this "
		"one was not added. Save it smaller (512x512 JPG is usually well under the limit) and browse again.");
	EXPECT_EQ(Saved().PreviewImage, Project.At("pics/a.PNG"));

	EXPECT_EQ(Browse(PutImage("wide.png", MakePngHeader(30'000, 30'000))), std::pair(std::string(), false));
	EXPECT_EQ(Browse(PutImage("text.jpg", "Dear diary")), std::pair(std::string(), false));
	EXPECT_EQ(Browse(PutImage("cut.jpg", MakeJpeg(64, 64).substr(0, 40))), std::pair(std::string(), false));
	EXPECT_EQ(Browse(PutImage("b.jpeg", MakeJpeg(64, 64))), std::pair(std::string(), true));
	EXPECT_EQ(Saved().PreviewImage, Project.At("b.jpeg"));

	PutImage("b.jpeg", MakeJpeg(64, 64), 1048577);
	Tab->Press(EAction::Refresh);
	EXPECT_EQ(
		Tab->GetPreviewWarning().Text, "Over Steam's 1 MB limit at 1.00 MB, publishing is blocked until it is smaller");
	EXPECT_EQ(SQVWorkshopTab::GetColor(Tab->GetPreviewWarning()), FQVWorkshopForm::BlockingColor);
	Project.Remove("b.jpeg");
	Tab->Press(EAction::Refresh);
	EXPECT_EQ(Tab->GetPreviewBrush(), nullptr);
	EXPECT_EQ(Tab->GetPreviewWarning().Text, "");
	EXPECT_EQ(Tab->GetPreviewName().ToString(), "b.jpeg") << "the record keeps it";

	Dialogs.bDesktop = false;
	EXPECT_EQ(Browse(Project.At("pics/a.PNG")), std::pair(std::string(), false)) << "the button does nothing";
	EXPECT_EQ(Saved().PreviewImage, Project.At("b.jpeg"));
	Open("/Harbor/Deep/Er/Pier");
	EXPECT_EQ(Tab->GetPreviewName().ToString(), "(none)");
	EXPECT_EQ(Tab->GetPreviewBrush(), nullptr);
}

TEST_F(FWorkshopTabImages, ScreenshotsAreAddedAndRemoved)
{
	Open("/Cave/Maps/Hall");
	OpenTab();
	const auto Add = [this](const std::vector<std::string>& Answers)
	{
		Dialogs.Answers = Answers;
		Tab->Press(EAction::AddScreenshots);
	};
	Add({});
	EXPECT_EQ(Dialogs.Asked, "Add Screenshots, " + ImageDialog + ", several");
	const std::string A = PutImage("a.png", MakePng(16, 9), 1048576);
	const std::string B = PutImage("b.png", "x", 1048577);
	const std::string C = PutImage("c.jpg", MakeJpeg(10, 10));
	const std::string D = PutImage("d.png", "x", 2097152);
	Add({A, B, C, D, A});
	EXPECT_EQ(Tab->GetScreenshots(), (FPaths{A, C, A}));
	EXPECT_EQ(Saved().Screenshots, (FPaths{A, C, A}));
	EXPECT_EQ(Shown(),
		"message ScreenshotsTooBig: Steam refuses Workshop images over 1 MB, one file at a time, so these were "
		"not added:\n\n    b.png  (1.00 MB)\n    d.png  (2.00 MB)\n\nSave them smaller (1920x1080 JPG at "
		"moderate quality fits) and add them again.");
	EXPECT_EQ(Tab->GetScreenshotWarning().Text, "Not 16:9 aspect ratio: c.jpg (10x10)");
	EXPECT_FALSE(Tab->GetScreenshotWarning().bTooBig);
	Add({D});
	EXPECT_EQ(Saved().Screenshots.size(), 3);
	Shown();
	PutImage("c.jpg", MakeJpeg(10, 10), 1048577);
	Add({A});
	EXPECT_EQ(Tab->GetScreenshotWarning().Text,
		"Over Steam's 1 MB limit, publishing is blocked until these are smaller: "
		"c.jpg (1.00 MB)\nNot 16:9 aspect ratio: c.jpg (10x10)");
	EXPECT_TRUE(Tab->GetScreenshotWarning().bTooBig);

	View.Selected = {3, 1};
	Tab->Press(EAction::RemoveScreenshots);
	EXPECT_EQ(Saved().Screenshots, (FPaths{A, A}));
	EXPECT_EQ(Tab->GetScreenshotWarning().Text, "");
	View.Selected = {};
	Recording.Take();
	Tab->Press(EAction::RemoveScreenshots);
	EXPECT_EQ(Logged(), "QVMap: Workshop config saved to <Project>/" + CaveFile + "\n");
	EXPECT_EQ(Tab->GetScreenshots(), (FPaths{A, A}));
	Dialogs.bDesktop = false;
	Add({C});
	EXPECT_EQ(Tab->GetScreenshots(), (FPaths{A, A}));
}

TEST_F(FWorkshopTabImages, ThumbnailsAreDecodedOnce)
{
	OpenTab();
	const std::string Path = PutImage("one/a.png", MakePng(16, 9));
	const std::string Same = PutImage("two/a.png", MakePng(3, 5));
	const FQVWorkshopBrush* Brush = Tab->GetThumbnail(Path);
	ASSERT_NE(Brush, nullptr);
	EXPECT_EQ(Brush->ResourceName, "QVScreenshot_a.png");
	EXPECT_EQ(Brush->Image.Bgra.size(), 16 * 9 * 4);
	ASSERT_NE(Tab->GetThumbnail(Same), nullptr);
	EXPECT_EQ(Tab->GetThumbnail(Same)->Image.Size, (FQVImageSize{3, 5})) << "by full path, though the name is the same";
	Project.Remove("one");
	EXPECT_EQ(Tab->GetThumbnail(Path), Brush);
	EXPECT_EQ(Tab->GetThumbnail(Project.At("late.png")), nullptr);
	PutImage("late.png", "broken");
	EXPECT_EQ(Tab->GetThumbnail(Project.At("late.png")), nullptr);
	PutImage("late.png", MakePng(1, 1));
	EXPECT_NE(Tab->GetThumbnail(Project.At("late.png")), nullptr) << "is tried again";
}
