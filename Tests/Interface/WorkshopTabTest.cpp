// SPDX-License-Identifier: MIT
#include "Tests/Interface/WorkshopTabSupport.h"

#include "Export/QVMapLastExport.h"
#include "Interface/QVMapWorkshopTab.h"
#include "Standalone/Engine/TextEncoding.h"

using namespace QVTest;
using FWorkshopTab = FWorkshopTabTest;

namespace
{
using EAction = EQVWorkshopAction;
using FTags = std::vector<std::string>;

/** `key: text`, or the text alone where it has no key. */
std::string Describe(const FQVText& Text)
{
	EXPECT_TRUE(Text.GetKey().empty() || Text.GetNamespace() == "SQVWorkshopTab") << Text.GetNamespace();
	return Text.GetKey().empty() ? Text.ToString() : Text.GetKey() + ": " + Text.ToString();
}

std::string Describe(const FQVWorkshopFormRow& Row)
{
	constexpr const char* Controls[] = {
		"header", "text box", "multi-line", "combo box", "image", "image list", "read-only", "line", "button"};
	std::string Text =
		QVPrintf("%s [%s]", Describe(Row.Caption), std::string_view(Controls[static_cast<int>(Row.Control)]));
	Text += Row.Hint.GetSource().empty() ? "" : " hint " + Describe(Row.Hint);
	Text += Row.Note.GetSource().empty() ? "" : " note " + Describe(Row.Note);
	for (const FQVWorkshopButton& Button : Row.Buttons)
	{
		Text += QVPrintf(" button %d %s", static_cast<int>(Button.Action), Describe(Button.Label));
		Text += Button.Tooltip.GetSource().empty() ? "" : " tooltip " + Describe(Button.Tooltip);
	}
	return Text + "\n" + (Row.bSeparatorAfter ? "--\n" : "");
}

const std::string ImageDialog = "Image Files (*.jpg;*.jpeg;*.png)|*.jpg;*.jpeg;*.png";
} // namespace

TEST(WorkshopForm, IsTheWholeFormInItsOrder)
{
	std::string Form;
	int Place = 0;
	for (const FQVWorkshopFormRow& Row : FQVWorkshopForm::GetRows())
	{
		EXPECT_EQ(static_cast<int>(Row.Row), Place++);
		Form += Describe(Row);
	}
	EXPECT_EQ(Form,
		"Map:  [header] button 0 RefreshPlugin: Refresh tooltip RefreshTooltip: Re-read which map is open\n--\n"
		"Title [text box]\n"
		"Description [multi-line]\n"
		"Tags [text box] hint TagsHint: parkour, difficult, short note TagsNote: (comma-separated)\n"
		"Visibility [combo box]\n--\n"
		"MainImageLabel: Main Image [image] note MainImageNote: (recommended: 512x512, JPG or PNG, max 1 MB) "
		"button 1 BrowsePreview: Browse...\n--\n"
		"ScreenshotsLabel: Screenshots [image list] note ScreenshotNote: (recommended: 1920x1080 or 16:9, JPG or PNG, "
		"max 1 MB each) button 2 AddScreenshot: Add... button 3 RemoveScreenshot: Remove\n--\n"
		"Change Note [text box] hint ChangeNoteHint: What changed in this version\n"
		"Start Map [read-only]\n--\n"
		" [line]\n"
		" [button] button 4 ExportAndUpload: PACK & PUBLISH tooltip ExportUploadTooltip: Pack this map and hand it to "
		"QUARVEL to publish on the Steam Workshop\n");
	EXPECT_EQ(FQVMapWorkshopTab::TabId, "QVMapWorkshop");
	EXPECT_EQ(FQVMapWorkshopTab::GetDisplayName().GetKey(), "TabTitle");
	EXPECT_EQ(FQVMapWorkshopTab::GetDisplayName().ToString(), "Share Map");
	EXPECT_EQ(FQVMapWorkshopTab::GetTooltip().ToString(), "Describe a map and publish it to the Steam Workshop");
}

