// SPDX-License-Identifier: MIT
#include "Standalone/Engine/World.h"

#include "Standalone/Engine/EngineLog.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

template<class TVisit>
void FWorld::ForEachActor(TVisit Visit) const
{
	const auto VisitLevel = [&Visit](const FWorldLevel& Level)
	{
		for (const FWorldActor* Actor : Level.GetSlots())
		{
			if (Actor != nullptr)
			{
				Visit(*Actor);
			}
		}
	};
	VisitLevel(*Persistent);
	for (const auto& Level : Sublevels)
	{
		VisitLevel(*Level);
	}
}

TResult<std::unique_ptr<FWorld>> FWorld::Open(
	const FWorldSources& Sources, std::string_view PackageName, const FOpenMapOptions& Options)
{
	auto World = std::make_unique<FWorld>();
	auto Level = FWorldLevel::Open(Sources, *World, PackageName);
	if (!Level)
	{
		return Level.Error();
	}
	World->Persistent = std::move(*Level);
	for (const std::string& Package : World->Persistent->GetStreamingPackages())
	{
		World->Streaming.push_back({Package, false});
	}
	if (Options.bLoadSublevels)
	{
		World->LoadSublevels(Sources);
	}
	return World;
}

void FWorld::LoadSublevels(const FWorldSources& Sources)
{
	for (FQVStreamingLevel& Level : Streaming)
	{
		const auto IsThat = [&Level](const auto& Other)
		{ return FQVString::EqualsIgnoreCase(Other->GetPackageName(), Level.WorldAssetPackageName); };
		// a level that two entries name is there once
		const bool bThere = IsThat(Persistent) || std::any_of(Sublevels.begin(), Sublevels.end(), IsThat);
		Level.bLoaded = bThere || LoadSublevel(Sources, Level.WorldAssetPackageName);
	}
}

bool FWorld::LoadSublevel(const FWorldSources& Sources, const std::string& PackageName)
{
	auto Level = FWorldLevel::Open(Sources, *this, PackageName);
	if (!Level)
	{
		LogEngine(
			EQVLogVerbosity::Warning, "A sublevel of %s is not loaded: %s", GetPackageName(), Level.Error().Message);
		return false;
	}
	Sublevels.push_back(std::move(*Level));
	return true;
}

void FWorld::GetAllActorsOfClass(const IQVClass& Class, std::vector<const IQVActor*>& Out) const
{
	Out.clear();
	const FQVName Path(Class.GetPackageName() + "." + Class.GetName());
	std::unordered_map<const FClass*, bool> Answered;
	ForEachActor(
		[&](const FWorldActor& Actor)
		{
			const FClass* Of = &Actor.GetFileClass();
			const auto [Found, bNew] = Answered.try_emplace(Of, false);
			Found->second = bNew ? Of->IsChildOf(Path) : Found->second;
			if (Found->second)
			{
				Out.push_back(&Actor);
			}
		});
}

bool FWorld::IsKnownNotToBeDefault(const std::string& Property, const std::string& Enumerator) const
{
	const auto Entry = Answers.try_emplace({Property, Enumerator}, false);
	bool& bAnswer = Entry.first->second;
	if (Entry.second)
	{
		ForEachActor(
			[&](const FWorldActor& Actor)
			{
				const FClass& Class = Actor.GetFileClass();
				const bool bAsked = !bAnswer && Class.HasEnumProperty(Property, Enumerator);
				if (bAsked && Class.FindDefault(Property) == nullptr)
				{
					const std::optional<std::string> Saved = Actor.FindSaved(Property);
					bAnswer = Saved && FQVString::EqualsIgnoreCase(*Saved, Enumerator);
				}
			});
	}
	return bAnswer;
}
} // namespace QVStandalone
