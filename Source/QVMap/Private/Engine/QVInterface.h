// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVEvent.h"
#include "Engine/QVStyleSet.h"
#include "Engine/QVToolMenu.h"

#include <memory>
#include <string_view>

/** A tab or a window that there is once at most; whoever draws it knows its content by its id. */
struct FQVTab
{
	std::string Id;
	FQVText DisplayName;
	FQVText Tooltip;
	/** Name of an image in the toolkit's style; may be empty. */
	std::string Icon;
	/** A window of its own, not a tab among the editor's tools. */
	bool bWindow = false;
};

/** What a user can give a key to. */
struct FQVCommand
{
	std::string Name;
	FQVText Label;
	FQVText Tooltip;
	/** Empty: it does nothing. Game thread. */
	std::function<void()> Execute;
};

struct FQVCommandContext
{
	std::string Name;
	FQVText Description;
	/** Of a set of styles that the commands' icons are looked for in. */
	std::string StyleSet;
	std::vector<FQVCommand> Commands;
};

/** Styles, menus, tabs and windows of the program that we run in. Game thread. */
class IQVInterface
{
public:
	virtual ~IQVInterface() = default;

	/** Has a module of the editor loaded; one that is not there ends the program. */
	virtual void LoadModuleChecked(std::string_view Module) = 0;

	/** Drawn with from now on, until the same set is unregistered; nothing of it is held afterwards. */
	virtual void RegisterStyle(std::shared_ptr<const FQVStyleSet> Style) = 0;
	virtual void UnregisterStyle(const FQVStyleSet& Style) = 0;

	virtual void RegisterCommands(FQVCommandContext Context) = 0;
	/** By the context's name. */
	virtual void UnregisterCommands(std::string_view Context) = 0;

	/** For the life of the program. */
	virtual void ExtendMenu(FQVToolMenuExtension Extension) = 0;

	virtual void RegisterTab(FQVTab Tab) = 0;
	/** One that is open closes. */
	virtual void UnregisterTab(std::string_view Id) = 0;
	/** Opens it, or brings it to the front; nothing if it is not registered. */
	virtual void InvokeTab(std::string_view Id) = 0;

	/** The handler is called when the program's main window has been made, as long as the subscription is held. */
	[[nodiscard]] virtual FQVSubscription OnMainFrameCreated(std::function<void()> Handler) = 0;
};