TEST_F(FWorkshopTab, FollowsTheOpenMap)
{
	OpenTab();
	EXPECT_EQ(Describe(Tab->GetHeader()), "NoMapOpen: (no map open)");
	EXPECT_EQ(Describe(Tab->GetStartMapText()), "NoStartMap: (no map found)");
	EXPECT_EQ(Describe(Tab->GetStartMapTooltip()), "NoStartMapTooltip: No map was found in this map's folder.");
	EXPECT_EQ(Describe(Tab->GetLastExport()), "NoExport: No previous export found");
	EXPECT_EQ(Describe(Tab->GetPreviewName()), "(none)");
	EXPECT_FALSE(Tab->CanPublish());
	Enter(Title, "lost");
	EXPECT_EQ(Shown(), "") << "why no map qualifies is not said here";

	View.Changed.clear();
	Open("/Cave/Maps/Hall");
	EXPECT_EQ(Describe(Tab->GetHeader()), "Hall");
	EXPECT_EQ(View.Boxes[Title], "Cave") << "without a record of its own";
	EXPECT_EQ(Tab->GetSelectedVisibility(), 0);
	EXPECT_EQ(Describe(Tab->GetStartMapText()), "Maps/Attic") << "the first map of the mod";
	EXPECT_EQ(
		Describe(Tab->GetStartMapTooltip()), "StartMapTooltip: Players load this map first: /Game/Cave/Maps/Attic");
	EXPECT_EQ(Describe(Tab->GetLastExport()), "NoExportFound: No previous export found");
	EXPECT_TRUE(Tab->CanPublish());
	for (const EQVWorkshopRow Row : {Header, Visibility, MainImage, Screenshots, StartMap, LastExport, Publish})
	{
		EXPECT_TRUE(View.Changed.contains(Row)) << static_cast<int>(Row);
	}
	Enter(Description, "deep");
	View.Boxes[Title] = "typed, not committed";
	Open("/Harbor/Deep/Er/Pier");
	EXPECT_EQ(View.Boxes[Title], "Harbor");
	EXPECT_EQ(View.Boxes[Description], "");
	EXPECT_EQ(Describe(Tab->GetStartMapText()), "Deep/Er/Pier");
	EXPECT_EQ(Saved().Title, "Cave");
	Open("/Cave/Maps/Attic");
	EXPECT_EQ(Describe(Tab->GetHeader()), "Attic");
	EXPECT_EQ(View.Boxes[Description], "deep");

	Project.Remove("Plugins/Cave/Cave.uplugin");
	Tab->Press(EAction::Refresh);
	EXPECT_EQ(Describe(Tab->GetHeader()), "NoMapOpen: (no map open)");
	EXPECT_EQ(View.Boxes[Title], "");
	Tab.reset();
	View.Changed.clear();
	Open("/Harbor/Deep/Er/Pier");
	EXPECT_TRUE(View.Changed.empty()) << "a tab that was closed hears nothing";
}

TEST_F(FWorkshopTab, EveryEditIsSaved)
{
	Open("/Cave/Maps/Hall");
	OpenTab();
	Enter(Title, "The Cave");
	Enter(Description, "dark\nand deep");
	Enter(ChangeNote, "first");
	const std::pair<const char*, FTags> Cases[] = {{"a,, b ,",
													   {
														   "a",
														   "b",
													   }},
		{"a, ,b", {"a", "", "b"}}, {"", {}}, {" x y ", {"x y"}}};
	for (const auto& [Text, Expected] : Cases)
	{
		Enter(Tags, Text);
		EXPECT_EQ(Saved().Tags, Expected) << Text;
	}
	Tab->OnVisibilitySelected(2);
	Tab->OnVisibilitySelected(3);
	FQVWorkshopConfig Expected;
	Expected.Title = "The Cave";
	Expected.Description = "dark\nand deep";
	Expected.Tags = {"x y"};
	Expected.Visibility = "private";
	Expected.ChangeNote = "first";
	Expected.StartMap = "/Game/Cave/Maps/Attic";
	EXPECT_EQ(Saved(), Expected);
	OpenTab();
	EXPECT_EQ(View.Boxes[Tags], "x y");
	EXPECT_EQ(View.Boxes[ChangeNote], "first");
	EXPECT_EQ(Tab->GetSelectedVisibility(), 2);

	Files.Refuse = [](std::string_view Operation, std::string_view) { return Operation == "save"; };
	Recording.Take();
	Enter(Title, "lost");
	EXPECT_EQ(Complaints(), "Error: QVMap: Failed to save workshop config to: <Project>/" + CaveFile + "\n");
	EXPECT_EQ(Shown(), "");
}

