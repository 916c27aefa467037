// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageBuilder.h"

namespace QVFormats
{
/** An object of another package that a package cannot be loaded without. */
struct FHardReference
{
	/** `/Game/Meshes/Rock`. */
	std::string Package;
	/** `/Script/Engine` and `StaticMesh`. */
	std::string ClassPackage;
	std::string ClassName;
	/** Empty: the package alone is imported. */
	std::string Object;
	bool bUsedInGame = true;
};

struct FWorldPackageSpec
{
	std::string PackageName;
	std::vector<FHardReference> HardReferences;
	/** Long package names; each is referred to by its asset of the same name. */
	std::vector<std::string> SoftPackages;
	bool bPlayerStart = false;
};

struct FAssetPackageSpec
{
	std::string PackageName;
	/** `/Script/Engine.StaticMesh`, or a blueprint's class. */
	std::string ClassPath;
	std::vector<FHardReference> HardReferences;
	std::vector<std::string> SoftPackages;
	/** Native data behind the empty list of properties: as many bytes as wanted, other ones for another seed. */
	std::size_t PayloadBytes = 0;
	std::uint64_t PayloadSeed = 0;
};

/**
 * A map with an empty level: the World, its PersistentLevel, WorldSettings and, if asked, a PlayerStart at the origin.
 * The World's list of extra objects holds what is referred to hard. For samples and tests of everything that reads
 * files; it has the engine's layout but no editor has opened one, and a level saved by the editor holds more (a
 * builder brush, models, meta data).
 */
std::vector<std::byte> BuildWorldPackage(const FWorldPackageSpec& Spec);

/**
 * A package of one asset with no properties. The payload is noise and not what a mesh or a texture holds: the engine
 * can read the header but not load the object.
 */
std::vector<std::byte> BuildAssetPackage(const FAssetPackageSpec& Spec);
} // namespace QVFormats
