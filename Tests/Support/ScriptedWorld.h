// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVClasses.h"
#include "Engine/QVWorld.h"

#include <algorithm>
#include <deque>
#include <map>

namespace QVTest
{
/** A class as a test wants it. */
struct FScriptedClass : IQVClass
{
	std::string Name;
	std::string Package;
	/** Paths of the classes that it is derived from. */
	std::vector<std::string> Parents;
	std::vector<FQVFunction> Functions;
	/** `Type.Start` */
	std::vector<std::string> Enumerators;

	std::string GetName() const override { return Name; }
	std::string GetPackageName() const override { return Package; }
	bool IsChildOf(std::string_view ClassPath) const override
	{
		return ClassPath == Package + "." + Name ||
			   std::find(Parents.begin(), Parents.end(), ClassPath) != Parents.end();
	}
	void GetFunctions(std::vector<FQVFunction>& Out) const override { Out = Functions; }
	bool HasEnumProperty(std::string_view Property, std::string_view Enumerator) const override
	{
		const std::string Wanted = std::string(Property) + "." + std::string(Enumerator);
		return std::find(Enumerators.begin(), Enumerators.end(), Wanted) != Enumerators.end();
	}
};

struct FScriptedActor : IQVActor
{
	std::string Name;
	const IQVClass* Class = nullptr;
	bool bTransient = false;
	bool bEditorOnly = false;
	/** What its one enum property says; nothing: that cannot be told. */
	std::optional<std::string> Type;

	std::string GetName() const override { return Name; }
	const IQVClass* GetClass() const override { return Class; }
	bool IsTransient() const override { return bTransient; }
	bool IsEditorOnly() const override { return bEditorOnly; }
	std::optional<bool> IsEnumPropertySetTo(std::string_view, std::string_view Enumerator) const override
	{
		return Type ? std::optional(*Type == Enumerator) : std::nullopt;
	}
};

struct FScriptedLevel : IQVLevel
{
	std::vector<const IQVActor*> Actors;
	const IQVActor* ScriptActor = nullptr;

	void GetActors(std::vector<const IQVActor*>& Out) const override { Out = Actors; }
	const IQVActor* GetLevelScriptActor() const override { return ScriptActor; }
};

/** An open world as a live editor could have it, with what no file holds. */
struct FScriptedWorld : IQVWorld
{
	std::string Name = "Hall";
	std::string Package = "/Cave/Maps/Hall";
	bool bWorldPartition = false;
	bool bHasLevel = true;
	FScriptedLevel Level;
	std::vector<FQVStreamingLevel> Streaming;

	FScriptedActor& Add(const std::string& ActorName, const IQVClass* Class)
	{
		FScriptedActor& Actor = Owned.emplace_back();
		Actor.Name = ActorName;
		Actor.Class = Class;
		Level.Actors.push_back(&Actor);
		return Actor;
	}
	FScriptedClass& AddClass(const std::string& ClassPackage, const std::string& ClassName)
	{
		FScriptedClass& Class = OwnedClasses.emplace_back();
		Class.Package = ClassPackage;
		Class.Name = ClassName;
		return Class;
	}

	std::string GetName() const override { return Name; }
	std::string GetPathName() const override { return Package + "." + Name; }
	std::string GetPackageName() const override { return Package; }
	bool IsPackageDirty() const override { return false; }
	bool HasWorldPartition() const override { return bWorldPartition; }
	const IQVLevel* GetPersistentLevel() const override { return bHasLevel ? &Level : nullptr; }
	void GetStreamingLevels(std::vector<FQVStreamingLevel>& Out) const override { Out = Streaming; }
	void GetAllActorsOfClass(const IQVClass& Class, std::vector<const IQVActor*>& Out) const override
	{
		Out.clear();
		std::copy_if(Level.Actors.begin(), Level.Actors.end(), std::back_inserter(Out),
			[&](const IQVActor* Actor)
			{
				return Actor != nullptr && Actor->GetClass() != nullptr &&
					   Actor->GetClass()->IsChildOf(Class.GetPackageName() + "." + Class.GetName());
			});
	}

private:
	std::deque<FScriptedActor> Owned;
	std::deque<FScriptedClass> OwnedClasses;
};

/** Knows the classes that a test gives it, by their paths. */
struct FScriptedClasses : IQVClasses
{
	std::map<std::string, const IQVClass*, std::less<>> Known;

	const IQVClass* FindClass(std::string_view ClassPath) override
	{
		const auto Found = Known.find(ClassPath);
		return Found != Known.end() ? Found->second : nullptr;
	}
	const IQVClass* LoadClass(std::string_view ClassPath) override { return FindClass(ClassPath); }
};
} // namespace QVTest
