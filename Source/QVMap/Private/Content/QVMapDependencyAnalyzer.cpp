// SPDX-License-Identifier: MIT
#include "Content/QVMapDependencyAnalyzer.h"

#include "Content/QVMapModMaps.h"
#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVPackages.h"
#include "Workspace/QVMapConfig.h"

#include <algorithm>

namespace
{
constexpr std::string_view PackageExtensions[] = {".uasset", ".umap", ".uexp", ".ubulk", ".uptnl"};
constexpr int MissSampleSize = 5;
/** Packages whose references are asked for at once. */
constexpr std::size_t LotSize = 64;

bool IsPackageFile(std::string_view Path)
{
	return std::any_of(std::begin(PackageExtensions), std::end(PackageExtensions),
		[Path](std::string_view Extension) { return FQVString::EndsWithIgnoreCase(Path, Extension); });
}

bool RemovePrefix(std::string& Path, std::string_view Prefix)
{
	const bool bFits = FQVString::StartsWithIgnoreCase(Path, Prefix);
	Path.erase(0, bFits ? Prefix.size() : 0);
	return bFits;
}

/** The path below the plugin's content, whichever of the cook's layouts it comes from. */
std::string StripContentFolders(std::string Path, std::string_view PluginName)
{
	if (RemovePrefix(Path, QVPrintf("Plugins/%s/Content/", PluginName)))
	{
		return Path;
	}
	if (RemovePrefix(Path, QVPrintf("%s/", PluginName)))
	{
		RemovePrefix(Path, "Content/");
		return Path;
	}
	return RemovePrefix(Path, "Content/") ? Path : FQVString::ReplaceAllIgnoreCase(Path, "/Content/", "/");
}

void LogFilterDecision(bool bUsed, std::string_view Path, FQVName Stem, const FQVNameSet& UsedPackages)
{
	if (bUsed)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Filter HIT - Path=%s, Stem=%s", Path, Stem.ToView());
		return;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Filter MISS - Path=%s, Stem=%s, UsedSetSize=%d", Path, Stem.ToView(),
		UsedPackages.Num());
	int Shown = 0;
	for (auto Each = UsedPackages.begin(); Each != UsedPackages.end() && Shown < MissSampleSize; ++Each, ++Shown)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap:   UsedSet sample: %s", Each->ToView());
	}
}
/** A walk over all references, soft ones and those of the editor included; the order makes no difference. */
class FDependencyWalk
{
public:
	FQVDependencyResult Result;

	explicit FDependencyWalk(const std::vector<FQVAssetData>& Maps)
	{
		FQVNameSet MapPackages;
		for (const FQVAssetData& Map : Maps)
		{
			MapPackages.Add(Map.PackageName);
		}
		// one pass in order costs less than asking for each package when it is met
		Registry.GetAssets({}, Assets);
		for (const FQVAssetData& Asset : Assets)
		{
			const bool bFirst = Existing.Add(Asset.PackageName);
			if (bFirst && Asset.IsRedirector() && !MapPackages.Contains(Asset.PackageName))
			{
				Redirectors.Add(Asset.PackageName);
			}
		}
	}

	void Walk(FQVName Map)
	{
		Wait(Map);
		while (!Waiting.empty())
		{
			TakeLot();
			for (std::size_t Place = 0; Place < Lot.size(); ++Place)
			{
				Visit(Lot[Place], Lists.Of(Place));
			}
		}
	}

private:
	const IQVAssetRegistry& Registry = *FQVEngine::Get().AssetRegistry;
	/** Packages that have an asset; those of them whose first one is a redirector, but for the maps. */
	FQVNameSet Existing;
	FQVNameSet Redirectors;
	/** Packages that were visited or wait for it. */
	FQVNameSet Met;
	std::vector<FQVName> Waiting;
	std::vector<FQVAssetData> Assets;
	std::vector<FQVName> Lot;
	FQVDependencyLists Lists;

	/** A package without an asset, of code for example, is none that is used. */
	void Wait(FQVName Package)
	{
		if (Existing.Contains(Package) && Met.Add(Package))
		{
			Waiting.push_back(Package);
		}
	}

	/** The packages that came last go first, with their references. */
	void TakeLot()
	{
		const std::size_t Taken = std::min(Waiting.size(), LotSize);
		Lot.assign(Waiting.rbegin(), Waiting.rbegin() + static_cast<std::ptrdiff_t>(Taken));
		Waiting.resize(Waiting.size() - Taken);
		Registry.GetDependenciesOfEach(Lot, EQVDependencyQuery::All, Lists);
	}

	/** All assets of a package share its visit, so that the first decides for all. */
	void Visit(FQVName Package, std::span<const FQVPackageDependency> Dependencies)
	{
		Result.UsedPackages.Add(Package);
		if (Redirectors.Contains(Package))
		{
			Registry.GetAssetsByPackageName(Package, Assets);
			FollowRedirector(Assets.front());
			return;
		}
		for (auto Each = Dependencies.rbegin(); Each != Dependencies.rend(); ++Each)
		{
			Wait(Each->Package);
		}
	}

	void FollowRedirector(const FQVAssetData& Redirector)
	{
		const FQVName Target = ResolveRedirectorTarget(Redirector);
		if (!Target.IsNone() && Target != Redirector.PackageName)
		{
			++Result.RedirectorsResolved;
			Result.UsedPackages.Add(Target);
			Wait(Target);
		}
	}

