// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVAssetRegistry.h"

#include <string>
#include <string_view>

/** What is seen of an asset once it is loaded. */
struct FQVLoadedAsset
{
	bool bLoaded = false;
	/** It is a redirector object, whatever the registry said. */
	bool bRedirector = false;
	/** Of a redirector, the outermost package of what it leads to; none if that is not there. */
	FQVName DestinationPackage;
};

/** Packages and the files that hold them. */
class IQVPackages
{
public:
	virtual ~IQVPackages() = default;

	/** Extensions of a package that holds a world, and of any other. */
	static constexpr std::string_view MapPackageExtension = ".umap";
	static constexpr std::string_view AssetPackageExtension = ".uasset";

	/**
	 * Any thread. "/Cave/Maps/Hall" to the full path of its file, by mount point alone: whether the file exists is not
	 * asked. False when no mount point serves the name.
	 */
	virtual bool TryConvertLongPackageNameToFilename(
		std::string_view PackageName, std::string& OutFilename, std::string_view Extension) const = 0;

	/** Game thread. */
	virtual FQVLoadedAsset LoadAsset(const FQVAssetData& Asset) const = 0;
};
