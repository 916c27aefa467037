// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVModuleInterface.h"

/** Sets all parts of the toolkit going and stops them again; holds nothing itself. */
class FQVMapModule : public IQVModuleInterface
{
public:
	/** An interrupted pack is undone before anything else, so that no map is opened before. */
	void StartupModule() override;
	void ShutdownModule() override;
};

/** What the loader calls; the module is the caller's. */
IQVModuleInterface* InitializeModule();
