// SPDX-License-Identifier: MIT
#include "Content/QVMapSecurityScanner.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Core/QVString.h"
#include "Engine/QVAssetRegistry.h"
#include "Engine/QVBlueprint.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVWorld.h"

#include <algorithm>

namespace
{
constexpr std::string_view LevelScriptActorClass = "/Script/Engine.LevelScriptActor";

/** The scan's four steps; each adds to the same result. */
class FEligibilityScan
{
public:
	FEligibilityScan(std::string_view InPluginName, const IQVWorld* InWorld, const FQVNameSet& InReferencedPackages)
		: PluginName(InPluginName)
		, World(InWorld)
		, Level(InWorld != nullptr ? InWorld->GetPersistentLevel() : nullptr)
		, ReferencedPackages(InReferencedPackages)
	{
	}

	FQVSecurityScanResult Result;

	void Run()
	{
		CheckAssetClasses();
		CheckLevelBlueprint();
		AuditActors();
		CheckWorldPartition();
	}

private:
	const std::string_view PluginName;
	const IQVWorld* const World;
	const IQVLevel* const Level;
	const FQVNameSet& ReferencedPackages;

	void Refuse(std::string_view Category, std::string Detail, bool bAutoFixable = false)
	{
		Result.bIsMap = false;
		Result.Violations.push_back({std::string(Category), std::move(Detail), bAutoFixable});
	}

	void CheckAssetClasses()
	{
		std::vector<FQVAssetData> Assets;
		FQVEngine::Get().AssetRegistry->GetAssets({QVPrintf("/%s", PluginName), {}}, Assets);
		QVLog(EQVLogVerbosity::Log, "QVMap Security: Asset class check -- %d assets in /%s (dependency filter %s)",
			Assets.size(), PluginName, ReferencedPackages.IsEmpty() ? "OFF" : "ON");
		static const FQVName WorldClass(FQVAssetData::WorldClass);
		FQVNameSet MapPackages;
		for (const FQVAssetData& Asset : Assets)
		{
			if (Asset.ClassPath == WorldClass)
			{
				MapPackages.Add(Asset.PackageName);
			}
		}
		for (const FQVAssetData& Asset : Assets)
		{
			CheckAssetClass(Asset, MapPackages);
		}
	}

	void CheckAssetClass(const FQVAssetData& Asset, const FQVNameSet& MapPackages)
	{
		static const FQVName GeneratedClass("/Script/Engine.BlueprintGeneratedClass");
		if (!ReferencedPackages.IsEmpty() && !ReferencedPackages.Contains(Asset.PackageName))
		{
			QVLog(EQVLogVerbosity::Verbose, "QVMap Security: Skipping unreferenced asset %s", Asset.GetObjectPath());
		}
		else if (Asset.ClassPath == GeneratedClass && MapPackages.Contains(Asset.PackageName))
		{
			QVLog(EQVLogVerbosity::Log, "QVMap Security: Skipping Level Blueprint class: %s (validated in Phase 3b)",
				Asset.GetObjectPath());
		}
		else if (!FQVMapSecurityScanner::GetAllowedAssetClasses().Contains(Asset.ClassPath))
		{
			const std::string_view ClassPath = Asset.ClassPath.ToView();
			const std::string ObjectPath = Asset.GetObjectPath();
			Refuse(FQVSecurityViolation::UnsupportedAsset, QVPrintf("%s  (%s)", ObjectPath, ClassPath));
			QVLog(EQVLogVerbosity::Warning, "QVMap Security: Disallowed asset class '%s' at %s", ClassPath, ObjectPath);
		}
	}

	/** Known in the log as Phase 3b. */
	void CheckLevelBlueprint()
	{
		if (Level == nullptr)
		{
			return;
		}
		const IQVActor* ScriptActor = Level->GetLevelScriptActor();
		if (ScriptActor == nullptr)
		{
			QVLog(EQVLogVerbosity::Log, "QVMap Security: No Level Blueprint present (clean)");
			return;
		}
		std::vector<FQVFunction> Functions;
		if (const IQVClass* Class = ScriptActor->GetClass(); Class != nullptr)
		{
			Class->GetFunctions(Functions);
		}
		for (const FQVFunction& Function : Functions)
		{
			CheckFunction(Function);
		}
	}

	void CheckFunction(const FQVFunction& Function)
	{
		if (Function.ScriptBytes > 0)
		{
			Refuse(FQVSecurityViolation::LevelBlueprint,
				QVPrintf("Level Blueprint has executable code in function '%s' (%d bytes)", Function.Name,
					Function.ScriptBytes),
				true);
			QVLog(EQVLogVerbosity::Warning, "QVMap Security: Level Blueprint bytecode in '%s' (%d bytes)",
				Function.Name, Function.ScriptBytes);
		}
	}

	void AuditActors()
	{
		if (Level == nullptr)
		{
			return;
		}
		std::vector<const IQVActor*> Actors;
		Level->GetActors(Actors);
		std::int32_t Audited = 0;
		std::int32_t Trusted = 0;
		for (const IQVActor* Actor : Actors)
		{
			if (IsAudited(Actor))
			{
				++Audited;
				Trusted += AuditActor(*Actor) ? 1 : 0;
			}
		}
		QVLog(
			EQVLogVerbosity::Log, "QVMap Security: Actor audit for %s -- %d/%d trusted", PluginName, Trusted, Audited);
	}

