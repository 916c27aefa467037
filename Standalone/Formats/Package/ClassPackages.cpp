// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Standalone/Formats/Package/PackageMaker.h"

namespace QVFormats
{
namespace
{
class FExternalActorMaker : FPackageMaker
{
public:
	explicit FExternalActorMaker(const FExternalActorSpec& InSpec)
		: FPackageMaker(InSpec.PackageName)
		, Spec(InSpec)
	{
	}

	std::vector<std::byte> Make()
	{
		Package.Flags = static_cast<std::uint32_t>(EPackageFlags::EditorOnly) |
						static_cast<std::uint32_t>(EPackageFlags::ContainsMapData);
		const std::string Map = LastPart(Spec.MapPackage);
		const FPackageIndex World =
			Imports.Object({"/Script/Engine", "World", Map, Imports.Package(Spec.MapPackage), true});
		const FPackageIndex Level = Imports.Object({"/Script/Engine", "Level", "PersistentLevel", World, true});
		const FPackageIndex Actor = Add(Imports.Class(Spec.Actor.ClassPath), Level, Spec.Actor.Name);
		WriteActor(Actor, Spec.Actor);
		MakeAsset(Actor, Spec.MapPackage + "." + Map + ":PersistentLevel." + Spec.Actor.Name, Spec.Actor.ClassPath);
		return BuildPackage(Package);
	}

private:
	const FExternalActorSpec& Spec;
};

class FClassMaker : FPackageMaker
{
public:
	explicit FClassMaker(const FClassPackageSpec& InSpec)
		: FPackageMaker(InSpec.PackageName)
		, Spec(InSpec)
	{
	}

	std::vector<std::byte> Make()
	{
		const std::string Name = LastPart(Spec.PackageName) + "_C";
		const FPackageIndex Parent = Imports.Class(Spec.ParentPath);
		const FPackageIndex Class = Add(Imports.Class("/Script/Engine.BlueprintGeneratedClass"), {}, Name);
		At(Class).Super = Parent;
		Write(Class,
			[&](FObjectWriter& To)
			{
				To.EndProperties(At(Class));
				To.Out.Write(Parent);
				To.Indices({});
				EndClass(To);
			});
		const FPackageIndex Default = Add(Class, {}, "Default__" + Name);
		Write(Default,
			[&](FObjectWriter& To)
			{
				To.Enum(Spec.EnumProperty, Spec.EnumValue);
				To.EndProperties(At(Default));
			});
		At(Default).ObjectFlags = static_cast<std::uint32_t>(EObjectFlags::ClassDefaultObject);
		MakeAsset(Class, Name, "/Script/Engine.BlueprintGeneratedClass");
		return BuildPackage(Package);
	}

private:
	const FClassPackageSpec& Spec;
};
} // namespace

std::vector<std::byte> BuildExternalActorPackage(const FExternalActorSpec& Spec)
{
	return FExternalActorMaker(Spec).Make();
}

std::vector<std::byte> BuildClassPackage(const FClassPackageSpec& Spec)
{
	return FClassMaker(Spec).Make();
}
} // namespace QVFormats
