// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Standalone/Formats/Package/SamplePackages.h"
#include "Standalone/Formats/Pak/PakWriter.h"
#include "Standalone/Formats/Registry/AssetRegistryBuilder.h"

#include <cstdio>
#include <fstream>

using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
void Put(const fs::path& File, const std::vector<std::byte>& Bytes)
{
	fs::create_directories(File.parent_path());
	std::ofstream(File, std::ios::binary)
		.write(reinterpret_cast<const char*>(Bytes.data()), static_cast<std::streamsize>(Bytes.size()));
}

template<class T>
void Set(std::vector<std::byte>& Bytes, std::size_t At, T Value)
{
	std::memcpy(Bytes.data() + At, &Value, sizeof(Value));
}

/** One property of each form that has a form of its own. */
std::vector<std::byte> WithProperties(bool bComplete)
{
	FPackageSpec Spec;
	Spec.PackageName = "/Game/Sample";
	Spec.DataNames = {"None", "StructProperty", "Pair", "ArrayProperty", "IntProperty", "StrProperty"};
	FByteWriter Out;
	const auto Name = [&Out](std::int32_t Index)
	{
		Out.I32(Index);
		Out.I32(0);
	};
	Out.U8(0);
	for (const std::int32_t Inner : {2, 4})
	{
		const bool bStruct = Inner == 2;
		Name(Inner);
		Name(bStruct ? 1 : 3);
		Out.I32(bComplete ? 1 : bStruct ? 8 : 12);
		bComplete ? static_cast<void>(0) : Out.I32(0);
		Name(Inner);
		bComplete ? Out.I32(0) : Out.Append(std::vector<std::byte>(bStruct ? 17 : 1));
		if (bComplete)
		{
			Out.I32(bStruct ? 8 : 12);
			Out.U8(0);
		}
		bStruct ? Name(0) : Out.Append(std::as_bytes(std::span(std::initializer_list<std::int32_t>{2, 7, 8})));
	}
	Name(0);
	FExportSpec Export;
	Export.ObjectName = "Sample";
	Export.Data = Out.Release();
	Export.ScriptEnd = static_cast<std::int64_t>(Export.Data.size());
	Spec.Exports = {Export};
	Spec.SoftPaths = {{"/Game/Rock", "Rock", "Part"}};
	Spec.Assets = {{"Sample", "/Script/Engine.Texture2D", {{"Size", "12x12"}}}};
	std::vector<std::byte> File = BuildPackage(Spec);
	constexpr std::size_t FileVersionAt = 16;
	Set<std::int32_t>(File, FileVersionAt, bComplete ? 1012 : 1011);
	return File;
}

void PutPackages(const fs::path& Folder)
{
	const std::vector<FHardReference> Rocks = {{"/Game/Meshes/Rock", "/Script/Engine", "StaticMesh", "Rock"},
		{"/Game/Meshes/Rock_2", "/Script/Engine", "StaticMesh", "Rock_2"}};
	Put(Folder / "map", BuildWorldPackage({"/Game/Maps/Hall", Rocks, {"/Game/Maps/Part"}, true}));
	Put(Folder / "asset", BuildAssetPackage({"/Game/M/Tür", "/Script/Engine.Material", Rocks, {"/Game/A"}, 64, 7}));
	Put(Folder / "properties", WithProperties(true));
	Put(Folder / "older-properties", WithProperties(false));
}

void PutLevels(const fs::path& Folder)
{
	FLevelPackageSpec Spec{.PackageName = "/Cave/Maps/Hall"};
	Put(Folder / "bare", BuildLevelPackage(Spec));
	Spec.Actors = {{"PlayerStart_0", "/Script/Engine.PlayerStart"}, {},
		{"Gate_7", "/Cave/BP_Gate.BP_Gate_C", true, true, "Type", "EGate::Open"}};
	Spec.bScript = true;
	Spec.Functions = {{"ReceiveBeginPlay", 22}, {"Empty", 0}};
	Put(Folder / "script", BuildLevelPackage(Spec));
	Spec.StreamingLevels = {"/Cave/Maps/Lights", "/Cave/Maps/Sounds"};
	Spec.Meshes = {"/Cave/Rock"};
	Spec.bPartitioned = Spec.bExternalActors = true;
	Put(Folder / "partitioned", BuildLevelPackage(Spec));
}

void PutRegistries(const fs::path& Folder)
{
	for (const bool bFiltered : {false, true})
	{
		FAssetRegistryBuilder Builder(bFiltered);
		Builder.AddAsset({"/Game/Hall", "Hall", "", "/Script/Engine.World",
			{{"Light", "on"}, {"Class", "/Script/Engine.Actor"}, {"Wide", "Tür"}}, {3}, 0x20000});
		Builder.AddAsset(
			{"/Game/Rock_2", "Rock_2", "/Game/Hall.Hall:PersistentLevel", "/Script/Engine.StaticMesh", {}, {}, 0});
		Builder.AddDependency("/Game/Hall", "/Game/Rock_2", FDependencySet::Of(true, false));
		FRegistryPackage Package;
		Package.Name = Builder.Name("/Game/Hall");
		Package.Extension = ".umap";
		Builder.AddPackage(Package);
		if (const auto Bytes = WriteAssetRegistry(Builder.Finish()))
		{
			Put(Folder / (bFiltered ? "filtered" : "full"), *Bytes);
		}
	}
}

bool PutPaks(const fs::path& Folder, const fs::path& Work)
{
	Put(Work / "zeros", std::vector<std::byte>(100'000));
	Put(Work / "text", std::vector<std::byte>(10, std::byte{'x'}));
	fs::create_directories(Folder);
	for (const bool bCompress : {false, true})
	{
		const FPakSource Sources[] = {{Work / "text", "../../../Cave/Content/Maps/Hall.umap", bCompress},
			{Work / "zeros", "../../../Cave/Content/Maps/Hall.uexp", bCompress},
			{Work / "text", "../../../Cave/Content/manifest.json", bCompress}};
		const std::span Chosen(Sources, bCompress ? 3 : 1);
		if (const auto Pak = WritePak(Folder / (bCompress ? "zlib" : "plain"), Chosen); !Pak)
		{
			std::fprintf(stderr, "error: %s\n", Pak.Error().Message.c_str());
			return false;
		}
	}
	return true;
}
} // namespace

/** Writes small good files of each kind below a folder. */
int main(int Count, char** Words)
{
	if (Count != 2)
	{
		std::fprintf(stderr, "usage: fuzz-seeds <folder>\n");
		return 2;
	}
	const fs::path Folder = Words[1];
	PutPackages(Folder / "package");
	PutLevels(Folder / "level");
	PutRegistries(Folder / "registry");
	return PutPaks(Folder / "pak", Folder / "sources") ? 0 : 1;
}
