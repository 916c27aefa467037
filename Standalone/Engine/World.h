// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVWorld.h"
#include "Standalone/Engine/AssetRegistry.h"
#include "Standalone/Engine/Classes.h"
#include "Standalone/Engine/WorldLevel.h"

#include <map>
#include <memory>

namespace QVStandalone
{
struct FOpenMapOptions
{
	/** As an editor that shows all sublevels has them; else they are named and stay unloaded. */
	bool bLoadSublevels = true;
};

/**
 * A map as the editor would have it open, read from its file, from the files of its external actors and from those of
 * its sublevels. Keeps no file open and does not see later changes. Made, asked and destroyed on the game thread.
 */
class FWorld : public IQVWorld, public IFileWorld
{
public:
	/**
	 * What is given outlives the world; the registry has to know the map's packages. The error begins with the name of
	 * the file that cannot be read. What the map can be opened without is logged as a warning: sublevels and external
	 * actors whose files cannot be read.
	 */
	static QVFormats::TResult<std::unique_ptr<FWorld>> Open(
		const FWorldSources& Sources, std::string_view PackageName, const FOpenMapOptions& Options = {});

	std::string GetName() const override { return Persistent->GetWorldName(); }
	std::string GetPathName() const override { return GetPackageName() + "." + GetName(); }
	std::string GetPackageName() const override { return Persistent->GetPackageName(); }
	bool IsPackageDirty() const override { return false; }
	bool HasWorldPartition() const override { return Persistent->IsPartitioned(); }
	const IQVLevel* GetPersistentLevel() const override { return Persistent.get(); }
	void GetStreamingLevels(std::vector<FQVStreamingLevel>& Out) const override { Out = Streaming; }
	void GetAllActorsOfClass(const IQVClass& Class, std::vector<const IQVActor*>& Out) const override;

	bool HasLevelScriptBlueprint() const { return Persistent->HasScriptBlueprint(); }
	bool IsKnownNotToBeDefault(const std::string& Property, const std::string& Enumerator) const override;

private:
	std::unique_ptr<FWorldLevel> Persistent;
	/** Those that are loaded. */
	std::vector<std::unique_ptr<FWorldLevel>> Sublevels;
	std::vector<FQVStreamingLevel> Streaming;
	/** Answers of IsKnownNotToBeDefault. */
	mutable std::map<std::pair<std::string, std::string>, bool> Answers;

	void LoadSublevels(const FWorldSources& Sources);
	bool LoadSublevel(const FWorldSources& Sources, const std::string& PackageName);
	template<class TVisit>
	void ForEachActor(TVisit Visit) const;
};
} // namespace QVStandalone
