// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace QVCli
{
class FSession;

/** Brings the asset registry up to date, with a progress bar. False if the user has interrupted it. */
bool ScanRegistry(FSession& Session);
/** The same for a verb that changes no file: what it asks is answered as of this scan. */
bool ScanRegistryOnce(FSession& Session);

/** Turns a mod's name as typed, or a map's, into the mod's; false, with the error told, if there is no such mod. */
bool ResolveMod(FSession& Session, std::string& MapOrMod);
} // namespace QVCli
