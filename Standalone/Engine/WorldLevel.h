// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVWorld.h"
#include "Standalone/Engine/AssetRegistry.h"
#include "Standalone/Engine/Classes.h"
#include "Standalone/Engine/OpenPackage.h"
#include "Standalone/Formats/Package/LevelReader.h"

#include <deque>
#include <optional>
#include <unordered_map>

namespace QVStandalone
{
class FEditorOnlyRule;

/** What a world is read from. */
struct FWorldSources
{
	const FAssetRegistry& Registry;
	const FPackages& Packages;
	FClasses& Classes;
};

/** What an actor asks its world. */
class IFileWorld
{
public:
	virtual ~IFileWorld() = default;

	/**
	 * Some actor that no blueprint stands behind in this has saved the property with that value, so that this is not
	 * the value that it has from the start: what equals the default is not saved. Property in small letters.
	 */
	virtual bool IsKnownNotToBeDefault(const std::string& Property, const std::string& Enumerator) const = 0;
};

/** An actor as its file has it. */
class FWorldActor : public IQVActor
{
public:
	FWorldActor(const IFileWorld& InWorld, const FClass& InClass, bool bInEditorOnly)
		: World(InWorld)
		, Class(InClass)
		, bEditorOnly(bInEditorOnly)
	{
	}

	const IQVClass* GetClass() const override { return &Class; }
	/** What is transient is in no file. */
	bool IsTransient() const override { return false; }
	bool IsEditorOnly() const override { return bEditorOnly; }
	std::optional<bool> IsEnumPropertySetTo(std::string_view Property, std::string_view Enumerator) const override;

	const FClass& GetFileClass() const { return Class; }
	/** Nothing if the property is not in the file, as one that has its default is not. */
	virtual std::optional<std::string> FindSaved(std::string_view Property) const = 0;

private:
	const IFileWorld& World;
	const FClass& Class;
	const bool bEditorOnly;
};

/** An actor in the map's own file. */
class FMapActor : public FWorldActor
{
public:
	FMapActor(const IFileWorld& InWorld, const FClass& InClass, bool bInEditorOnly, const FOpenPackage& InPackage,
		std::size_t InExport)
		: FWorldActor(InWorld, InClass, bInEditorOnly)
		, Package(InPackage)
		, Export(InExport)
	{
	}

	std::string GetName() const override;
	std::optional<std::string> FindSaved(std::string_view Property) const override;
	std::size_t GetExport() const { return Export; }

private:
	const FOpenPackage& Package;
	const std::size_t Export;
};

/** An actor in a file of its own, which is read anew for each property. */
class FExternalActor : public FWorldActor
{
public:
	FExternalActor(const IFileWorld& InWorld, const FClass& InClass, bool bInEditorOnly, FQVName InPackage,
		std::string InFile, std::string InName)
		: FWorldActor(InWorld, InClass, bInEditorOnly)
		, Package(InPackage)
		, File(std::move(InFile))
		, Name(std::move(InName))
	{
	}

	std::string GetName() const override { return Name; }
	std::optional<std::string> FindSaved(std::string_view Property) const override;
	FQVName GetPackage() const { return Package; }

private:
	const FQVName Package;
	const std::string File;
	const std::string Name;
};

/** A level from the file of its map and from the files of its external actors. */
class FWorldLevel : public IQVLevel
{
public:
	/** The error begins with the file's name. World is only kept, not asked. */
	static QVFormats::TResult<std::unique_ptr<FWorldLevel>> Open(
		const FWorldSources& Sources, const IFileWorld& World, std::string_view PackageName);

	void GetActors(std::vector<const IQVActor*>& Out) const override { Out.assign(Slots.begin(), Slots.end()); }
	const IQVActor* GetLevelScriptActor() const override { return ScriptActor; }

	/** Null for an empty slot. */
	const std::vector<const FWorldActor*>& GetSlots() const { return Slots; }
	std::string GetWorldName() const;
	const std::string& GetPackageName() const { return Package->Name; }
	bool IsPartitioned() const { return Map.bPartitioned; }
	bool HasScriptBlueprint() const { return !Map.ScriptBlueprint.IsNull(); }
	const std::vector<std::string>& GetStreamingPackages() const { return Map.StreamingLevels; }

private:
	FWorldLevel(const FWorldSources& InSources, const IFileWorld& InWorld)
		: Sources(InSources)
		, World(InWorld)
	{
	}

	const FWorldSources Sources;
	const IFileWorld& World;
	std::unique_ptr<FOpenPackage> Package;
	QVFormats::FMapWorld Map;
	std::deque<FMapActor> MapActors;
	std::deque<FExternalActor> ExternalActors;
	std::vector<const FWorldActor*> Slots;
	const FWorldActor* ScriptActor = nullptr;
	/** By an export's class index. */
	std::unordered_map<std::int32_t, const FClass*> ClassOf;

	void AddScriptClass();
	void AddExternalActors();
	void AddExternalActor(FQVName ActorPackage, FQVName ActorName);
	void FillSlots();
	const FWorldActor* AddMapActor(QVFormats::FPackageIndex Index, const FEditorOnlyRule& EditorOnly);
	const FWorldActor* FindExternalActor(
		const std::unordered_map<FQVName, const FExternalActor*>& ByPackage, QVFormats::FPackageIndex Import) const;
};
} // namespace QVStandalone
