// SPDX-License-Identifier: MIT
#include "Export/QVMapToolchainStamp.h"

#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVClock.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVJsonReader.h"
#include "Engine/QVPlugins.h"
#include "Engine/QVProject.h"
#include "Workspace/QVMapPaths.h"

#include <span>

namespace
{
/** Plugins whose content the release holds: a difference makes it stale. */
constexpr std::string_view ContentPlugins[] = {"QUARVEL"};
/** Plugins that only make it: written down, never compared. */
constexpr std::string_view ToolPlugins[] = {"QVMap"};

FQVJson InstalledVersions(std::span<const std::string_view> Names)
{
	FQVJson Versions = FQVJson::Object();
	for (const std::string_view Name : Names)
	{
		Versions.Set(Name, FQVMapToolchainStamp::GetInstalledPluginVersion(std::string(Name)));
	}
	return Versions;
}

FQVToolchainCheck Unusable(std::string_view Reason)
{
	FQVToolchainCheck Check;
	Check.bRecordUnusable = true;
	Check.Reason = Reason;
	return Check;
}

std::vector<std::string> Differences(const FQVJson& Recorded)
{
	std::vector<std::string> Lines;
	for (const std::string_view Name : ContentPlugins)
	{
		const std::string Release = Recorded.GetString(Name);
		const std::string Installed = FQVMapToolchainStamp::GetInstalledPluginVersion(std::string(Name));
		if (!FQVString::EqualsIgnoreCase(Release, Installed))
		{
			Lines.push_back(QVPrintf("%s: base release %s, installed %s", Name,
				Release.empty() ? "(not recorded)" : Release, Installed.empty() ? "(not installed)" : Installed));
		}
	}
	return Lines;
}
} // namespace

std::string FQVMapToolchainStamp::GetStampPath()
{
	return FQVPath::Combine(FQVMapPaths::GetBaseReleaseDir(), "QVMapToolchain.json");
}

bool FQVMapToolchainStamp::WriteToolchainStamp(std::string& OutError)
{
	FQVJson Stamp = FQVJson::Object();
	Stamp.Set("engine", FQVEngine::Get().Project->EngineVersion());
	Stamp.Set("builtUtc", FQVEngine::Get().Clock->UtcNow().ToIso8601());
	Stamp.Set("baseReleaseVersion", FQVMapPaths::BaseReleaseVersion);
	Stamp.Set("contentPlugins", InstalledVersions(ContentPlugins));
	Stamp.Set("toolPlugins", InstalledVersions(ToolPlugins));
	const std::string Path = GetStampPath();
	if (!FQVEngine::Get().Files->SaveStringToFile(Stamp.ToPrettyString(), Path))
	{
		OutError = QVPrintf("Failed to write toolchain stamp: %s", Path);
		return false;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Wrote toolchain stamp: %s", Path);
	return true;
}

FQVToolchainCheck FQVMapToolchainStamp::CheckToolchain()
{
	FQVToolchainCheck Check;
	if (!FQVMapPaths::IsBaseReleaseValid())
	{
		Check.bNoBaseRelease = true;
		return Check;
	}
	std::string Text;
	if (!FQVEngine::Get().Files->LoadFileToString(Text, GetStampPath()))
	{
		return Unusable("The base release carries no record of which plugin versions it was built against.");
	}
	FQVJson Stamp;
	std::string Error;
	if (!FQVEngine::Get().JsonReader->Parse(Text, Stamp, Error) || !Stamp.IsObject())
	{
		return Unusable("The base release's toolchain record could not be read.");
	}
	const FQVJson* Recorded = Stamp.Find("contentPlugins");
	if (Recorded == nullptr || !Recorded->IsObject())
	{
		return Unusable("The base release's toolchain record lists no content plugins.");
	}
	const std::vector<std::string> Lines = Differences(*Recorded);
	Check.bUpToDate = Lines.empty();
	Check.Reason = FQVString::Join(Lines, "\n");
	return Check;
}

std::string FQVMapToolchainStamp::GetInstalledPluginVersion(const std::string& PluginName)
{
	const std::optional<FQVPluginInfo> Plugin = FQVEngine::Get().Plugins->FindPlugin(PluginName);
	return Plugin ? Plugin->VersionName : std::string();
}
