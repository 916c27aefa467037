// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVMenuEntry.h"

#include <string>

enum class EQVToolbarControl : std::uint8_t
{
	/** A border that holds an image, or nothing: spacing. */
	Border,
	Button,
	/** A rule on a border. */
	Separator,
	/** Opens a menu. */
	ComboButton
};

/** One control of a toolbar, as it is to be drawn. Names that no style has are drawn in the engine's default style. */
struct FQVToolbarControl
{
	EQVToolbarControl Kind = EQVToolbarControl::Border;
	/** The border's brush, of the editor's style. */
	std::string Brush;
	/** The toolbar style in whose colours it is drawn, of the toolkit's style. */
	std::string Style;
	/** Empty: none. */
	std::string Image;
	/** The image is of the editor's style, not of the toolkit's. */
	bool bEditorImage = false;
	/** Of the image or of the space for one, in Slate's units; 0: the image's own. */
	int Width = 0;
	int Height = 0;
	FQVText Tooltip;
	/** Of a button. Game thread, as the next. */
	std::function<void()> Execute;
	/** Of a combo button; asked whenever its menu opens. */
	std::function<std::vector<FQVMenuEntry>()> BuildMenu;
};

/** A widget that a menu of the editor is extended by, in a section of its own. */
struct FQVToolMenuExtension
{
	std::string Menu;
	std::string Section;
	FQVText SectionLabel;
	std::string Entry;
	FQVText EntryLabel;
	/** From left to right, without gaps. */
	std::vector<FQVToolbarControl> Controls;
};
