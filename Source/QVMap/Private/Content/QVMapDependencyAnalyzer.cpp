// SPDX-License-Identifier: MIT
#include "Content/QVMapDependencyAnalyzer.h"

#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
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

void LogFilterDecision(bool bUsed, std::string_view Path, FQVName Stem, const FQVPackageSet& UsedPackages)
{
	if (bUsed)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Filter HIT - Path=%s, Stem=%s", Path, Stem.ToView());
		return;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Filter MISS - Path=%s, Stem=%s, UsedSetSize=%d", Path, Stem.ToView(),
		UsedPackages.size());
	int Shown = 0;
	for (auto Each = UsedPackages.begin(); Each != UsedPackages.end() && Shown < MissSampleSize; ++Each, ++Shown)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap:   UsedSet sample: %s", Each->ToView());
	}
}
} // namespace

bool FQVMapDependencyAnalyzer::ShouldIncludeFile(
	std::string_view RelativePath, std::string_view PluginName, const FQVPackageSet& UsedPackages)
{
	if (!IsPackageFile(RelativePath))
	{
		return true;
	}
	const FQVName Stem = MakePackageStem(RelativePath, PluginName);
	const bool bUsed = UsedPackages.contains(Stem);
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
