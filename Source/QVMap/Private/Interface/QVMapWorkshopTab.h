// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

/** The tab "Share Map", whose content is SQVWorkshopTab, as an editor registers it. Game thread. */
struct FQVMapWorkshopTab
{
	static constexpr std::string_view TabId = "QVMapWorkshop";
	static constexpr std::string_view TextNamespace = "FQVMapWorkshopTab";

	static void Register();
	static void Unregister();
	/** Brings it to the front. */
	static void Open();
};
