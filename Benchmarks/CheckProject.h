// SPDX-License-Identifier: MIT
#pragma once

#include "Benchmarks/Timing.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/StandaloneEngine.h"
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Standalone/Formats/Package/SamplePackages.h"
#include "Standalone/Formats/Registry/AssetRegistryBuilder.h"

#include <random>

/** A project with a large mod, whose only map is checked. */
namespace QVBench
{
using namespace QVFormats;
using namespace QVStandalone;
namespace fs = std::filesystem;

inline constexpr std::size_t Packages = 20'000;
/** Of these. */
inline constexpr std::size_t PackagesOfTheMod = 5'000;
inline constexpr std::size_t Actors = 2'000;
inline constexpr std::size_t Blueprints = 50;
inline constexpr std::size_t MeshesOfTheMap = 1'000;
inline constexpr int References = 10;
/** One of so many packages of the mod has a reference to another mod's. */
inline constexpr std::size_t OutsideEvery = 50;

inline constexpr const char* Map = "/Cave/Maps/Hall";

/** A hundred files in each folder; the mod's come first. */
inline std::string PackageAt(std::size_t Number)
{
	const char* Root = Number < PackagesOfTheMod ? "/Cave/F" : "/Game/F";
	return Root + std::to_string(Number / 100) + "/Asset_of_the_level_" + std::to_string(Number);
}

inline std::string BlueprintAt(std::size_t Number)
{
	return "/Cave/Blueprints/BP_Gate_" + std::to_string(Number);
}

struct FBenchProject
{
	const fs::path Folder;

	fs::path FileOf(const std::string& Package, const char* Extension = ".uasset") const
	{
		const bool bMod = Package.starts_with("/Cave/");
		return Folder / (bMod ? "Plugins/Cave/Content" : "Content") / (Package.substr(6) + Extension);
	}
	fs::path Release() const { return Folder / "Releases/1.0/Windows/Metadata/DevelopmentAssetRegistry.bin"; }
	std::unique_ptr<FStandaloneEngine> NewEngine() const
	{
		return std::make_unique<FStandaloneEngine>(
			FromOsPath(Folder / "MapWork.uproject"), FromOsPath(Folder / "Engine"));
	}
	std::string Cache() const { return FromOsPath(Folder / FAssetRegistry::CacheFile); }
};

/** A tenth of the references are soft; those of the mod stay in the mod, but for a few. */
inline void PutAsset(const FBenchProject& Project, std::size_t Number, std::mt19937_64& Random)
{
	const bool bMod = Number < PackagesOfTheMod;
	FAssetPackageSpec Spec;
	Spec.PackageName = PackageAt(Number);
	Spec.ClassPath = Number % 2 == 0 ? "/Script/Engine.StaticMesh" : "/Script/Engine.Material";
	Spec.PayloadBytes = 2000;
	for (int Each = 0; Each < References; ++Each)
	{
		const bool bInMod = bMod && !(Each == 0 && Number % OutsideEvery == 0);
		const std::string Target = PackageAt(
			bInMod ? Random() % PackagesOfTheMod : PackagesOfTheMod + Random() % (Packages - PackagesOfTheMod));
		if (Each == 9)
		{
			Spec.SoftPackages.push_back(Target);
			continue;
		}
		Spec.HardReferences.push_back({Target, "/Script/Engine", "StaticMesh", Target.substr(Target.rfind('/') + 1)});
	}
	WriteFile(Project.FileOf(Spec.PackageName), BuildAssetPackage(Spec));
}

/** Of every hundred ten are of a blueprint's class, one is a checkpoint, one a start, two no game gets. */
inline FActorSpec ActorAt(std::size_t Number)
{
	FActorSpec Actor{.Name = "Actor_" + std::to_string(Number), .ClassPath = "/Script/Engine.StaticMeshActor"};
	Actor.bEditorOnly = Number % 50 == 7;
	if (Number % 10 == 0)
	{
		const std::string Blueprint = BlueprintAt(Number / 10 % Blueprints);
		Actor.ClassPath = Blueprint + Blueprint.substr(Blueprint.rfind('/')) + "_C";
		Actor.ClassPath[Blueprint.size()] = '.';
	}
	else if (Number % 100 == 1)
	{
		Actor.ClassPath = "/Script/QUARVEL.MapCheckpointTrigger";
		Actor.EnumProperty = "Type";
		Actor.EnumValue = "ECheckpointType::Start";
	}
	else if (Number % 100 == 2)
	{
		Actor.ClassPath = "/Script/Engine.PlayerStart";
	}
	return Actor;
}

inline FLevelPackageSpec LevelOf(std::size_t Count)
{
	FLevelPackageSpec Spec{.PackageName = Map};
	for (std::size_t Number = 0; Number < Count; ++Number)
	{
		Spec.Actors.push_back(ActorAt(Number));
	}
	Spec.bScript = true;
	Spec.Functions = {{"ReceiveBeginPlay", 22}, {"ExecuteUbergraph_Hall", 300}};
	return Spec;
}

inline void PutMap(const FBenchProject& Project)
{
	FLevelPackageSpec Spec = LevelOf(Actors);
	for (std::size_t Number = 0; Number < MeshesOfTheMap; ++Number)
	{
		Spec.Meshes.push_back(PackageAt(Number * PackagesOfTheMod / MeshesOfTheMap));
	}
	WriteFile(Project.FileOf(Map, ".umap"), BuildLevelPackage(Spec));
}

inline void PutBlueprints(const FBenchProject& Project)
{
	for (std::size_t Number = 0; Number < Blueprints; ++Number)
	{
		const FClassPackageSpec Class{.PackageName = BlueprintAt(Number), .ParentPath = "/Script/Engine.Actor"};
		WriteFile(Project.FileOf(Class.PackageName), BuildClassPackage(Class));
	}
}

/** Lists all that is not the mod's. */
inline void PutRelease(const FBenchProject& Project)
{
	FAssetRegistryBuilder Builder(true);
	for (std::size_t Number = PackagesOfTheMod; Number < Packages; ++Number)
	{
		const std::string Package = PackageAt(Number);
		Builder.AddAsset({Package, Package.substr(Package.rfind('/') + 1), {}, "/Script/Engine.StaticMesh", {}, {}, 0});
	}
	WriteFile(Project.Release(), Need(WriteAssetRegistry(Builder.Finish())));
}

inline void PutPlugins(const FBenchProject& Project)
{
	constexpr std::string_view Plugin = R"({"FileVersion": 3, "CanContainContent": true})";
	WriteFile(Project.Folder / "MapWork.uproject", "{}");
	WriteFile(Project.Folder / "Plugins/Cave/Cave.uplugin", Plugin);
	WriteFile(Project.Folder / "Plugins/QUARVEL/QUARVEL.uplugin", Plugin);
}

inline FBenchProject MakeProject(const fs::path& Folder)
{
	FBenchProject Project{Folder};
	PutPlugins(Project);
	PutBlueprints(Project);
	std::mt19937_64 Random(3);
	for (std::size_t Number = 0; Number < Packages; ++Number)
	{
		PutAsset(Project, Number, Random);
	}
	PutMap(Project);
	PutRelease(Project);
	return Project;
}
} // namespace QVBench
