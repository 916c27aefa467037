// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVText.h"

#include <array>
#include <cstdint>
#include <vector>

/** The rows of the form, from top to bottom. */
enum class EQVWorkshopRow : std::uint8_t
{
	Header,
	Title,
	Description,
	Tags,
	Visibility,
	MainImage,
	Screenshots,
	ChangeNote,
	StartMap,
	LastExport,
	Publish
};

enum class EQVWorkshopControl : std::uint8_t
{
	/** "Map: ", which map it is, and the buttons. */
	Header,
	TextBox,
	MultiLineTextBox,
	/** Over the options of the tab, as bare words. */
	ComboBox,
	/** The buttons, the file's name, the note, the warning, and the image in its box. */
	Image,
	/** The buttons, the note, the warning, and the list. */
	ImageList,
	/** With a tooltip. */
	ReadOnlyText,
	/** A line of its own, without a caption. */
	Line,
	Button
};

enum class EQVWorkshopAction : std::uint8_t
{
	Refresh,
	BrowsePreview,
	AddScreenshots,
	RemoveScreenshots,
	PackAndPublish
};

struct FQVWorkshopButton
{
	EQVWorkshopAction Action = EQVWorkshopAction::Refresh;
	FQVText Label;
	/** Most have none. */
	FQVText Tooltip;
};

/** One row of the form, as far as it never changes. */
struct FQVWorkshopFormRow
{
	EQVWorkshopRow Row = EQVWorkshopRow::Header;
	EQVWorkshopControl Control = EQVWorkshopControl::Header;
	/** Bold, in a column of its own, for a field. */
	FQVText Caption = {};
	/** Shown in a text box that is empty. */
	FQVText Hint = {};
	/** Below a text box, beside the buttons of images. */
	FQVText Note = {};
	std::vector<FQVWorkshopButton> Buttons = {};
	bool bSeparatorAfter = false;
};

struct FQVWorkshopFont
{
	int Size = 9;
	bool bBold = false;
	bool bItalic = false;
};

/** Red, green, blue and alpha, 0 to 1. */
using FQVWorkshopColor = std::array<float, 4>;

/** What the form looks like: one scroll box with one row below the other. Sizes are in Slate's units. */
struct FQVWorkshopForm
{
	static constexpr std::string_view TextNamespace = "SQVWorkshopTab";

	static constexpr int CaptionWidth = 96;
	static constexpr int PreviewSize = 256;
	static constexpr int ScreenshotListHeight = 200;
	static constexpr int ThumbnailWidth = 72;
	static constexpr int ThumbnailHeight = 40;

	static constexpr FQVWorkshopFont CaptionFont = {10, true, false};
	static constexpr FQVWorkshopFont TagsNoteFont = {8, false, true};
	static constexpr FQVWorkshopFont PreviewNameFont = {9, false, true};
	static constexpr FQVWorkshopFont ScreenshotNameFont = {9, false, false};
	static constexpr FQVWorkshopFont WarningFont = {9, true, false};
	static constexpr FQVWorkshopFont LastExportFont = {9, false, true};

	/** Of a warning that stands in the way of publishing, and of one that does not. */
	static constexpr FQVWorkshopColor BlockingColor = {1.0F, 0.25F, 0.25F, 1.0F};
	static constexpr FQVWorkshopColor WarningColor = {1.0F, 0.6F, 0.0F, 1.0F};

	static const std::vector<FQVWorkshopFormRow>& GetRows();
};