	static bool IsAudited(const IQVActor* Actor)
	{
		if (Actor == nullptr || Actor->IsTransient() || Actor->IsEditorOnly())
		{
			return false;
		}
		const IQVClass* Class = Actor->GetClass();
		return Class == nullptr || !Class->IsChildOf(LevelScriptActorClass);
	}

	/** An actor whose class is gone is neither trusted nor a violation. */
	bool AuditActor(const IQVActor& Actor)
	{
		const IQVClass* Class = Actor.GetClass();
		const std::string Package = Class != nullptr ? Class->GetPackageName() : std::string();
		if (Package.empty())
		{
			return false;
		}
		// all of the project's own content, not only the base game's
		if (FQVString::StartsWithIgnoreCase(Package, "/Game/") || FQVMapSecurityScanner::IsTrustedPackagePath(Package))
		{
			return true;
		}
		const std::string Name = Actor.GetName();
		const std::string ClassName = Class->GetName();
		Refuse(FQVSecurityViolation::UntrustedActor,
			QVPrintf("Actor '%s' uses class '%s' from untrusted package '%s'", Name, ClassName, Package));
		QVLog(EQVLogVerbosity::Warning, "QVMap Security: Untrusted actor '%s' (class %s, package %s)", Name, ClassName,
			Package);
		return false;
	}

	void CheckWorldPartition()
	{
		if (World == nullptr)
		{
			return;
		}
		if (World->HasWorldPartition())
		{
			Refuse(FQVSecurityViolation::WorldPartition, "World Partition maps are not supported for PAK loading. Use "
														 "a standard sub-level or single-level map.");
			QVLog(EQVLogVerbosity::Warning,
				"QVMap Security: World Partition detected -- PakLoader v1 does not support WP maps");
		}
		else
		{
			QVLog(EQVLogVerbosity::Log, "QVMap Security: World Partition check -- not present (OK)");
		}
	}
};

/** The graph stays, empty. */
void RemoveAllNodes(IQVGraph* Graph)
{
	if (Graph == nullptr)
	{
		return;
	}
	Graph->Modify();
	std::vector<FQVGraphNode*> Nodes;
	Graph->GetNodes(Nodes);
	for (FQVGraphNode* Node : Nodes)
	{
		Graph->RemoveNode(Node);
	}
}

bool StripBlueprint(IQVBlueprint& Blueprint)
{
	Blueprint.Modify();
	std::vector<IQVGraph*> Graphs;
	Blueprint.GetEventGraphs(Graphs);
	std::for_each(Graphs.begin(), Graphs.end(), RemoveAllNodes);
	Blueprint.GetFunctionGraphs(Graphs);
	std::for_each(Graphs.begin(), Graphs.end(), RemoveAllNodes);
	const bool bCompiled = Blueprint.Compile();
	Blueprint.MarkPackageDirty();
	return bCompiled;
}
} // namespace

FQVSecurityScanResult FQVMapSecurityScanner::ScanForMapEligibility(
	std::string_view PluginName, const IQVWorld* World, const FQVNameSet& ReferencedPackages)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	QVLog(EQVLogVerbosity::Log, "QVMap Security: Scanning plugin '%s' for map eligibility...", PluginName);
	FEligibilityScan Scan(PluginName, World, ReferencedPackages);
	Scan.Run();
	if (Scan.Result.bIsMap)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap Security: PASS -- plugin qualifies as a MAP");
	}
	else
	{
		QVLog(EQVLogVerbosity::Warning, "QVMap Security: FAIL -- %d violation(s), classified as MOD",
			Scan.Result.Violations.size());
	}
	return std::move(Scan.Result);
}

bool FQVMapSecurityScanner::StripLevelBlueprint(const IQVWorld* World)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	if (World == nullptr)
	{
		QVLog(EQVLogVerbosity::Error, "QVMap Security: StripLevelBlueprint called with null world");
		return false;
	}
	const IQVLevel* Level = World->GetPersistentLevel();
	if (Level == nullptr)
	{
		QVLog(EQVLogVerbosity::Error, "QVMap Security: No persistent level");
		return false;
	}
	IQVEditor& Editor = *FQVEngine::Get().Editor;
	FQVText Refusal;
	IQVBlueprint* Blueprint = Editor.GetLevelScriptBlueprint(*Level, Refusal);
	if (const std::string Reason = Refusal.ToString(); Blueprint == nullptr && !Reason.empty())
	{
		QVLog(EQVLogVerbosity::Error, "QVMap Security: %s", Reason);
		return false;
	}
	if (Blueprint == nullptr)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap Security: No Level Blueprint to strip");
		return true;
	}
	Editor.BeginTransaction(FQVText("QVMap", "StripLevelBP", "Strip Level Blueprint Code"));
	const bool bStripped = StripBlueprint(*Blueprint);
	Editor.EndTransaction();
	if (!bStripped)
	{
		QVLog(EQVLogVerbosity::Error, "QVMap Security: The Level Blueprint keeps its code");
		return false;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap Security: Level Blueprint code stripped successfully (Ctrl+Z to undo)");
	return true;
}
