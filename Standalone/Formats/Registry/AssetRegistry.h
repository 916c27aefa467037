// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"
#include "Standalone/Formats/Base/NameRef.h"
#include "Standalone/Formats/Base/Result.h"
#include "Standalone/Formats/Registry/DependencySet.h"

#include <array>
#include <vector>

namespace QVFormats
{
/** The name None: it is no entry of the state's names. */
constexpr FNameRef NoName{0xFFFFFFFF, 0};

/** Which list of the state a tag's value is in. */
enum class ERegistryValue : std::uint8_t
{
	Ascii,
	Wide,
	Name,
	Path,
	/** A localized text, in the engine's written form. */
	Text,
};

struct FRegistryTag
{
	FNameRef Key = NoName;
	ERegistryValue Kind = ERegistryValue::Ascii;
	std::uint32_t Index = 0;

	bool operator==(const FRegistryTag&) const = default;
};

/** Prints as `Package.Object`, in quotes behind its class if it has one. */
struct FRegistryPath
{
	FNameRef ClassPackage = NoName;
	FNameRef ClassName = NoName;
	FNameRef Object = NoName;
	FNameRef Package = NoName;

	bool operator==(const FRegistryPath&) const = default;
};

struct FRegistryBundleEntry
{
	FNameRef Package = NoName;
	FNameRef Asset = NoName;
	std::string SubPath;

	bool operator==(const FRegistryBundleEntry&) const = default;
};

struct FRegistryBundle
{
	FNameRef Name = NoName;
	std::vector<FRegistryBundleEntry> Entries;

	bool operator==(const FRegistryBundle&) const = default;
};

struct FRegistryAsset
{
	FNameRef PackagePath = NoName;
	/** None before 5.1, which names classes without their package. */
	FNameRef ClassPackage = NoName;
	FNameRef ClassName = NoName;
	FNameRef PackageName = NoName;
	FNameRef AssetName = NoName;
	/** The level of an external actor. */
	FNameRef OuterPath = NoName;
	/** Of the state's tags. */
	std::uint32_t FirstTag = 0;
	std::uint32_t TagCount = 0;
	std::vector<FRegistryBundle> Bundles;
	std::vector<std::int32_t> ChunkIds;
	std::uint32_t PackageFlags = 0;

	bool operator==(const FRegistryAsset&) const = default;
};

struct FRegistryDependency
{
	/** Of the state's nodes. */
	std::int32_t Node = 0;
	FDependencySet Set;

	bool operator==(const FRegistryDependency&) const = default;
};

struct FRegistryManage
{
	std::int32_t Node = 0;
	bool bDirect = false;

	bool operator==(const FRegistryManage&) const = default;
};

/** A package, a primary asset or a searchable name; parts that it does not have are NoName. */
struct FRegistryNode
{
	FNameRef Package = NoName;
	FNameRef PrimaryAssetType = NoName;
	FNameRef Object = NoName;
	FNameRef Value = NoName;
	/** Which of the four are written; bit 0 the first. */
	std::uint8_t Parts = 0;
	std::vector<FRegistryDependency> Packages;
	std::vector<std::int32_t> Names;
	std::vector<FRegistryManage> Manages;
	/** The reverse of the three lists above, of all nodes. */
	std::vector<std::int32_t> Referencers;

	bool operator==(const FRegistryNode&) const = default;
};

struct FRegistryCustomVersion
{
	std::array<std::uint32_t, 4> Key{};
	std::int32_t Version = 0;

	bool operator==(const FRegistryCustomVersion&) const = default;
};

struct FRegistryPackage
{
	FNameRef Name = NoName;
	/** 0 for code packages. */
	std::int64_t SizeOnDisk = 0;
	/** From 5.6 on the first 16 bytes of the hash that took the guid's place. */
	std::array<std::uint8_t, 16> Guid{};
	bool bCookedHash = false;
	std::array<std::uint8_t, 16> CookedHash{};
	/** Chunk id and hash. */
	std::vector<std::array<std::uint8_t, 32>> ChunkHashes;
	std::int32_t FileVersionUE4 = 0;
	std::int32_t FileVersionUE5 = 0;
	/** -1 for code packages. */
	std::int32_t FileVersionLicensee = 0;
	std::uint32_t Flags = 0;
	std::vector<FRegistryCustomVersion> CustomVersions;
	std::vector<FNameRef> ImportedClasses;
	/** `.uasset`, `.umap`; empty for code packages. */
	std::string Extension;

	bool operator==(const FRegistryPackage&) const = default;
};

/**
 * The content of an AssetRegistry.bin. Flat, with names by position as in the file, so that a damaged file cannot make
 * it much larger than itself. Owns all its texts.
 */
struct FAssetRegistryState
{
	/** Of the file that it was read from. */
	std::int32_t Version = 17;
	/** The game's flavour: no outer paths, dependencies or package data. */
	bool bFilterEditorOnly = false;
	/** Entries without numbers; spellings that differ only in case are separate and mean the same. */
	std::vector<std::string> Names;
	std::vector<std::string> AsciiValues;
	std::vector<std::string> WideValues;
	std::vector<FNameRef> NameValues;
	std::vector<FRegistryPath> PathValues;
	std::vector<std::string> TextValues;
	std::vector<FRegistryTag> Tags;
	std::vector<FRegistryAsset> Assets;
	std::vector<FRegistryNode> Nodes;
	std::vector<FRegistryPackage> Packages;

	std::string Text(FNameRef Name) const;
	std::string ValueText(const FRegistryTag& Tag) const;
	bool operator==(const FAssetRegistryState&) const = default;
};

/**
 * Layouts 8 to 24, that is UE 4.27 to 5.8; 17 (5.2 to 5.5) is the one that is tested on files. Errors are sentences
 * without the file's name, to be put behind it: "is not an asset registry: ...".
 */
TResult<FAssetRegistryState> ReadAssetRegistry(FBytes File);

/**
 * Layout 17. What was read from a file of that layout reads back as the same state; outer paths, dependencies and
 * package data are left out if bFilterEditorOnly. Fails only when the state points outside its own lists or holds a
 * name that the format has no room for. No engine has loaded what it writes.
 */
TResult<std::vector<std::byte>> WriteAssetRegistry(const FAssetRegistryState& State);

struct FRegistryCount
{
	std::int32_t Version = 0;
	/** Different package names among the assets. */
	std::int32_t Packages = 0;
	std::int32_t Assets = 0;
	/** Rows of package data, code packages included; 0 in the game's flavour. */
	std::int64_t PackageData = 0;
};

/** Walks a registry without making a text of any name; says whether it is readable and how much it lists. */
TResult<FRegistryCount> CountPackages(FBytes File);
} // namespace QVFormats
