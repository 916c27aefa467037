// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVStyleSet.h"

#include <string_view>

/** The toolkit's own looks: its icon, and the red buttons of its toolbar. All else is drawn as the engine does. Game
 * thread. */
struct FQVMapStyle
{
	static constexpr std::string_view Icon = "QVMap.QVIcon";
	static constexpr std::string_view SmallIcon = "QVMap.QVIcon.Small";
	static constexpr std::string_view RedButtonCenter = "QVMap.RedButtonCenter";
	static constexpr std::string_view RedButtonRightCombo = "QVMap.RedButtonRightCombo";

	/** Makes and registers the set; nothing if there is one. Without its file the icon is left out. */
	static void Initialize();
	/** Nobody else may hold the set any more. */
	static void Shutdown();
	/** Between the two. */
	static const FQVStyleSet& Get();
	static std::string_view GetStyleSetName();
};
