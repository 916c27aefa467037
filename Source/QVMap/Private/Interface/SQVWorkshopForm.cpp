// SPDX-License-Identifier: MIT
#include "Interface/SQVWorkshopForm.h"

namespace
{
FQVText Loc(std::string_view Key, std::string_view Source)
{
	return {FQVWorkshopForm::TextNamespace, Key, Source};
}

FQVText Bare(std::string_view Text)
{
	return FQVText::FromString(Text);
}

std::vector<FQVWorkshopFormRow> MakeRows()
{
	using enum EQVWorkshopRow;
	using EControl = EQVWorkshopControl;
	using EAction = EQVWorkshopAction;
	return {
		{.Row = Header,
			.Control = EControl::Header,
			.Caption = Bare("Map: "),
			.Buttons = {{EAction::Refresh, Loc("RefreshPlugin", "Refresh"),
				Loc("RefreshTooltip", "Re-read which map is open")}},
			.bSeparatorAfter = true},
		{.Row = Title, .Control = EControl::TextBox, .Caption = Bare("Title")},
		{.Row = Description, .Control = EControl::MultiLineTextBox, .Caption = Bare("Description")},
		{.Row = Tags,
			.Control = EControl::TextBox,
			.Caption = Bare("Tags"),
			.Hint = Loc("TagsHint", "parkour, difficult, short"),
			.Note = Loc("TagsNote", "(comma-separated)")},
		{.Row = Visibility, .Control = EControl::ComboBox, .Caption = Bare("Visibility"), .bSeparatorAfter = true},
		{.Row = MainImage,
			.Control = EControl::Image,
			.Caption = Loc("MainImageLabel", "Main Image"),
			.Note = Loc("MainImageNote", "(recommended: 512x512, JPG or PNG, max 1 MB)"),
			.Buttons = {{EAction::BrowsePreview, Loc("BrowsePreview", "Browse..."), {}}},
			.bSeparatorAfter = true},
		{.Row = Screenshots,
			.Control = EControl::ImageList,
			.Caption = Loc("ScreenshotsLabel", "Screenshots"),
			.Note = Loc("ScreenshotNote", "(recommended: 1920x1080 or 16:9, JPG or PNG, max 1 MB each)"),
			.Buttons = {{EAction::AddScreenshots, Loc("AddScreenshot", "Add..."), {}},
				{EAction::RemoveScreenshots, Loc("RemoveScreenshot", "Remove"), {}}},
			.bSeparatorAfter = true},
		{.Row = ChangeNote,
			.Control = EControl::TextBox,
			.Caption = Bare("Change Note"),
			.Hint = Loc("ChangeNoteHint", "What changed in this version")},
		{.Row = StartMap, .Control = EControl::ReadOnlyText, .Caption = Bare("Start Map"), .bSeparatorAfter = true},
		{.Row = LastExport, .Control = EControl::Line},
		{.Row = Publish,
			.Control = EControl::Button,
			.Buttons = {{EAction::PackAndPublish, Loc("ExportAndUpload", "PACK & PUBLISH"),
				Loc("ExportUploadTooltip", "Pack this map and hand it to QUARVEL to publish on the Steam Workshop")}}},
	};
}
} // namespace

const std::vector<FQVWorkshopFormRow>& FQVWorkshopForm::GetRows()
{
	static const std::vector<FQVWorkshopFormRow> Rows = MakeRows();
	return Rows;
}
