// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Cli/Session.h"

#include <string>

namespace QVCli
{
/** Tells what a pack of a mod would bring in and change for its length; changes nothing. The registry is up to date. */
EExitCode TellImportPlan(FSession& Session, const std::string& Mod, bool bJson);
} // namespace QVCli
