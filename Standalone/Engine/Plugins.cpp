// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Plugins.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Core/QVUnicode.h"
#include "Standalone/Engine/Descriptor.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/PluginCreation.h"
#include "Standalone/Formats/Base/Disk.h"

#include <algorithm>
#include <cwctype>
#include <set>

namespace QVStandalone
{
namespace
{
/** Finds the descriptors below a folder; a plugin's own folder is not searched for more. */
class FDescriptorSearch
{
public:
	std::vector<std::string> Descriptors;

	void Search(const std::string& Folder)
	{
		if (!IsFirstVisit(Folder))
		{
			return;
		}
		std::vector<std::string> Folders;
		std::string Descriptor;
		FFiles().IterateDirectory(Folder,
			[&](std::string_view Path, bool bIsDirectory)
			{
				if (bIsDirectory)
				{
					Folders.emplace_back(Path);
				}
				else if (Descriptor.empty() && FQVString::EndsWithIgnoreCase(Path, ".uplugin"))
				{
					Descriptor = Path;
				}
				return true;
			});
		if (!Descriptor.empty())
		{
			Descriptors.push_back(Descriptor);
			return;
		}
		std::for_each(Folders.begin(), Folders.end(), [this](const std::string& Inner) { Search(Inner); });
	}

private:
	std::set<std::filesystem::path> Visited;

