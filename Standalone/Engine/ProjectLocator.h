// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace QVStandalone
{
/** Where a mapping project was found, or why not. */
struct FProjectLocation
{
	/** Full path of the `.uproject`; empty if none was found. */
	std::string ProjectFile;
	/** One sentence with the remedy. */
	std::string Error;
};

/**
 * The project of a folder: the one `.uproject` in it or, failing that, in the nearest folder above it. Two in one
 * folder are an error, since nobody can say which is meant.
 */
FProjectLocation FindProjectAbove(std::string_view Folder);

/** The project that a user named: a `.uproject` file, or a folder that holds one. */
FProjectLocation FindNamedProject(std::string_view Path);
} // namespace QVStandalone
