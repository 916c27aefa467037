// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Registry/AssetRegistry.h"

#include <string_view>
#include <unordered_map>

namespace QVFormats
{
struct FRegistryAssetSpec
{
	/** `/Game/Maps/Hall` and `Hall`. */
	std::string PackageName;
	std::string AssetName;
	/** The level of an external actor, `/Game/Hall.Hall:PersistentLevel`; else empty. */
	std::string OuterPath;
	/** `/Script/Engine.World`; `World` in packages of before 5.1. */
	std::string ClassPath;
	std::vector<std::pair<std::string, std::string>> Tags;
	std::vector<std::int32_t> ChunkIds;
	std::uint32_t PackageFlags = 0;
};

/** Makes a registry's state from texts. The order of calls is the order in the file, so sort first. */
class FAssetRegistryBuilder
{
public:
	explicit FAssetRegistryBuilder(bool bFilterEditorOnly) { State.bFilterEditorOnly = bFilterEditorOnly; }

	FNameRef Name(std::string_view Text);
	void AddAsset(const FRegistryAssetSpec& Spec);
	/** Both packages get a node; what is said twice of a pair adds up. */
	void AddDependency(std::string_view Package, std::string_view DependsOn, FDependencySet Set);
	/** Make its names with Name. */
	void AddPackage(FRegistryPackage Package) { State.Packages.push_back(std::move(Package)); }
	/** Leaves the builder empty. */
	FAssetRegistryState Finish();

private:
	FRegistryTag Tag(std::string_view Key, const std::string& Value);
	std::int32_t NodeOf(std::string_view Package);

	FAssetRegistryState State;
	std::unordered_map<std::string, std::uint32_t> Entries;
	std::unordered_map<std::string, FRegistryTag> Values;
	/** By the name in small letters. */
	std::unordered_map<std::string, std::int32_t> NodesByPackage;
};

/** Fills every node's referencers from the other three lists, each once, in order of position. */
void LinkReferencers(FAssetRegistryState& State);
} // namespace QVFormats