	/** Links may lead to one folder twice, or round and round. */
	bool IsFirstVisit(const std::string& Folder)
	{
		std::error_code Error;
		const std::filesystem::path Real = QVFormats::FDisk::RealPath(ToOsPath(Folder), Error);
		return !Error && Visited.insert(Real).second;
	}
};

FQVPluginInfo DescribePlugin(const std::string& DescriptorPath, bool bEnabledByDefault)
{
	FQVPluginInfo Plugin;
	Plugin.Name = FQVPath::GetBaseFilename(DescriptorPath);
	Plugin.BaseDir = FQVPath::GetPath(DescriptorPath);
	Plugin.DescriptorPath = DescriptorPath;
	const std::optional<FQVJson> Descriptor = LoadDescriptor(DescriptorPath);
	if (Descriptor)
	{
		Plugin.VersionName = Descriptor->GetString("VersionName");
		Plugin.bCanContainContent = Descriptor->GetBool("CanContainContent");
		Plugin.bEnabled = Descriptor->TryBool("EnabledByDefault").value_or(bEnabledByDefault);
	}
	return Plugin;
}

/** What the project's own list says of each plugin it names. */
void ApplyProjectList(const std::string& ProjectFile, std::vector<FQVPluginInfo>& Plugins)
{
	const std::optional<FQVJson> Project = LoadDescriptor(ProjectFile);
	const FQVJson* List = Project ? Project->Find("Plugins") : nullptr;
	if (List == nullptr || List->AsArray() == nullptr)
	{
		return;
	}
	for (const FQVJson& Entry : *List->AsArray())
	{
		for (FQVPluginInfo& Plugin : Plugins)
		{
			if (FQVString::EqualsIgnoreCase(Plugin.Name, Entry.GetString("Name")))
			{
				Plugin.bEnabled = Entry.TryBool("Enabled").value_or(Plugin.bEnabled);
			}
		}
	}
}

std::vector<FQVPluginInfo> Discover(const std::string& ProjectFile, const std::string& EngineDir)
{
	std::vector<FQVPluginInfo> Plugins;
	const std::pair<std::string, bool> Places[] = {{FQVPath::Combine(FQVPath::GetPath(ProjectFile), "Plugins"), true},
		{FQVPath::Combine(EngineDir, "Plugins"), false}};
	for (const auto& [Folder, bEnabledByDefault] : Places)
	{
		FDescriptorSearch Search;
		Search.Search(Folder);
		for (const std::string& Descriptor : Search.Descriptors)
		{
			Plugins.push_back(DescribePlugin(Descriptor, bEnabledByDefault));
		}
	}
	ApplyProjectList(ProjectFile, Plugins);
	return Plugins;
}
/** Empty if the engine takes the name. Which letters are letters is the C library's matter. */
std::string WhatIsWrongWith(std::string_view Name)
{
	const std::u16string Units = FQVUnicode::ToUtf16(Name);
	if (Units.empty())
	{
		return "A plugin needs a name.";
	}
	if (std::iswalpha(static_cast<std::wint_t>(Units.front())) == 0)
	{
		return QVPrintf("The name of a plugin begins with a letter: '%s' does not.", Name);
	}
	const bool bGood = std::ranges::all_of(Units, [](char16_t Unit)
		{ return std::iswalnum(static_cast<std::wint_t>(Unit)) != 0 || Unit == u'_' || Unit == u'-'; });
	return bGood ? std::string()
				 : QVPrintf("The name of a plugin has letters, digits, underscores and hyphens only: '%s' has others.",
					   Name);
}

bool IsAtOrBelow(std::string_view Folder, const std::string& Root)
{
	return Folder == Root || Folder.starts_with(Root + "/");
}
} // namespace

FPlugins::FPlugins(std::string InProjectFile, std::string InEngineDir)
	: ProjectFile(std::move(InProjectFile))
	, EngineDir(std::move(InEngineDir))
{
}

const std::vector<FQVPluginInfo>& FPlugins::GetDiscovered() const
{
	const std::lock_guard Guard(Lock);
	if (Discovered.empty())
	{
		Discovered.push_back(Discover(ProjectFile, EngineDir));
	}
	return Discovered.back();
}

std::optional<FQVPluginInfo> FPlugins::FindPlugin(std::string_view Name) const
{
	const std::vector<FQVPluginInfo>& Plugins = GetDiscovered();
	const auto Found = std::find_if(Plugins.begin(), Plugins.end(),
		[Name](const FQVPluginInfo& Plugin) { return FQVString::EqualsIgnoreCase(Plugin.Name, Name); });
	return Found != Plugins.end() ? std::optional(*Found) : std::nullopt;
}

bool FPlugins::ValidateNewPluginNameAndLocation(
	std::string_view Name, std::string_view Location, FQVText& OutFailReason) const
{
	std::string Why = WhatIsWrongWith(Name);
	const std::string ProjectPlugins = FQVPath::Combine(FQVPath::GetPath(ProjectFile), "Plugins");
	if (const std::optional<FQVPluginInfo> Known = FindPlugin(Name); Why.empty() && Known)
	{
		Why = QVPrintf("There is a plugin '%s' already: %s.", Known->Name, Known->DescriptorPath);
	}
	if (Why.empty() && !IsAtOrBelow(Location, ProjectPlugins) &&
		!IsAtOrBelow(Location, FQVPath::Combine(EngineDir, "Plugins")))
	{
		Why = QVPrintf("Plugins are not looked for in %s: they go below %s.", Location, ProjectPlugins);
	}
	OutFailReason = Why.empty() ? OutFailReason : FQVText::FromString(Why);
	return Why.empty();
}

std::optional<FQVPluginInfo> FPlugins::CreateAndLoadNewPlugin(const FQVNewPlugin& Plugin, FQVText& OutFailReason)
{
	if (!ValidateNewPluginNameAndLocation(Plugin.Name, Plugin.Location, OutFailReason))
	{
		return std::nullopt;
	}
	std::vector<FQVPluginInfo> Grown = GetDiscovered();
	const QVFormats::TResult<FQVPluginInfo> New = CreatePluginFolder(Plugin);
	if (!New)
	{
		OutFailReason = FQVText::FromString(New.Error().Message);
		return std::nullopt;
	}
	Grown.push_back(*New);
	{
		const std::lock_guard Guard(Lock);
		Discovered.push_back(std::move(Grown));
	}
	if (OnMounted)
	{
		OnMounted(*New);
	}
	return *New;
}
} // namespace QVStandalone
