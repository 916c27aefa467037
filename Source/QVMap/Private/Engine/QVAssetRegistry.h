// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVName.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/** One asset as the registry lists it, without loading it. Sixteen bytes: pass it by value. */
struct FQVAssetData
{
	/** Class paths that the toolkit knows by name. */
	static constexpr std::string_view WorldClass = "/Script/Engine.World";
	static constexpr std::string_view RedirectorClass = "/Script/CoreUObject.ObjectRedirector";
	/** A redirector's tag: the object path of what it leads to, maybe in quotes behind its class. */
	static constexpr std::string_view DestinationTag = "DestinationObject";

	/** `/Cave/Maps/Hall` */
	FQVName PackageName;
	/** `Hall` */
	FQVName AssetName;
	/** `/Script/Engine.World` */
	FQVName ClassPath;
	/** Of an external actor, the object that holds it: `/Cave/Maps/Hall.Hall:PersistentLevel`. Else none. */
	FQVName OuterPath;

	bool IsValid() const { return !PackageName.IsNone() && !AssetName.IsNone(); }
	bool IsRedirector() const;
	/** `World` of `/Script/Engine.World`. */
	std::string_view GetClassName() const;
	/** `/Cave/Maps/Hall.Hall`, or `/Cave/Maps/Hall.Hall:PersistentLevel.Wall_3`. */
	std::string GetObjectPath() const;

	/** `/Cave/Rock` of `/Cave/Rock.Rock` or of `/Script/Engine.Material'/Cave/Rock.Rock'`. */
	static std::string_view PackageOfObjectPath(std::string_view Path);

	bool operator==(const FQVAssetData&) const = default;
};

/** Assets below a folder of packages. */
struct FQVAssetFilter
{
	/** `/Cave`: gives `/Cave/Maps/Hall`, not `/Cavern/X`. Folders below are searched too. Empty: all packages. */
	std::string PackagePath;
	/** None: assets of every class. */
	FQVName ClassPath;
};

/** One reference out of a package. A package that is hard for the editor only and soft for the game is there twice. */
struct FQVPackageDependency
{
	FQVName Package;
	/** Loaded with the package, not just named by it. */
	bool bHard = false;
	/** Not only used by the editor. */
	bool bUsedInGame = false;
};

/** The references out of several packages. */
struct FQVDependencyLists
{
	std::vector<FQVPackageDependency> All;
	/** Of each package, where its references end in All. */
	std::vector<std::size_t> Ends;

	std::span<const FQVPackageDependency> Of(std::size_t Place) const
	{
		const std::size_t Begin = Place == 0 ? 0 : Ends[Place - 1];
		return std::span(All).subspan(Begin, Ends[Place] - Begin);
	}
};

/** A file that the registry should know and does not. */
struct FQVUnreadablePackage
{
	/** Full path. */
	std::string File;
	/** To be put behind the file's name: "is a Git LFS pointer: fetch the file with git lfs pull". */
	std::string Reason;
};

/** A reference that the file it leads to has in other letters: on a disk that tells upper from lower case it fails. */
struct FQVMisspelledReference
{
	/** The package as the referring one spells it. */
	std::string Reference;
	/** The same package as its file and folders spell it. */
	std::string OnDisk;
};

enum class EQVDependencyQuery : std::uint8_t
{
	All,
	/** Only what the game needs at run time. */
	Game
};

/**
 * The asset registry: assets, and the packages that refer to one another, without loading any. Game thread. Queries
 * replace the content of the caller's buffer; they allocate nothing once it is large enough.
 */
class IQVAssetRegistry
{
public:
	virtual ~IQVAssetRegistry() = default;

	/** A scan in the background is not done: what is asked now may be answered in part only. */
	virtual bool IsLoadingAssets() const = 0;
	/** Brings the packages below a folder of the disk up to date before it returns. */
	virtual void ScanPathsSynchronous(std::string_view Folder) = 0;
	/** Brings the packages of these files up to date, also of files that are new or gone. */
	virtual void ScanModifiedAssetFiles(std::span<const std::string> Files) = 0;

	/** In alphabetical order of the packages' names. */
	virtual void GetAssets(const FQVAssetFilter& Filter, std::vector<FQVAssetData>& Out) const = 0;
	/** In the order in which the package lists them; none for a package that is not known. */
	virtual void GetAssetsByPackageName(FQVName Package, std::vector<FQVAssetData>& Out) const = 0;
	virtual void GetDependencies(
		FQVName Package, EQVDependencyQuery Query, std::vector<FQVPackageDependency>& Out) const = 0;
	/** The same for several packages at once: what a walk over a large graph asks, whose memory is slow to come. */
	virtual void GetDependenciesOfEach(
		std::span<const FQVName> Packages, EQVDependencyQuery Query, FQVDependencyLists& Out) const = 0;
	/** Packages that refer to this one in any way. */
	virtual void GetReferencers(FQVName Package, std::vector<FQVName>& Out) const = 0;
	/** Package data: bytes on disk. */
	virtual std::optional<std::int64_t> GetPackageSize(FQVName Package) const = 0;
	/** Files, and folders, that could not be read; in their order. */
	virtual void GetUnreadablePackages(std::vector<FQVUnreadablePackage>& Out) const = 0;
	/** The engine that saved a package, "UE 5.6.0-43139311", if 5.4 is too old to load it; else empty. */
	virtual std::string GetNewerEngine(FQVName Package) const = 0;
	/** None for a package that is not known; what it refers to and is not there is not among them. */
	virtual void GetMisspelledReferences(FQVName Package, std::vector<FQVMisspelledReference>& Out) const = 0;
	/** False if the asset has no such tag. Tags' names heed no case. */
	virtual bool GetTagValue(const FQVAssetData& Asset, std::string_view Tag, std::string& Out) const = 0;
};
