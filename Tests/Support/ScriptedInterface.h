// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVPrintf.h"
#include "Engine/QVInterface.h"

#include <algorithm>
#include <set>
#include <vector>

namespace QVTest
{
/** A program's windows that are never drawn: it keeps what is registered, and notes each step. */
class FScriptedInterface : public IQVInterface
{
public:
	/** One line for each step. */
	std::string Story;
	std::vector<FQVTab> Tabs;
	std::vector<FQVCommandContext> Contexts;
	std::vector<FQVToolMenuExtension> Extensions;
	std::shared_ptr<const FQVStyleSet> Style;
	/** Its main window is there from now on. */
	TQVEvent<> MainFrameCreated;

	std::string TakeStory() { return std::exchange(Story, {}); }

	void LoadModuleChecked(std::string_view Module) override { Story += QVPrintf("load %s\n", Module); }
	void RegisterStyle(std::shared_ptr<const FQVStyleSet> InStyle) override
	{
		Story += QVPrintf("style %s\n", InStyle->Name);
		Style = std::move(InStyle);
	}
	void UnregisterStyle(const FQVStyleSet& InStyle) override
	{
		Story += QVPrintf("no style %s\n", InStyle.Name);
		Style.reset();
	}
	void RegisterCommands(FQVCommandContext Context) override
	{
		Story += QVPrintf("commands %s\n", Context.Name);
		Contexts.push_back(std::move(Context));
	}
	void UnregisterCommands(std::string_view Context) override
	{
		Story += QVPrintf("no commands %s\n", Context);
		std::erase_if(Contexts, [Context](const FQVCommandContext& Each) { return Each.Name == Context; });
	}
	void ExtendMenu(FQVToolMenuExtension Extension) override
	{
		Story += QVPrintf("menu %s/%s/%s\n", Extension.Menu, Extension.Section, Extension.Entry);
		Extensions.push_back(std::move(Extension));
	}
	void RegisterTab(FQVTab Tab) override
	{
		Story += QVPrintf("%s %s\n", Tab.bWindow ? "window" : "tab", Tab.Id);
		Tabs.push_back(std::move(Tab));
	}
	void UnregisterTab(std::string_view Id) override
	{
		Story += QVPrintf("no tab %s\n", Id);
		std::erase_if(Tabs, [Id](const FQVTab& Each) { return Each.Id == Id; });
	}
	void InvokeTab(std::string_view Id) override { Story += QVPrintf("show %s\n", Id); }
	FQVSubscription OnMainFrameCreated(std::function<void()> Handler) override
	{
		return MainFrameCreated.Subscribe(std::move(Handler));
	}
};
} // namespace QVTest
