// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/LevelPackages.h"

#include "Standalone/Formats/Package/PackageMaker.h"

namespace QVFormats
{
namespace
{
constexpr std::int32_t DefaultPort = 7777;
/** In a level with no lighting built: two blocks that hold nothing but their zeros. */
constexpr std::size_t EmptyPrecomputedBytes = 105;

class FLevelMaker : FPackageMaker
{
public:
	explicit FLevelMaker(const FLevelPackageSpec& InSpec)
		: FPackageMaker(InSpec.PackageName)
		, Spec(InSpec)
		, MapName(LastPart(InSpec.PackageName))
	{
	}

	std::vector<std::byte> Make()
	{
		Package.Flags = static_cast<std::uint32_t>(EPackageFlags::ContainsMap);
		World = Add(Imports.Class("/Script/Engine.World"), {}, MapName);
		Level = Add(Imports.Class("/Script/Engine.Level"), World, "PersistentLevel");
		AddActors();
		AddModel();
		AddMeshes();
		AddStreamingLevels();
		AddSoftPackages();
		if (Spec.bScript)
		{
			AddScript();
		}
		MakeAsset(World, MapName, "/Script/Engine.World");
		AddTags();
		WriteWorld();
		WriteLevel();
		return BuildPackage(Package);
	}

private:
	const FLevelPackageSpec& Spec;
	const std::string MapName;
	FPackageIndex World;
	FPackageIndex Level;
	FPackageIndex Settings;
	FPackageIndex Model;
	std::vector<FPackageIndex> Actors;
	std::vector<FPackageIndex> Meshes;
	std::vector<FPackageIndex> Streaming;
	FPackageIndex ScriptBlueprint;
	FPackageIndex ScriptActor;

