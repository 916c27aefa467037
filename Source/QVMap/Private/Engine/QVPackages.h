// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVEvent.h"
#include "Engine/QVAssetRegistry.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

/** What is seen of an asset once it is loaded. */
struct FQVLoadedAsset
{
	bool bLoaded = false;
	/** It is a redirector object, whatever the registry said. */
	bool bRedirector = false;
	/** Of a redirector, the outermost package of what it leads to; none if that is not there. */
	FQVName DestinationPackage;
};

/** An asset that is referred to, and the package of the copy that is to be referred to instead. */
struct FQVAssetReplacement
{
	FQVAssetData From;
	FQVName To;
	/** The copy's own name in there; for whoever refers to a redirector, another than the asset's. */
	FQVName ToAsset;
};

/** What came of a save. All but Failed count as success. */
enum class EQVSaveResult : std::uint8_t
{
	Success,
	/** Of a cook only: other code or a stub stands for the package. */
	ReplaceCompletely,
	GenerateStub,
	/** The reason is in the log. */
	Failed
};

/** A loaded package and the full path of the file that it is to be saved to. */
struct FQVPackageToSave
{
	FQVName Package;
	std::string File;
	bool bWorld = false;
};

/**
 * Packages and the files that hold them. What is said of a package that is not loaded never loads it, unless the
 * operation says so.
 */
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

	/** Any thread. A name that a package could have, below a root that is mounted. */
	virtual bool IsValidLongPackageName(std::string_view PackageName) const = 0;
	/** Any thread. Gives the full path of the package's file, with its extension. */
	virtual bool DoesPackageExist(std::string_view PackageName, std::string& OutFilename) const = 0;

	// Game thread from here on.

	virtual bool IsLoaded(FQVName Package) const = 0;
	/** Finds or loads it; false if that gives none. */
	virtual bool LoadPackage(FQVName Package) = 0;
	/** Loaded ones with unsaved changes, in alphabetical order. */
	virtual void GetDirtyPackages(std::vector<FQVName>& Out) const = 0;
	/** Nothing if the package is not loaded. */
	virtual void SetDirtyFlag(FQVName Package, bool bDirty) = 0;
	/** Of a loaded package. */
	virtual bool ContainsWorld(FQVName Package) const = 0;
	/** An empty package in memory. */
	virtual bool CreatePackage(FQVName Package) = 0;
	/** Into a package that CreatePackage made, under the asset's own name, public and standalone. The registry is told.
	 */
	virtual bool DuplicateAsset(const FQVAssetData& Asset, FQVName NewPackage) = 0;
	/** In loaded packages: whatever refers to an asset refers to its copy from now on. */
	virtual void ReplaceReferences(
		std::span<const FQVName> Packages, std::span<const FQVAssetReplacement> Replacements) = 0;
	/** A loaded package to a file; whole or not at all, and on the disk then. The package is clean afterwards. */
	virtual EQVSaveResult SavePackage(FQVName Package, std::string_view File, bool bWorld) = 0;
	/** The same for many packages, for each as if it were alone; an engine may work on several at once. Gives what came
	 * of each, in the order given. */
	virtual std::vector<EQVSaveResult> SavePackages(std::span<const FQVPackageToSave> Saves)
	{
		std::vector<EQVSaveResult> Results;
		for (const FQVPackageToSave& Save : Saves)
		{
			Results.push_back(SavePackage(Save.Package, Save.File, Save.bWorld));
		}
		return Results;
	}
	/** The handler is called for each package that was saved, inside the save, as long as the subscription is held. */
	[[nodiscard]] virtual FQVSubscription OnPackageSaved(std::function<void(FQVName Package)> Handler) = 0;
	/** Loaded packages anew from their files, without their unsaved changes. Message: what the engine has to say of it.
	 */
	virtual void ReloadPackages(std::span<const FQVName> Packages, std::string& OutMessage) = 0;
	/** Of these loaded packages the objects that are assets and not about to go anyway. Nobody is asked. Files stay. */
	virtual void DeleteAssets(std::span<const FQVName> Packages) = 0;
};
