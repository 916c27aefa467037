// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/World.h"

#include <memory>
#include <vector>

namespace QVStandalone
{
/** A world, and the classes that were read for it alone; none if they are the engine's. */
struct FWorldReading
{
	std::unique_ptr<FClasses> Classes;
	std::unique_ptr<FWorld> World;
};

/** The map that the editor has open: the same object when its file is read again, as the editor's own world would be.
 */
class FEditorWorld : public IQVWorld
{
public:
	explicit FEditorWorld(std::unique_ptr<FWorld> World) { Readings.push_back({nullptr, std::move(World)}); }

	std::string GetName() const override { return Newest().GetName(); }
	std::string GetPathName() const override { return Newest().GetPathName(); }
	std::string GetPackageName() const override { return Newest().GetPackageName(); }
	bool IsPackageDirty() const override { return Newest().IsPackageDirty(); }
	bool HasWorldPartition() const override { return Newest().HasWorldPartition(); }
	const IQVLevel* GetPersistentLevel() const override { return Newest().GetPersistentLevel(); }
	void GetStreamingLevels(std::vector<FQVStreamingLevel>& Out) const override { Newest().GetStreamingLevels(Out); }
	void GetAllActorsOfClass(const IQVClass& Class, std::vector<const IQVActor*>& Out) const override
	{
		Newest().GetAllActorsOfClass(Class, Out);
	}

	bool HasLevelScriptBlueprint() const { return Newest().HasLevelScriptBlueprint(); }
	/** Levels and actors of the readings before stay for who still holds one, as they were. */
	void Renew(FWorldReading Reading) { Readings.push_back(std::move(Reading)); }

private:
	std::vector<FWorldReading> Readings;

	const FWorld& Newest() const { return *Readings.back().World; }
};
} // namespace QVStandalone
