// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVPackages.h"
#include "Standalone/Engine/LoadedPackages.h"
#include "Standalone/Engine/Plugins.h"
#include "Standalone/Formats/Package/PackageRegistrySection.h"

#include <functional>
#include <vector>

namespace QVStandalone
{
/** A root of long package names and the folder that serves it. */
struct FMountPoint
{
	/** `/Cave/` */
	std::string Root;
	/** `<Project>/Plugins/Cave/Content/` */
	std::string Folder;
};

/**
 * Long package names over the mount points of project, engine and enabled content plugins. Nothing is ever really
 * loaded: of a package "in memory" it is known which file its bytes come from and what is to be renamed in them.
 */
class FPackages : public IQVPackages
{
public:
	FPackages(std::string InProjectDir, std::string InEngineDir, const FPlugins& InPlugins);

	bool TryConvertLongPackageNameToFilename(
		std::string_view PackageName, std::string& OutFilename, std::string_view Extension) const override;
	FQVLoadedAsset LoadAsset(const FQVAssetData& Asset) const override;

	bool IsValidLongPackageName(std::string_view PackageName) const override;
	bool DoesPackageExist(std::string_view PackageName, std::string& OutFilename) const override;
	bool IsLoaded(FQVName Package) const override;
	bool LoadPackage(FQVName Package) override;
	void GetDirtyPackages(std::vector<FQVName>& Out) const override;
	void SetDirtyFlag(FQVName Package, bool bDirty) override;
	bool ContainsWorld(FQVName Package) const override;
	bool CreatePackage(FQVName Package) override;
	/** All of the asset's package is duplicated, and the registry is told when the copy is saved. */
	bool DuplicateAsset(const FQVAssetData& Asset, FQVName NewPackage) override;
	/** The packages are dirty then. */
	void ReplaceReferences(
		std::span<const FQVName> Packages, std::span<const FQVAssetReplacement> Replacements) override;
	/** Fails where a reference would stay on the old package. */
	EQVSaveResult SavePackage(FQVName Package, std::string_view File, bool bWorld) override;
	std::vector<EQVSaveResult> SavePackages(std::span<const FQVPackageToSave> Saves) override;
	FQVSubscription OnPackageSaved(std::function<void(FQVName Package)> Handler) override
	{
		return PackageSaved.Subscribe(std::move(Handler));
	}
	/** Forgets them. */
	void ReloadPackages(std::span<const FQVName> Packages, std::string& OutMessage) override;
	/** Forgets them. */
	void DeleteAssets(std::span<const FQVName> Packages) override;

	/** Called with the files that were saved, once for all when no package is dirty any more. */
	std::function<void(std::span<const std::string> Files)> OnSaved;
	/** Called when packages were read anew from their files. */
	std::function<void()> OnReloaded;

	/** The long package name that a file's place gives it; false if it lies below no mount point. */
	bool TryConvertFilenameToLongPackageName(std::string_view File, std::string& OutPackageName) const;
	/** The full path of the file that holds a package, whichever extension it has, the preferred one first; empty if
	 * there is none. */
	std::string FindPackageFile(std::string_view PackageName, std::string_view Preferred = AssetPackageExtension) const;
	/** `/Game` first, then `/Engine`, then the plugins. */
	std::vector<FMountPoint> GetMountPoints() const;
	/** Of a world: whether actors or other objects of it lie in files of their own. */
	bool HasExternalObjects(std::string_view World) const;
	/** A package that somebody else has saved. */
	void TellOfNew(FQVName Package, const std::string& File);

private:
	FQVName FindDestination(std::span<const QVFormats::FPackageTag> Tags) const;

	const std::string ProjectDir;
	const std::string EngineDir;
	const FPlugins& Plugins;
	FLoadedPackages InMemory;
	/** Not yet told of. */
	std::vector<std::string> SavedFiles;
	TQVEvent<FQVName> PackageSaved;

	std::string WhatPreventsCopy(const FQVAssetData& Asset, FQVName NewPackage);
	std::vector<std::pair<std::string, std::string>> ObjectsOf(const FQVAssetReplacement& Replacement) const;
	void Forget(std::span<const FQVName> Packages);
	EQVSaveResult NoteSaved(const FQVPackageToSave& Save, const QVFormats::TResult<std::string>& Saved);
	void TellOfSaved();
};
} // namespace QVStandalone
