// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVName.h"
#include "Export/QVMapForeignFiles.h"
#include "Export/QVMapPackLock.h"

#include <memory>
#include <string>
#include <vector>

/** A package that was copied into the mod. */
struct FQVImportedPackage
{
	FQVName Source;
	/** The copy: `/<Mod>/_QVImported<Source>`. */
	FQVName Imported;
	/** Full path of the copy. */
	std::string File;
	/** The copy as the import left it; unknown until then. */
	FQVFileStamp Saved;
};

/** A package of the mod that was made to refer to copies. */
struct FQVImportBackup
{
	FQVName Package;
	/** Full paths of its file, and of that as it was. */
	std::string Original;
	std::string Backup;
	/** Original as the import left it; unknown until then. */
	FQVFileStamp Saved;
};

/** An import as it stands: what it has put into the project, and how to get it out again. */
struct FQVImportResult
{
	bool bSuccess = false;
	std::string ErrorMessage;
	std::vector<FQVImportedPackage> Imported;
	std::vector<FQVImportBackup> Backups;
	/** Keeps other runs from the mod while this one changes it. */
	FQVMapPackLock Lock;
};
