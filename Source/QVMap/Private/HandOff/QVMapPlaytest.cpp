// SPDX-License-Identifier: MIT
#include "HandOff/QVMapPlaytest.h"

#include "Content/QVMapDependencyAnalyzer.h"
#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Core/QVString.h"
#include "Diagnostics/QVMapPreflight.h"
#include "Engine/QVDialogs.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"
#include "Export/QVMapImportVerification.h"
#include "HandOff/QVMapBaseReleaseGates.h"
#include "HandOff/QVMapContentGates.h"
#include "HandOff/QVMapExportRun.h"
#include "Workspace/QVMapConfig.h"
#include "Workspace/QVMapReadiness.h"

namespace
{
constexpr std::string_view TextNamespace = "QVMap";

/** The map that is open in the editor, and whether it is the one to be packed. */
struct FOpenMap
{
	const IQVWorld* World = nullptr;
	bool bRequested = false;

	explicit FOpenMap(const FQVPlayRequest& Request)
	{
		const IQVEditor* Editor = FQVEngine::Get().Editor;
		World = Editor == nullptr ? nullptr : Editor->GetOpenWorld();
		std::string Mod;
		std::string Map;
		std::string GamePath;
		FQVText Refusal;
		bRequested = FQVMapReadiness::ResolveOpenMap(Mod, Map, Refusal, &GamePath) &&
					 FQVString::EqualsIgnoreCase(GamePath, Request.GamePath);
	}
};

bool HasImported(const std::shared_ptr<FQVImportScope>& Import)
{
	return Import != nullptr && !Import->GetResult().Imported.empty();
}

/** False, with the reason told, if the outside content could not be had. */
bool PassImport(const FQVPlayRequest& Request, std::shared_ptr<FQVImportScope>& OutImport)
{
	if (!FQVMapConfig::GetImportExternalAssets())
	{
		return true;
	}
	OutImport = std::make_shared<FQVImportScope>(Request.ModName);
	const FQVImportResult& Result = OutImport->GetResult();
	if (!Result.bSuccess)
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: Could not bring outside content in: %s", Result.ErrorMessage);
		FQVEngine::Get().Dialogs->ShowMessage({TextNamespace, "ImportFailed",
			"{0} uses content from outside its own folder, and it could not be brought in for packing:\n\n{1}",
			Request.ModName, Result.ErrorMessage});
		return false;
	}
	if (HasImported(OutImport))
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Packing %s with %d asset(s) brought in from outside its folder",
			Request.ModName, Result.Imported.size());
	}
	return true;
}

bool PassPreflight(const FQVPlayRequest& Request, const FOpenMap& Open, bool bMayMend, bool& bOutCovered)
{
	const FQVPreflightResult Result =
		FQVMapPreflight::Run({Request.ModName, Request.MapName, Open.bRequested, bMayMend});
	bOutCovered = Result.bRequiredActorsCovered;
	if (Result.Verdict == EQVPreflightVerdict::Cancelled)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Export cancelled at the preflight check");
		return false;
	}
	return true;
}

bool PassPlayability(const FQVPlayRequest& Request, const FOpenMap& Open, bool bCovered)
{
	if (bCovered || Open.World == nullptr)
	{
		return true;
	}
	if (!Open.bRequested)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Playability check skipped - '%s' is not the map open in the editor",
			Request.GamePath);
		return true;
	}
	return FQVMapContentGates::PassPlayability(Request, *Open.World);
}

bool PassSupported(const FQVPlayRequest& Request, const FOpenMap& Open, const FQVNameSet& UsedPackages)
{
	return FQVMapConfig::GetAlwaysExportAsMod() || Open.World == nullptr ||
		   FQVMapContentGates::PassSupported(Request, *Open.World, UsedPackages);
}

/** A file can be replaced behind the editor's back while questions are open. */
bool PassVerification(const FQVPlayRequest& Request, const std::shared_ptr<FQVImportScope>& Import)
{
	const std::string Error =
		HasImported(Import) ? FQVMapImportVerification::VerifyImportedReferences(Import->GetResult()) : std::string();
	if (!Error.empty())
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: Refusing to cook - %s", Error);
		FQVEngine::Get().Dialogs->ShowMessage(
			{TextNamespace, "ImportVerifyFailed", "{0} was not packed.\n\n{1}", Request.ModName, Error});
	}
	return Error.empty();
}
} // namespace

void FQVMapPlaytest::PlayOpenMap()
{
	FQVPlayRequest Request;
	if (ResolveOpenMap(Request.ModName, Request.MapName, Request.GamePath))
	{
		Request.bLaunch = true;
		RunExport(Request);
	}
}

bool FQVMapPlaytest::ResolveOpenMap(std::string& OutModName, std::string& OutMapName, std::string& OutGamePath)
{
	FQVText Refusal;
	if (!FQVMapReadiness::ResolveOpenMap(OutModName, OutMapName, Refusal, &OutGamePath))
	{
		FQVEngine::Get().Dialogs->ShowMessage(Refusal);
		return false;
	}
	QVLog(
		EQVLogVerbosity::Log, "QVMap: Detected plugin: %s, map: %s, GamePath: %s", OutModName, OutMapName, OutGamePath);
	return true;
}

void FQVMapPlaytest::RunExport(const FQVPlayRequest& Request)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	QVLog(EQVLogVerbosity::Log, "QVMap: Starting export for %s (map: %s)...", Request.ModName, Request.GamePath);
	if (!FQVMapBaseReleaseGates::Pass([Request] { RunExport(Request); }))
	{
		return;
	}
	const FOpenMap Open(Request);
	// whichever way this ends, the last to let go of it puts the project back
	std::shared_ptr<FQVImportScope> Import;
	bool bRequiredActorsCovered = false;
	if (!PassImport(Request, Import) || !PassPreflight(Request, Open, !HasImported(Import), bRequiredActorsCovered) ||
		!PassPlayability(Request, Open, bRequiredActorsCovered))
	{
		return;
	}
	const FQVNameSet UsedPackages = FQVMapDependencyAnalyzer::GatherUsedPackages(Request.ModName);
	if (PassSupported(Request, Open, UsedPackages) && PassVerification(Request, Import))
	{
		FQVMapExportRun::Start(Request, UsedPackages, Import);
	}
}
