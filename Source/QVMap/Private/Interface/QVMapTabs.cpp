// SPDX-License-Identifier: MIT
#include "Engine/QVEngine.h"
#include "Engine/QVInterface.h"
#include "Interface/QVMapDiagnosticsTab.h"
#include "Interface/QVMapStyle.h"
#include "Interface/QVMapWorkshopTab.h"

void FQVMapDiagnosticsTab::Register()
{
	FQVTab Tab;
	Tab.Id = TabId;
	Tab.DisplayName = {TextNamespace, "TabTitle", "Diagnostics"};
	Tab.Tooltip = {TextNamespace, "TabTooltip", "Check your map's content, references and last export for problems"};
	Tab.Icon = FQVMapStyle::SmallIcon;
	FQVEngine::Get().Interface->RegisterTab(std::move(Tab));
}

void FQVMapDiagnosticsTab::Unregister()
{
	FQVEngine::Get().Interface->UnregisterTab(TabId);
}

void FQVMapDiagnosticsTab::Open()
{
	FQVEngine::Get().Interface->InvokeTab(TabId);
}

void FQVMapWorkshopTab::Register()
{
	FQVTab Tab;
	Tab.Id = TabId;
	Tab.DisplayName = {TextNamespace, "TabTitle", "Share Map"};
	Tab.Tooltip = {TextNamespace, "TabTooltip", "Describe a map and publish it to the Steam Workshop"};
	Tab.Icon = FQVMapStyle::SmallIcon;
	FQVEngine::Get().Interface->RegisterTab(std::move(Tab));
}

void FQVMapWorkshopTab::Unregister()
{
	FQVEngine::Get().Interface->UnregisterTab(TabId);
}

void FQVMapWorkshopTab::Open()
{
	FQVEngine::Get().Interface->InvokeTab(TabId);
}
