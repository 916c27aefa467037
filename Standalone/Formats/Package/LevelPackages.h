// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageBuilder.h"

namespace QVFormats
{
struct FActorSpec
{
	std::string Name;
	/** `/Script/Engine.PlayerStart`, or a blueprint's class; empty: an empty slot of the level. */
	std::string ClassPath;
	/** Not for clients, not for servers. */
	bool bEditorOnly = false;
	/** Its property bIsEditorOnlyActor. */
	bool bMarkedEditorOnly = false;
	/** An enum property that is not at its default: `Type` and `ECheckpointType::Start`. */
	std::string EnumProperty = {};
	std::string EnumValue = {};
};

struct FFunctionSpec
{
	std::string Name;
	std::int32_t ScriptBytes = 0;
};

struct FLevelPackageSpec
{
	std::string PackageName;
	/** In the level's order, behind the WorldSettings, which every map has. */
	std::vector<FActorSpec> Actors = {};
	/** With a Level Blueprint, its class and its actor, which comes last in the level. */
	bool bScript = false;
	std::vector<FFunctionSpec> Functions = {};
	/** Of the Level Blueprint, each with one node. */
	std::vector<std::string> Graphs = {};
	/** Long package names. */
	std::vector<std::string> StreamingLevels = {};
	/** Static meshes that the world holds on to, long package names. */
	std::vector<std::string> Meshes = {};
	/** Long package names; each is referred to by its asset of the same name. */
	std::vector<std::string> SoftPackages = {};
	bool bPartitioned = false;
	bool bExternalActors = false;
	/** An empty BSP model with its polygons, which every level of the editor has. */
	bool bModel = false;
};

struct FExternalActorSpec
{
	/** `/Cave/__ExternalActors__/Maps/Hall/0/AB/CDE` */
	std::string PackageName;
	/** `/Cave/Maps/Hall` */
	std::string MapPackage;
	FActorSpec Actor;
};

struct FClassPackageSpec
{
	/** `/Cave/BP_Door`: the class is BP_Door_C. */
	std::string PackageName;
	std::string ParentPath;
	/** Of the class's default object. */
	std::string EnumProperty = {};
	std::string EnumValue = {};
};

// Packages with the parts of a level that its readers look at, in the engine's layout of 5.4. For tests and samples: no
// editor has opened one, and the script is noise.

/** The least that a map needs to be played: where it begins, its first checkpoint, and its end. */
std::vector<FActorSpec> PlayableActors();
std::vector<std::byte> BuildLevelPackage(const FLevelPackageSpec& Spec);
std::vector<std::byte> BuildExternalActorPackage(const FExternalActorSpec& Spec);
std::vector<std::byte> BuildClassPackage(const FClassPackageSpec& Spec);
} // namespace QVFormats
