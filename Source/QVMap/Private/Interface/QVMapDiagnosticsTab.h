// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

/** The tab that shows FQVMapDiagnosticsPanel, as an editor registers it. Game thread. */
struct FQVMapDiagnosticsTab
{
	static constexpr std::string_view TabId = "QVMapDiagnostics";
	static constexpr std::string_view TextNamespace = "FQVMapDiagnosticsTab";

	static void Register();
	static void Unregister();
	/** Brings it to the front. */
	static void Open();
};
