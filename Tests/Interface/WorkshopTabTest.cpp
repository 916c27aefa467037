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
