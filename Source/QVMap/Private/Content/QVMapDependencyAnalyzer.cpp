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
/** A depth-first walk over all references, soft ones and those of the editor included. */
class FDependencyWalk
{
public:
	FQVDependencyResult Result;

	void Walk(FQVName Map)
	{
		Waiting.push_back(Map);
		while (!Waiting.empty())
		{
			const FQVName Package = Waiting.back();
			Waiting.pop_back();
			if (Met.Add(Package))
			{
				Visit(Package);
			}
		}
	}

private:
	const IQVAssetRegistry& Registry = *FQVEngine::Get().AssetRegistry;
	/** Packages that were walked, and those that have no asset. */
	FQVNameSet Met;
	std::vector<FQVName> Waiting;
	std::vector<FQVAssetData> Assets;
	std::vector<FQVPackageDependency> Dependencies;

	/** All assets of a package share its visit, so that the first decides for all. */
	void Visit(FQVName Package)
	{
		Registry.GetAssetsByPackageName(Package, Assets);
		if (Assets.empty())
		{
			return;
		}
		Result.UsedPackages.Add(Package);
		if (Assets.front().IsRedirector())
		{
			FollowRedirector(Assets.front());
			return;
		}
		Registry.GetDependencies(Package, EQVDependencyQuery::All, Dependencies);
		// the last one in is walked first
		for (auto Each = Dependencies.rbegin(); Each != Dependencies.rend(); ++Each)
		{
			if (!Met.Contains(Each->Package))
			{
				Waiting.push_back(Each->Package);
			}
		}
	}

	void FollowRedirector(const FQVAssetData& Redirector)
	{
		const FQVName Target = ResolveRedirectorTarget(Redirector);
		if (!Target.IsNone() && Target != Redirector.PackageName)
		{
			++Result.RedirectorsResolved;
			Result.UsedPackages.Add(Target);
			Waiting.push_back(Target);
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
	QVLog(EQVLogVerbosity::Log, "QVMap: Analyzing dependencies for %d map(s) in %s", Maps.size(), PluginName);
	FDependencyWalk Walk;
	for (const FQVAssetData& Map : Maps)
	{
		Walk.Walk(Map.PackageName);
	}
	Walk.Result.MapCount = static_cast<std::int32_t>(Maps.size());
	Walk.Result.bSuccess = true;
	LogUsedPackages(Walk.Result);
	return std::move(Walk.Result);
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
