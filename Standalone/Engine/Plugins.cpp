// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Plugins.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Standalone/Engine/Descriptor.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/Disk.h"

#include <algorithm>
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
} // namespace

FPlugins::FPlugins(std::string InProjectFile, std::string InEngineDir)
	: ProjectFile(std::move(InProjectFile))
	, EngineDir(std::move(InEngineDir))
{
}

const std::vector<FQVPluginInfo>& FPlugins::GetDiscovered() const
{
	std::call_once(Once, [this] { Discovered = Discover(ProjectFile, EngineDir); });
	return Discovered;
}

std::optional<FQVPluginInfo> FPlugins::FindPlugin(std::string_view Name) const
{
	const std::vector<FQVPluginInfo>& Plugins = GetDiscovered();
	const auto Found = std::find_if(Plugins.begin(), Plugins.end(),
		[Name](const FQVPluginInfo& Plugin) { return FQVString::EqualsIgnoreCase(Plugin.Name, Name); });
	return Found != Plugins.end() ? std::optional(*Found) : std::nullopt;
}
} // namespace QVStandalone
