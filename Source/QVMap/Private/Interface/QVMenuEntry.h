// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVText.h"

#include <functional>
#include <vector>

enum class EQVMenuEntryKind : std::uint8_t
{
	/** Can be chosen. */
	Action,
	SubMenu,
	/** A line in the subdued foreground colour that cannot be chosen. */
	SubduedText
};

/** An entry of a menu, as it is to be drawn. */
struct FQVMenuEntry
{
	EQVMenuEntryKind Kind = EQVMenuEntryKind::Action;
	FQVText Label;
	FQVText Tooltip;
	/** Asked whenever the menu is drawn; empty: it never has a check mark. Game thread, as the next. */
	std::function<bool()> IsChecked;
	/** Of an action. */
	std::function<void()> Execute;
	/** Of a submenu. */
	std::vector<FQVMenuEntry> Entries;
};
