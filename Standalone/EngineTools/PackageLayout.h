// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/EngineTools/CookRegistry.h"
#include "Standalone/EngineTools/ToolLog.h"

#include <string>
#include <vector>

namespace QVEngineTools
{
/** A folder of content, the long package names that it serves, and where a cook puts it. */
struct FCookFolder
{
	/** `/Cave/` */
	std::string Root;
	std::string ContentDir;
	std::string CookedDir;
};

/** Which cooked files are written again. */
enum class ECookMode
{
	Always,
	/** Those whose source is newer than what an earlier cook left. */
	Iterate
};

/**
 * Lays packages out as a cook does: the header in one file, the export data in a `.uexp` beside it, byte for byte as
 * they were saved. Nothing is converted.
 */
class FPackageLayout
{
public:
	FPackageLayout(FToolLog& InLog, ECookMode InMode)
		: Log(InLog)
		, Mode(InMode)
	{
	}

	void AddFolder(const FCookFolder& Folder);
	/** One package, to be cooked to a path without its extension. */
	void AddPackage(const std::string& File, const std::string& PackageName, const std::string& CookedStem);
	/** Cooks all that was added. A package that cannot be read or written is an error in the log; the others go on. */
	void Run();

	/** The registry of what was cooked; to be asked for once, after Run. */
	QVFormats::FAssetRegistryState FinishRegistry() { return Registry.Finish(); }

private:
	struct FSource
	{
		std::string File;
		std::string PackageName;
		/** Path of the cooked package without its extension. */
		std::string CookedStem;
		std::string Extension;
	};

	FToolLog& Log;
	ECookMode Mode;
	FCookRegistry Registry;
	std::vector<FSource> Sources;

	void CookOne(const FSource& Source);
};
} // namespace QVEngineTools
