// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVJson.h"
#include "HandOff/QVMapWorkshopConfig.h"
#include "Workspace/QVMapScanner.h"

namespace QVCli
{
class FConsole;

/** A mod's Workshop details as the form would show them. */
struct FWorkshopDetails
{
	FQVModInfo Mod;
	/** Without a title of its own it has the mod's name, and a start map that the mod has. */
	FQVWorkshopConfig Config;
	/** There is a record on disk. */
	bool bStored = false;

	static FWorkshopDetails Load(const FQVModInfo& Mod);

	/** What Steam would refuse or cut, and what looks odd: a sentence each. */
	std::vector<std::string> FindProblems() const;
	FQVJson ToJson() const;
	void Print(FConsole& Console) const;
};
} // namespace QVCli