TEST_F(FWorkshopTab, RecordsThatDoNotFitAreMadeToFit)
{
	Project.Write(
		CaveFile, QVStandalone::EncodeText(R"({"title": "Höhle", "visibility": "FRIENDS_ONLY", "tags": ["x", "", "y"],
		"start_map": "/game/cave/maps/HALL"})"));
	Open("/Cave/Maps/Hall");
	OpenTab();
	EXPECT_EQ(View.Boxes[Title], "Höhle");
	EXPECT_EQ(View.Boxes[Tags], "x, , y");
	EXPECT_EQ(Tab->GetSelectedVisibility(), 1);
	EXPECT_EQ(
		Describe(Tab->GetStartMapTooltip()), "StartMapTooltip: Players load this map first: /Game/Cave/Maps/Hall");
	EXPECT_EQ(Saved().StartMap, "/game/cave/maps/HALL") << "good as it is";

	Project.Write(CaveFile, R"({"title": "x", "visibility": "hidden", "start_map": "/Game/Cave/Maps/Gone"})");
	Tab->Press(EAction::Refresh);
	EXPECT_EQ(Tab->GetSelectedVisibility(), 1) << "stays at the last selection";
	EXPECT_EQ(Saved().StartMap, "/Game/Cave/Maps/Attic") << "heals by itself";
	EXPECT_EQ(Saved().Visibility, "hidden");
	Enter(Title, "y");
	EXPECT_EQ(Saved().Visibility, "friends_only");

	for (const char* Broken : {"{\"title\": ", "[1]", "\xFF\xFE{"})
	{
		Project.Write(CaveFile, Broken);
		Recording.Take();
		Tab->Press(EAction::Refresh);
		EXPECT_EQ(Complaints(), "Warning: QVMap: Failed to parse workshop config: <Project>/" + CaveFile + "\n");
		EXPECT_EQ(View.Boxes[Title], "Cave");
	}
}

TEST_F(FWorkshopTab, TheMainImageIsPickedShownAndWarnedOf)
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
	EXPECT_EQ(Describe(Tab->GetPreviewName()), "a.PNG");
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
	EXPECT_EQ(Describe(Tab->GetPreviewName()), "b.jpeg") << "the record keeps it";

	Dialogs.bDesktop = false;
	EXPECT_EQ(Browse(Project.At("pics/a.PNG")), std::pair(std::string(), false)) << "the button does nothing";
	EXPECT_EQ(Saved().PreviewImage, Project.At("b.jpeg"));
	Open("/Harbor/Deep/Er/Pier");
	EXPECT_EQ(Describe(Tab->GetPreviewName()), "(none)");
	EXPECT_EQ(Tab->GetPreviewBrush(), nullptr);
}

TEST_F(FWorkshopTab, ScreenshotsAreAddedAndRemoved)
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
	EXPECT_EQ(Tab->GetScreenshots(), (FTags{A, C, A}));
	EXPECT_EQ(Saved().Screenshots, (FTags{A, C, A}));
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
	EXPECT_EQ(Saved().Screenshots, (FTags{A, A}));
	EXPECT_EQ(Tab->GetScreenshotWarning().Text, "");
	View.Selected = {};
	Recording.Take();
	Tab->Press(EAction::RemoveScreenshots);
	EXPECT_EQ(Logged(), "QVMap: Workshop config saved to <Project>/" + CaveFile + "\n");
	EXPECT_EQ(Tab->GetScreenshots(), (FTags{A, A}));
	Dialogs.bDesktop = false;
	Add({C});
	EXPECT_EQ(Tab->GetScreenshots(), (FTags{A, A}));
}

TEST_F(FWorkshopTab, ThumbnailsAreDecodedOnce)
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

TEST_F(FWorkshopTab, TheLastExportIsThatOfThisMod)
{
	Open("/Cave/Maps/Hall");
	OpenTab();
	Project.Write("Saved/QVPak/Output/Cave_1.pak", "pak");
	FQVLastExportRecord Record;
	Record.PluginName = "CAVE";
	Record.bSuccess = true;
	Record.PakPath = Project.At("Saved/QVPak/Output/Cave_1.pak");
	Record.PakSizeBytes = 1572864;
	Record.FilesPacked = 12;
	const auto Shows = [this](const FQVLastExportRecord& Written)
	{
		EXPECT_TRUE(FQVMapLastExport::WriteLastExportRecord(Written));
		Tab->Press(EAction::Refresh);
		return Describe(Tab->GetLastExport());
	};
	const std::string Last = "Last Export: Cave_1.pak (1.50 MB, 12 files)";
	const std::string None = "NoExportFound: No previous export found";
	Project.MakeFolder("Saved/QVPak/Logs");
	EXPECT_EQ(Shows(Record), Last);
	FQVLastExportRecord Other = Record;
	Other.PluginName = "Harbor";
	EXPECT_EQ(Shows(Other), None);
	Other = Record;
	Other.bSuccess = false;
	EXPECT_EQ(Shows(Other), None);
	Other = Record;
	Other.PakPath += "x";
	EXPECT_EQ(Shows(Other), None);
	EXPECT_EQ(Shows(Record), Last);
	Project.Remove("Plugins/Cave/Cave.uplugin");
	Project.Write("Saved/QVPak/Logs/last_export.json", "");
	Tab->Press(EAction::Refresh);
	EXPECT_EQ(Describe(Tab->GetLastExport()), Last) << "left as it stands without a map";
}
