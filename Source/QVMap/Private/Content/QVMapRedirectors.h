// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVText.h"
#include "Engine/QVAssetRegistry.h"

#include <span>

/** Does away with the redirectors that moved assets leave behind. Game thread. */
struct FQVMapRedirectors
{
	/** True as soon as the engine's fix-up was called; else OutError says why it was not. */
	static bool FixRedirectors(std::span<const FQVAssetData> Redirectors, FQVText& OutError);
	/** The same, with the error shown to the user. */
	static bool FixRedirectorsWithDialog(std::span<const FQVAssetData> Redirectors);
};
