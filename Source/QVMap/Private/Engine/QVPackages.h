// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

/** Packages and the files that hold them. */
class IQVPackages
{
public:
	virtual ~IQVPackages() = default;

	/** Extension of a package that holds a world. */
	static constexpr std::string_view MapPackageExtension = ".umap";

	/**
	 * Any thread. "/Cave/Maps/Hall" to the full path of its file, by mount point alone: whether the file exists is not
	 * asked. False when no mount point serves the name.
	 */
	virtual bool TryConvertLongPackageNameToFilename(
		std::string_view PackageName, std::string& OutFilename, std::string_view Extension) const = 0;
};
