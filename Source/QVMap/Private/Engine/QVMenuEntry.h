// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVText.h"

#include <functional>
#include <vector>

enum class EQVMenuEntryKind : std::uint8_t
{
	/** Can be chosen. */
	Action,
	/** Turns over what its check mark shows when it is chosen. */
	Check,
	SubMenu,
	/** A line in the subdued foreground colour that cannot be chosen. */
	SubduedText,
	/** A rule between two groups. */
	Separator
};

/** An entry of a menu, as it is to be drawn. */
struct FQVMenuEntry
{
	EQVMenuEntryKind Kind = EQVMenuEntryKind::Action;
	FQVText Label;
	FQVText Tooltip;
	/** Asked whenever the menu is drawn; empty: it never has a check mark. Game thread, as the next two. */
	std::function<bool()> IsChecked;
	/** Of an action or a check. */
	std::function<void()> Execute;
	/** Of a submenu that is made when it opens; it stands for Entries. */
	std::function<std::vector<FQVMenuEntry>()> BuildEntries;
	/** Of any other submenu. */
	std::vector<FQVMenuEntry> Entries;
};
