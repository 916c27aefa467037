// SPDX-License-Identifier: MIT
#include "Standalone/Engine/WorldLevel.h"

#include "Standalone/Engine/ClassFile.h"
#include "Standalone/Engine/EditorOnlyRule.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/NativeClasses.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/MappedFile.h"

#include <algorithm>
#include <unordered_set>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
constexpr std::string_view ActorFolder = "/__ExternalActors__/";

/** The actor's own export in its file: an asset whose outer lies in the map. */
const FPackageExport* FindActor(const FPackageHeader& Header, std::string_view Name)
{
	const auto Found = std::find_if(Header.Exports.begin(), Header.Exports.end(),
		[&](const FPackageExport& Export)
		{ return Export.Outer.IsImport() && FQVString::EqualsIgnoreCase(Header.Names.Text(Export.ObjectName), Name); });
	return Found != Header.Exports.end() ? &*Found : nullptr;
}

} // namespace

std::optional<bool> FWorldActor::IsEnumPropertySetTo(std::string_view Property, std::string_view Enumerator) const
{
	const std::string Small = FQVString::ToLower(Property);
	if (const std::optional<std::string> Saved = FindSaved(Property))
	{
		return FQVString::EqualsIgnoreCase(*Saved, Enumerator);
	}
	if (const std::string* Default = Class.FindDefault(Small); Default != nullptr)
	{
		return FQVString::EqualsIgnoreCase(*Default, Enumerator);
	}
	return World.IsKnownNotToBeDefault(Small, FQVString::ToLower(Enumerator)) ? std::optional(false) : std::nullopt;
}

std::string FMapActor::GetName() const
{
	return Package.Header.Names.Text(Package.Header.Exports[Export].ObjectName);
}

std::optional<std::string> FMapActor::FindSaved(std::string_view Property) const
{
	return FindSavedEnum(Package.Header, Package.Header.Exports[Export], Package.Bytes, Property);
}

std::optional<std::string> FExternalActor::FindSaved(std::string_view Property) const
{
	const auto Opened = OpenPackage(Package.ToString(), File);
	const FPackageExport* Export = Opened ? FindActor((*Opened)->Header, Name) : nullptr;
	return Export != nullptr ? FindSavedEnum((*Opened)->Header, *Export, (*Opened)->Bytes, Property) : std::nullopt;
}

TResult<std::unique_ptr<FWorldLevel>> FWorldLevel::Open(
	const FWorldSources& Sources, const IFileWorld& World, std::string_view PackageName)
{
	const std::string File = Sources.Packages.FindPackageFile(PackageName, IQVPackages::MapPackageExtension);
	if (File.empty())
	{
		return FError{std::string(PackageName) + " has no file: there is no such map"};
	}
	std::string Name;
	Sources.Packages.TryConvertFilenameToLongPackageName(File, Name);
	auto Opened = OpenPackage(Name, File);
	if (!Opened)
	{
		return Opened.Error();
	}
	TResult<FMapWorld> Map = ReadMapWorld((*Opened)->Header, (*Opened)->Bytes);
	if (!Map)
	{
		return FError{File + " " + Map.Error().Message};
	}
	std::unique_ptr<FWorldLevel> Level(new FWorldLevel(Sources, World));
	Level->Package = std::move(*Opened);
	Level->Map = std::move(*Map);
	Level->AddScriptClass();
	Level->AddExternalActors();
	Level->FillSlots();
	return Level;
}

std::string FWorldLevel::GetWorldName() const
{
	return Package->Header.Names.Text(Package->Header.Exports[Map.World].ObjectName);
}

/** The class that the map holds of its level script. */
void FWorldLevel::AddScriptClass()
{
	const FPackageIndex Class =
		Map.ScriptActor.IsExport() ? Package->Header.Exports[Map.ScriptActor.ToExport()].Class : FPackageIndex();
	if (!Class.IsExport())
	{
		return;
	}
	FClassContent Content;
	Content.Parent = Package->ObjectPath(Package->Header.Exports[Class.ToExport()].Super);
	Content.Functions = ToFunctions(Package->Header, Map.ScriptFunctions);
	// nothing else can be a level's script, whatever the project's own parent of them is called
	if (Content.Parent.empty() ||
		!Sources.Classes.Get(Content.Parent).IsChildOf(FQVName(FNativeClasses::LevelScriptActor)))
	{
		Content.Parent = FNativeClasses::LevelScriptActor;
	}
	Sources.Classes.Add(Package->ObjectPath(Class), std::move(Content));
}

