// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVString.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The open map's live objects. All of them belong to the engine, are asked on the game thread only, and are good until
// control goes back to whoever started the toolkit's operation: nobody keeps a pointer to one for later.

/** A function that a class declares itself. */
struct FQVFunction
{
	std::string Name;
	/** Bytes of its compiled script; 0: it does nothing. */
	std::int32_t ScriptBytes = 0;
};

/** A class, native or made from a blueprint. */
class IQVClass
{
public:
	virtual ~IQVClass() = default;

	/** `PlayerStart` */
	virtual std::string GetName() const = 0;
	/** The package that holds the class, `/Script/Engine`; empty if it is gone. */
	virtual std::string GetPackageName() const = 0;
	/** It is that class, `/Script/Engine.LevelScriptActor`, or one derived from it. */
	virtual bool IsChildOf(std::string_view ClassPath) const = 0;
	/** Replaces Out: what the class declares itself, nothing inherited, no interfaces; deprecated ones too. */
	virtual void GetFunctions(std::vector<FQVFunction>& Out) const = 0;
	/** The class has or inherits an enum property, or a byte property of an enum, whose enum has that value. */
	virtual bool HasEnumProperty(std::string_view Property, std::string_view Enumerator) const = 0;
};

/** An actor of a level. */
class IQVActor
{
public:
	virtual ~IQVActor() = default;

	virtual std::string GetName() const = 0;
	/** Null if it is gone. */
	virtual const IQVClass* GetClass() const = 0;
	virtual bool IsTransient() const = 0;
	virtual bool IsEditorOnly() const = 0;
	/** Whether an enum property holds that value; nothing if the engine cannot tell. */
	virtual std::optional<bool> IsEnumPropertySetTo(std::string_view Property, std::string_view Enumerator) const = 0;
};

/** A level: a world's own, or one that is streamed into it. */
class IQVLevel
{
public:
	virtual ~IQVLevel() = default;

	/** Replaces Out; in the level's order, null for an empty slot. */
	virtual void GetActors(std::vector<const IQVActor*>& Out) const = 0;
	/** Null if the level has none. */
	virtual const IQVActor* GetLevelScriptActor() const = 0;
};

/** A level that a world streams in. */
struct FQVStreamingLevel
{
	/** Of the level's world: `/Cave/Maps/Hall_Lights`. */
	std::string WorldAssetPackageName;
	bool bLoaded = false;
};

/** A world that is open in the editor. */
class IQVWorld
{
public:
	virtual ~IQVWorld() = default;

	/** `Hall` */
	virtual std::string GetName() const = 0;
	/** `/Cave/Maps/Hall.Hall` */
	virtual std::string GetPathName() const = 0;
	/** `/Cave/Maps/Hall`; empty if the world lies in no package. */
	virtual std::string GetPackageName() const = 0;
	/** It has changes that are not saved. */
	virtual bool IsPackageDirty() const = 0;
	virtual bool HasWorldPartition() const = 0;
	/** Null if the world has none. */
	virtual const IQVLevel* GetPersistentLevel() const = 0;
	/** Replaces Out; in the world's order, without empty entries. */
	virtual void GetStreamingLevels(std::vector<FQVStreamingLevel>& Out) const = 0;
	/** Replaces Out: actors of the class and of those derived from it, over all levels that are loaded. */
	virtual void GetAllActorsOfClass(const IQVClass& Class, std::vector<const IQVActor*>& Out) const = 0;

	/** The map was never saved: its package is no file yet. */
	bool IsTempPackage() const { return FQVString::StartsWithIgnoreCase(GetPackageName(), "/Temp/"); }
};
