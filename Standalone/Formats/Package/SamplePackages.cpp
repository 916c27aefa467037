// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/SamplePackages.h"

#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Package/ImportList.h"

#include <algorithm>

namespace QVFormats
{
namespace
{

/** Positions in the name table of the names that export data uses; sorted as the engine sorts them. */
enum class EDataName : std::int32_t
{
	None,
	ObjectProperty,
	WorldSettings,
};
constexpr std::string_view DataNames[] = {"None", "ObjectProperty", "WorldSettings"};

/** In a level with no lighting built: two blocks that hold nothing but their zeros. */
constexpr std::size_t EmptyPrecomputedBytes = 105;
constexpr std::int32_t DefaultPort = 7777;

std::string_view AfterLast(std::string_view Text, char Separator)
{
	return Text.substr(Text.rfind(Separator) + 1);
}

void WriteName(FByteWriter& Out, EDataName Name)
{
	Out.I32(static_cast<std::int32_t>(Name));
	Out.I32(0);
}

void BeginProperties(FByteWriter& Out)
{
	Out.U8(0); // control byte
}

/** Returns where the tagged properties end. */
std::int64_t EndProperties(FByteWriter& Out)
{
	WriteName(Out, EDataName::None);
	const auto End = static_cast<std::int64_t>(Out.Position());
	Out.Bool32(false); // object guid
	return End;
}

void WriteObjectProperty(FByteWriter& Out, EDataName Name, FPackageIndex Value)
{
	WriteName(Out, Name);
	WriteName(Out, EDataName::ObjectProperty);
	Out.I32(0); // type parameters
	Out.I32(sizeof(Value));
	Out.U8(0); // tag flags
	Out.Write(Value);
}

void WriteIndices(FByteWriter& Out, const std::vector<FPackageIndex>& Indices)
{
	Out.I32(static_cast<std::int32_t>(Indices.size()));
	Out.Append(std::as_bytes(std::span(Indices)));
}

FPackageIndex AddReference(FImportList& Imports, const FHardReference& Reference)
{
	const FPackageIndex Outer = Imports.Package(Reference.Package, Reference.bUsedInGame);
	return Reference.Object.empty() ? Outer
									: Imports.Object({Reference.ClassPackage, Reference.ClassName, Reference.Object,
										  Outer, Reference.bUsedInGame});
}

void AddSoftPackages(FPackageSpec& Spec, const std::vector<std::string>& Packages)
{
	for (const std::string& Package : Packages)
	{
		Spec.SoftPaths.push_back({Package, std::string(AfterLast(Package, '/')), {}});
	}
}

std::vector<FPackageIndex> AddReferences(FImportList& Imports, const std::vector<FHardReference>& References)
{
	std::vector<FPackageIndex> Objects;
	for (const FHardReference& Each : References)
	{
		const FPackageIndex Index = AddReference(Imports, Each);
		if (!Each.Object.empty())
		{
			Objects.push_back(Index);
		}
	}
	return Objects;
}

constexpr std::uint32_t Flags(std::initializer_list<EObjectFlags> List)
{
	std::uint32_t Result = 0;
	for (const EObjectFlags Flag : List)
	{
		Result |= static_cast<std::uint32_t>(Flag);
	}
	return Result;
}
constexpr std::uint32_t AssetFlags =
	Flags({EObjectFlags::Public, EObjectFlags::Standalone, EObjectFlags::Transactional});
constexpr std::uint32_t InnerFlags = Flags({EObjectFlags::Transactional});

/** Export numbers of a sample map. */
constexpr std::size_t WorldExport = 0;
constexpr std::size_t LevelExport = 1;
constexpr std::size_t SettingsExport = 2;
constexpr std::size_t PlayerStartExport = 3;

void FillWorld(FExportSpec& Export, const std::vector<FPackageIndex>& ExtraObjects)
{
	FByteWriter Out;
	BeginProperties(Out);
	Export.ScriptEnd = EndProperties(Out);
	Out.Write(FPackageIndex::Export(LevelExport));
	WriteIndices(Out, ExtraObjects);
	WriteIndices(Out, {}); // streaming levels
	Export.Data = Out.Release();
}

void FillLevel(FExportSpec& Export, const std::string& MapName, const std::vector<FPackageIndex>& Actors)
{
	FByteWriter Out;
	BeginProperties(Out);
	WriteObjectProperty(Out, EDataName::WorldSettings, FPackageIndex::Export(SettingsExport));
	Export.ScriptEnd = EndProperties(Out);
	WriteIndices(Out, Actors);
	Out.String("unreal");
	Out.String({}); // host
	Out.String(MapName);
	Out.String({}); // portal
	Out.I32(0);		// options
	Out.I32(DefaultPort);
	Out.I32(1);			   // valid
	Out.I32(0);			   // model
	WriteIndices(Out, {}); // model components
	Out.Zeros(4 * 4);	   // level script blueprint and actor, first and last navigation point
	Out.Zeros(EmptyPrecomputedBytes);
	Export.Data = Out.Release();
}

void FillActor(FExportSpec& Export)
{
	FByteWriter Out;
	BeginProperties(Out);
	Export.ScriptEnd = EndProperties(Out);
	Out.I32(0); // every actor of the engine's own files ends with it
	Export.Data = Out.Release();
}

void AddMapExports(FPackageSpec& Spec, FImportList& Imports, const FWorldPackageSpec& World)
{
	const FPackageIndex Level = FPackageIndex::Export(LevelExport);
	const auto Add = [&Spec](FPackageIndex Class, FPackageIndex Outer, std::string Name)
	{
		Spec.Exports.push_back({Class, {}, Outer, std::move(Name), InnerFlags, false, {}, 0, {}, false});
		return FPackageIndex::Export(Spec.Exports.size() - 1);
	};
	Add(Imports.Class("/Script/Engine.World"), {}, std::string(AfterLast(World.PackageName, '/')));
	Add(Imports.Class("/Script/Engine.Level"), FPackageIndex::Export(WorldExport), "PersistentLevel");
	std::vector<FPackageIndex> Actors{Add(Imports.Class("/Script/Engine.WorldSettings"), Level, "WorldSettings")};
	FillActor(Spec.Exports[SettingsExport]);
	if (World.bPlayerStart)
	{
		Actors.push_back(Add(Imports.Class("/Script/Engine.PlayerStart"), Level, "PlayerStart_0"));
		FillActor(Spec.Exports[PlayerStartExport]);
	}
	FillLevel(Spec.Exports[LevelExport], World.PackageName, Actors);
}

/** Noise that compresses to about a half, as cooked data does. */
std::vector<std::byte> MakePayload(std::size_t Size, std::uint64_t Seed)
{
	constexpr std::uint64_t HalfOfTheBits = 0x0F0F0F0F0F0F0F0F;
	FByteWriter Out;
	while (Out.Position() < Size)
	{
		Seed += 0x9E3779B97F4A7C15; // splitmix64
		std::uint64_t Word = (Seed ^ (Seed >> 30)) * 0xBF58476D1CE4E5B9;
		Word = (Word ^ (Word >> 27)) * 0x94D049BB133111EB;
		Out.U64((Word ^ (Word >> 31)) & HalfOfTheBits);
	}
	std::vector<std::byte> Bytes = Out.Release();
	Bytes.resize(Size);
	return Bytes;
}
} // namespace

std::vector<std::byte> BuildWorldPackage(const FWorldPackageSpec& World)
{
	FPackageSpec Spec;
	Spec.PackageName = World.PackageName;
	Spec.Flags = static_cast<std::uint32_t>(EPackageFlags::ContainsMap);
	Spec.DataNames.assign(std::begin(DataNames), std::end(DataNames));
	FImportList Imports(Spec);
	AddMapExports(Spec, Imports, World);
	const std::vector<FPackageIndex> Objects = AddReferences(Imports, World.HardReferences);
	AddSoftPackages(Spec, World.SoftPackages);
	FExportSpec& Export = Spec.Exports[WorldExport];
	Export.ObjectFlags = AssetFlags;
	Export.bAsset = true;
	Export.DependsOn = Objects;
	FillWorld(Export, Objects);
	Spec.Assets = {{Export.ObjectName, "/Script/Engine.World",
		{{"PrimaryAssetName", World.PackageName}, {"PrimaryAssetType", "Map"}}}};
	return BuildPackage(Spec);
}

std::vector<std::byte> BuildAssetPackage(const FAssetPackageSpec& Asset)
{
	FPackageSpec Spec;
	Spec.PackageName = Asset.PackageName;
	Spec.DataNames.emplace_back(DataNames[0]);
	FImportList Imports(Spec);
	FExportSpec Export;
	Export.Class = Imports.Class(Asset.ClassPath);
	Export.ObjectName = AfterLast(Asset.PackageName, '/');
	Export.ObjectFlags = AssetFlags;
	Export.bAsset = true;
	Export.DependsOn = AddReferences(Imports, Asset.HardReferences);
	AddSoftPackages(Spec, Asset.SoftPackages);
	FByteWriter Out;
	BeginProperties(Out);
	Export.ScriptEnd = EndProperties(Out);
	Out.Append(MakePayload(Asset.PayloadBytes, Asset.PayloadSeed));
	Export.Data = Out.Release();
	Spec.Assets = {{Export.ObjectName, Asset.ClassPath, {}}};
	Spec.Exports.push_back(std::move(Export));
	return BuildPackage(Spec);
}
} // namespace QVFormats