	static FQVName ResolveRedirectorTarget(const FQVAssetData& Asset)
	{
		const FQVLoadedAsset Loaded = FQVEngine::Get().Packages->LoadAsset(Asset);
		if (!Loaded.bRedirector || Loaded.DestinationPackage.IsNone())
		{
			return {};
		}
		QVLog(EQVLogVerbosity::Log, "QVMap: Resolved redirector %s -> %s", Asset.PackageName.ToView(),
			Loaded.DestinationPackage.ToView());
		return Loaded.DestinationPackage;
	}
};

void LogUsedPackages(const FQVDependencyResult& Result)
{
	QVLog(EQVLogVerbosity::Log, "QVMap: Dependency analysis complete - %d packages used, %d redirectors resolved",
		Result.UsedPackages.Num(), Result.RedirectorsResolved);
	QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Used package stems:");
	for (const FQVName Package : Result.UsedPackages)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap DEBUG:   - %s", Package.ToView());
	}
}

/** What such a package refers to is not known; empty if all of the mod's could be read. */
std::string FindUnreadable(const std::string& ContentDir)
{
	std::vector<FQVUnreadablePackage> Unreadable;
	FQVEngine::Get().AssetRegistry->GetUnreadablePackages(Unreadable);
	for (const FQVUnreadablePackage& Each : Unreadable)
	{
		if (FQVString::StartsWithIgnoreCase(Each.File, ContentDir + "/"))
		{
			return QVPrintf("It is not known what this refers to: %s %s", Each.File, Each.Reason);
		}
	}
	return {};
}

FQVDependencyResult Failed(EQVLogVerbosity Verbosity, std::string Message)
{
	QVLog(Verbosity, "QVMap: %s", Message);
	FQVDependencyResult Result;
	Result.ErrorMessage = std::move(Message);
	return Result;
}
} // namespace

FQVDependencyResult FQVMapDependencyAnalyzer::AnalyzeDependencies(std::string_view PluginName)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	std::string ContentDir;
	if (!FQVModMaps::ScanContent(PluginName, ContentDir))
	{
		return Failed(EQVLogVerbosity::Error, QVPrintf("Plugin Content directory not found: %s", ContentDir));
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Scanned AssetRegistry for %s", ContentDir);
	const std::vector<FQVAssetData> Maps = FQVModMaps::Find(PluginName);
	QVLog(EQVLogVerbosity::Log, "QVMap: Discovered %d map(s) from AssetRegistry in /%s", Maps.size(), PluginName);
	for (const FQVAssetData& Map : Maps)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap:   - %s", Map.PackageName.ToView());
	}
	if (Maps.empty())
	{
		return Failed(EQVLogVerbosity::Warning, QVPrintf("No maps found in plugin: %s", PluginName));
	}
	if (std::string Unreadable = FindUnreadable(ContentDir); !Unreadable.empty())
	{
		return Failed(EQVLogVerbosity::Warning, std::move(Unreadable));
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Analyzing dependencies for %d map(s) in %s", Maps.size(), PluginName);
	FDependencyWalk Walk(Maps);
	for (const FQVAssetData& Map : Maps)
	{
		Walk.Walk(Map.PackageName);
	}
	Walk.Result.MapCount = static_cast<std::int32_t>(Maps.size());
	Walk.Result.bSuccess = true;
	LogUsedPackages(Walk.Result);
	return std::move(Walk.Result);
}

FQVNameSet FQVMapDependencyAnalyzer::GatherUsedPackages(std::string_view PluginName)
{
	if (!FQVMapConfig::GetFilterUnusedAssets())
	{
		return {};
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Analyzing dependencies on Game Thread...");
	FQVDependencyResult Result = AnalyzeDependencies(PluginName);
	if (!Result.bSuccess)
	{
		QVLog(EQVLogVerbosity::Warning, "QVMap: Dependency analysis failed: %s", Result.ErrorMessage);
		QVLog(EQVLogVerbosity::Warning, "QVMap: Will pack all files");
		return {};
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Pre-computed dependency graph: %d packages used", Result.UsedPackages.Num());
	return std::move(Result.UsedPackages);
}

bool FQVMapDependencyAnalyzer::ShouldIncludeFile(
	std::string_view RelativePath, std::string_view PluginName, const FQVNameSet& UsedPackages)
{
	if (!IsPackageFile(RelativePath))
	{
		return true;
	}
	const FQVName Stem = MakePackageStem(RelativePath, PluginName);
	const bool bUsed = UsedPackages.Contains(Stem);
	if (FQVMapConfig::GetVerboseLogging())
	{
		LogFilterDecision(bUsed, RelativePath, Stem, UsedPackages);
	}
	return bUsed;
}

FQVName FQVMapDependencyAnalyzer::MakePackageStem(std::string_view Path, std::string_view PluginName)
{
	std::string Stem = FQVPath::NormalizeFilename(Path);
	Stem = StripContentFolders(Stem.substr(0, Stem.rfind('.')), PluginName);
	if (Stem.empty() || FQVString::EqualsIgnoreCase(Stem, PluginName))
	{
		return FQVName(QVPrintf("/%s/%s", PluginName, Stem.empty() ? PluginName : std::string_view(Stem)));
	}
	const bool bHasPlugin = FQVString::StartsWithIgnoreCase(Stem, QVPrintf("%s/", PluginName));
	return FQVName(bHasPlugin ? QVPrintf("/%s", Stem) : QVPrintf("/%s/%s", PluginName, Stem));
}
