// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVNameSet.h"
#include "Engine/QVAssetRegistry.h"

#include <string>
#include <string_view>
#include <vector>

/** What a pack of a mod would have to bring in, and what would have to be made to refer to it. */
struct FQVImportPlan
{
	enum class EMemoryOnly
	{
		/** A package that was never saved counts as missing. */
		Leave,
		/** It is saved to its own place. */
		Save
	};

	bool bSuccess = false;
	std::string ErrorMessage;
	/** To be copied: on disk, neither of the mod nor trusted; with all that they need at run time. */
	FQVNameSet External;
	/** A redirector outside the mod that is not copied itself: whoever refers to it is to refer to the copy of this. */
	struct FRedirection
	{
		FQVAssetData Redirector;
		FQVName Target;
	};
	std::vector<FRedirection> Redirections;
	/** Packages of the mod that refer to them. */
	FQVNameSet Repoint;
	/** Referred to and not on disk. */
	FQVNameSet Missing;
	/** Of these, what a cook would want; in alphabetical order. A plan with any fails. */
	std::vector<FQVName> MissingForCook;

	/** Game thread. Changes no file of a mod. */
	static FQVImportPlan Make(std::string_view PluginName, EMemoryOnly MemoryOnly);
};