	void AddActors()
	{
		Settings = Add(Imports.Class("/Script/Engine.WorldSettings"), Level, "WorldSettings");
		Actors = {Settings};
		Write(Settings,
			[this](FObjectWriter& To)
			{
				To.EndProperties(At(Settings));
				To.Out.I32(0);
			});
		for (const FActorSpec& Actor : Spec.Actors)
		{
			const bool bEmpty = Actor.ClassPath.empty();
			Actors.push_back(bEmpty ? FPackageIndex() : Add(Imports.Class(Actor.ClassPath), Level, Actor.Name));
			if (!bEmpty)
			{
				WriteActor(Actors.back(), Actor);
			}
		}
	}
	void AddModel()
	{
		if (!Spec.bModel)
		{
			return;
		}
		Model = Add(Imports.Class("/Script/Engine.Model"), Level, "Model_0");
		const FPackageIndex Polys = Add(Imports.Class("/Script/Engine.Polys"), Model, "Polys_0");
		Write(Polys,
			[&](FObjectWriter& To)
			{
				To.EndProperties(At(Polys));
				To.Out.I32(0); // polygons
			});
		Write(Model, [&](FObjectWriter& To) { WriteModel(To, Polys); });
	}
	void WriteModel(FObjectWriter& To, FPackageIndex Polys)
	{
		To.EndProperties(At(Model));
		To.Out.U16(0);					  // nothing is stripped
		To.Out.Zeros(7 * sizeof(double)); // bounds
		const auto Empty = [&To](std::int32_t ElementBytes)
		{
			To.Out.I32(ElementBytes);
			To.Out.I32(0);
		};
		Empty(12);	   // vectors
		Empty(12);	   // points
		Empty(64);	   // nodes
		To.Out.I32(0); // surfaces
		Empty(24);	   // vertices
		To.Out.I32(4); // shared sides
		To.Out.Write(Polys);
		Empty(4);		  // leaf hulls
		Empty(4);		  // leaves
		To.Out.I32(1);	  // what is outside of it is open
		To.Out.I32(0);	  // linked
		To.Out.Zeros(8);  // unique vertices, vertex buffer
		To.Out.Zeros(16); // lighting guid
		To.Out.I32(0);	  // settings of the lighting
	}
	void AddMeshes()
	{
		for (const std::string& Mesh : Spec.Meshes)
		{
			Meshes.push_back(Imports.Object({"/Script/Engine", "StaticMesh", LastPart(Mesh), Imports.Package(Mesh)}));
		}
	}
	void AddStreamingLevels()
	{
		for (const std::string& Sublevel : Spec.StreamingLevels)
		{
			const auto Place = static_cast<std::int32_t>(Package.SoftPaths.size());
			Package.SoftPaths.push_back({Sublevel, LastPart(Sublevel), {}});
			const FPackageIndex Entry = Add(Imports.Class("/Script/Engine.LevelStreamingDynamic"), World,
				"LevelStreamingDynamic_" + std::to_string(Place));
			Streaming.push_back(Entry);
			Write(Entry,
				[&](FObjectWriter& To)
				{
					To.SoftPath("WorldAsset", Place);
					To.EndProperties(At(Entry));
				});
		}
	}
	void AddSoftPackages()
	{
		for (const std::string& Soft : Spec.SoftPackages)
		{
			Package.SoftPaths.push_back({Soft, LastPart(Soft), {}});
		}
	}
	void AddScript()
	{
		const FPackageIndex Parent = Imports.Class("/Script/Engine.LevelScriptActor");
		const FPackageIndex Class = Add(Imports.Class("/Script/Engine.BlueprintGeneratedClass"), {}, MapName + "_C");
		At(Class).Super = Parent;
		std::vector<FPackageIndex> Functions;
		for (const FFunctionSpec& Function : Spec.Functions)
		{
			Functions.push_back(Add(Imports.Class("/Script/CoreUObject.Function"), Class, Function.Name));
			WriteFunction(Functions.back(), Function);
		}
		Write(Class,
			[&](FObjectWriter& To)
			{
				To.EndProperties(At(Class));
				To.Out.Write(Parent);
				To.Indices(Functions);
				EndClass(To);
			});
		MakeAsset(Class, MapName + "_C", "/Script/Engine.BlueprintGeneratedClass");
		ScriptBlueprint = Add(Imports.Class("/Script/Engine.LevelScriptBlueprint"), Level, MapName);
		WriteActor(ScriptBlueprint, {});
		for (const std::string& Graph : Spec.Graphs)
		{
			const FPackageIndex Index = Add(Imports.Class("/Script/Engine.EdGraph"), ScriptBlueprint, Graph);
			WriteActor(Index, {});
			WriteActor(Add(Imports.Class("/Script/BlueprintGraph.K2Node_Event"), Index, "K2Node_Event_0"), {});
		}
		ScriptActor = Add(Class, Level, MapName + "_C_1");
		WriteActor(ScriptActor, {});
		Actors.push_back(ScriptActor);
	}
	/** With a few properties in front of the script, as functions with parameters have them. */
	void WriteFunction(FPackageIndex Index, const FFunctionSpec& Function)
	{
		Write(Index,
			[&](FObjectWriter& To)
			{
				To.EndProperties(At(Index));
				To.Out.I32(0);	// super
				To.Indices({}); // children
				To.Out.I32(3);
				To.Field("IntProperty", "Count");
				To.Field("MapProperty", "Places");
				To.Field("StrProperty", "Places_Key");
				To.Field("ObjectProperty", "Places_Value");
				To.Out.I32(0); // class
				To.Field("EnumProperty", "Kind");
				To.Out.I32(0); // enum
				To.Field("ByteProperty", "UnderlyingType");
				To.Out.I32(0); // enum
				const std::int32_t Stored = Function.ScriptBytes > 0 ? Function.ScriptBytes + 4 : 0;
				To.Out.I32(Function.ScriptBytes);
				To.Out.I32(Stored);
				To.Out.Zeros(static_cast<std::size_t>(Stored));
				To.Out.Zeros(3 * sizeof(std::int32_t)); // flags, event graph
			});
	}
	void AddTags()
	{
		auto& Tags = Package.Assets.back().Tags;
		Tags = {{"PrimaryAssetName", Spec.PackageName}, {"PrimaryAssetType", "Map"}};
		if (Spec.bPartitioned)
		{
			Tags.emplace_back("LevelIsPartitioned", "1");
		}
		if (Spec.bExternalActors)
		{
			Tags.emplace_back("LevelIsUsingExternalActors", "1");
		}
	}
	void WriteWorld()
	{
		Write(World,
			[this](FObjectWriter& To)
			{
				To.EndProperties(At(World));
				To.Out.Write(Level);
				To.Indices(Meshes); // extra referenced objects
				To.Indices(Streaming);
			});
	}
	void WriteLevel()
	{
		Write(Level,
			[this](FObjectWriter& To)
			{
				To.Object("WorldSettings", Settings);
				if (Spec.bModel)
				{
					To.Object("Model", Model);
				}
				To.Bool("bIsPartitioned", Spec.bPartitioned);
				To.Bool("bUseExternalActors", Spec.bExternalActors);
				To.EndProperties(At(Level));
				To.Indices(Actors);
				for (const std::string& Text : {std::string("unreal"), std::string(), Spec.PackageName, std::string()})
				{
					To.Out.String(Text);
				}
				To.Out.I32(0); // options
				To.Out.I32(DefaultPort);
				To.Out.I32(1); // valid
				To.Out.Write(Model);
				To.Indices({});
				To.Out.Write(ScriptBlueprint);
				To.Out.Write(ScriptActor);
				To.Out.Zeros(2 * sizeof(std::int32_t)); // navigation points
				To.Out.Zeros(EmptyPrecomputedBytes);
			});
	}
};
} // namespace

std::vector<FActorSpec> PlayableActors()
{
	return {{"PlayerStart_0", "/Script/Engine.PlayerStart"},
		{"Start", "/Script/QUARVEL.MapCheckpointTrigger", false, false, "Type", "ECheckpointType::Start"},
		{"End", "/Script/QUARVEL.MapEndTrigger"}};
}

std::vector<std::byte> BuildLevelPackage(const FLevelPackageSpec& Spec)
{
	return FLevelMaker(Spec).Make();
}
} // namespace QVFormats
