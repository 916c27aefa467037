// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace QVStandalone
{
/** What the search for the engine's folder starts from. Paths are full; an empty one is passed over. */
struct FEngineSearch
{
	/** From the command line. Taken as given, and an error if it is not there. */
	std::string Named;
	/** From the environment. Likewise. */
	std::string FromEnvironment;
	std::string ProjectFile;
	/** Our own engine folder, which holds stand-ins for the tools. The last resort. */
	std::string Bundled;
};

/** One place that was looked at. */
struct FEngineAttempt
{
	std::string Where;
	std::string Outcome;
};

struct FEngineLocation
{
	/** The folder named `Engine`; empty if none was found. */
	std::string EngineDir;
	bool bBundled = false;
	/** Set when a named folder is not there. */
	std::string Error;
	/** In the order in which they were tried. */
	std::vector<FEngineAttempt> Tried;
};

FEngineLocation FindEngine(const FEngineSearch& Search);

/** An engine that is installed on this machine, as its installer recorded it. */
struct FInstalledEngine
{
	/** `5.4`, `UE_5.4`, or the braced identifier of a source build. */
	std::string Identifier;
	/** The folder that holds `Engine`. */
	std::string Root;
};

/** The entries of an `Install.ini`: `[Installations]` with lines `Identifier=Folder`. */
std::vector<FInstalledEngine> ParseInstallIni(std::string_view Text);
/** The entries of the launcher's `LauncherInstalled.dat`; nothing if it is not JSON of that shape. */
std::vector<FInstalledEngine> ParseLauncherInstalled(std::string_view Text);

/** A file in which this system records its engines, and what it records. */
struct FInstallRecord
{
	std::string File;
	std::vector<FInstalledEngine> Engines;
};
/** Differs between systems. */
std::vector<FInstallRecord> ReadInstallRecords();
} // namespace QVStandalone