/** Whatever else lies in the folders was left behind by another map. */
void FWorldLevel::AddExternalActors()
{
	std::vector<FQVName> Packages;
	if (Map.bExternalActors)
	{
		Sources.Registry.GetExternalPackages(FQVName(Package->Name), Packages);
	}
	const std::string LevelPath = Package->Name + "." + GetWorldName() + ":PersistentLevel";
	std::vector<FQVAssetData> Assets;
	for (const FQVName ActorPackage : Packages)
	{
		if (!FQVString::ContainsIgnoreCase(ActorPackage.ToView(), ActorFolder))
		{
			continue; // an object of the level that is no actor
		}
		Sources.Registry.GetAssetsByPackageName(ActorPackage, Assets);
		for (const FQVAssetData& Asset : Assets)
		{
			if (Asset.OuterPath == FQVName(LevelPath))
			{
				AddExternalActor(ActorPackage, Asset.AssetName);
			}
		}
	}
}

void FWorldLevel::AddExternalActor(FQVName ActorPackage, FQVName ActorName)
{
	const std::string File = Sources.Registry.GetPackageFile(ActorPackage);
	const auto Mapped = FMappedFile::Open(ToOsPath(File));
	const auto Header = Mapped ? ReadPackageHeader(Mapped->Bytes(), {.bRegistrySection = false})
							   : TResult<FPackageHeader>(Mapped.Error());
	const FPackageExport* Actor = Header ? FindActor(*Header, ActorName.ToView()) : nullptr;
	if (Actor == nullptr || Actor->Class.IsNull())
	{
		LogEngine(EQVLogVerbosity::Warning, "The actor %s of %s is left out: %s %s", ActorName.ToView(), Package->Name,
			File, Header ? "does not hold it" : Header.Error().Message);
		return;
	}
	const FClass& Class = Sources.Classes.Get(ObjectPathIn(*Header, ActorPackage.ToView(), Actor->Class));
	const bool bEditorOnly = FEditorOnlyRule(*Header, Mapped->Bytes()).Applies(*Actor, Class);
	ExternalActors.emplace_back(World, Class, bEditorOnly, ActorPackage, File, ActorName.ToString());
}

const FWorldActor* FWorldLevel::FindExternalActor(
	const std::unordered_map<FQVName, const FExternalActor*>& ByPackage, FPackageIndex Import) const
{
	FNameRef Holder;
	if (!Package->Header.FindPackageOf(Package->Header.Imports[Import.ToImport()], Holder))
	{
		return nullptr;
	}
	const auto Found = ByPackage.find(FQVName(Package->Header.Names.Text(Holder)));
	return Found != ByPackage.end() ? Found->second : nullptr;
}

const FWorldActor* FWorldLevel::AddMapActor(FPackageIndex Index, const FEditorOnlyRule& EditorOnly)
{
	const FPackageExport& Export = Package->Header.Exports[Index.ToExport()];
	const FClass*& Class = ClassOf[Export.Class.Value];
	if (Class == nullptr)
	{
		Class = &Sources.Classes.Get(Package->ObjectPath(Export.Class));
	}
	return &MapActors.emplace_back(World, *Class, EditorOnly.Applies(Export, *Class), *Package, Index.ToExport());
}

/** As the map lists them; then the external actors that it does not list. */
void FWorldLevel::FillSlots()
{
	std::unordered_map<FQVName, const FExternalActor*> ByPackage;
	for (const FExternalActor& Actor : ExternalActors)
	{
		ByPackage.emplace(Actor.GetPackage(), &Actor);
	}
	const FEditorOnlyRule EditorOnly(Package->Header, Package->Bytes);
	std::unordered_set<const FWorldActor*> Placed;
	for (const FPackageIndex Index : Map.Actors)
	{
		const FWorldActor* Actor = Index.IsExport() ? AddMapActor(Index, EditorOnly) : nullptr;
		if (Index.IsImport())
		{
			Actor = FindExternalActor(ByPackage, Index);
			Placed.insert(Actor);
		}
		Slots.push_back(Actor);
		ScriptActor = Index == Map.ScriptActor ? Actor : ScriptActor;
	}
	for (const FExternalActor& Actor : ExternalActors)
	{
		if (!Placed.contains(&Actor))
		{
			Slots.push_back(&Actor);
		}
	}
	if (ScriptActor == nullptr && Map.ScriptActor.IsExport())
	{
		ScriptActor = AddMapActor(Map.ScriptActor, EditorOnly);
	}
}
} // namespace QVStandalone
