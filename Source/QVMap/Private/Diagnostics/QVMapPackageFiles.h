// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

/** Packages as files. Any thread. */
struct FQVMapPackageFiles
{
	/** Full path of the file that holds a package; empty if there is none. */
	static std::string Find(std::string_view PackageName);
};
