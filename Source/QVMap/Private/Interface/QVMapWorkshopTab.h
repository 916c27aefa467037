// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVText.h"

/** The tab "Share Map" as an editor registers it; its content is SQVWorkshopTab. */
struct FQVMapWorkshopTab
{
	static constexpr std::string_view TabId = "QVMapWorkshop";
	static constexpr std::string_view TextNamespace = "FQVMapWorkshopTab";
	/** Of the toolkit's style. */
	static constexpr std::string_view Icon = "QVMap.QVIcon.Small";

	static FQVText GetDisplayName() { return {TextNamespace, "TabTitle", "Share Map"}; }
	static FQVText GetTooltip()
	{
		return {TextNamespace, "TabTooltip", "Describe a map and publish it to the Steam Workshop"};
	}
};
