// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PluginCreation.h"

#include "Core/QVJson.h"
#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Standalone/Engine/OsFile.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/Disk.h"

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** Version of the descriptor's form. */
constexpr int DescriptorFileVersion = 3;

FStatus Fill(const FQVNewPlugin& Plugin, const FQVPluginInfo& Info)
{
	const std::string Innermost =
		Plugin.Descriptor.bCanContainContent ? FQVPath::Combine(Info.BaseDir, "Content") : Info.BaseDir;
	if (const std::error_code Error = MakeFolders(ToOsPath(Innermost)))
	{
		return FError{QVPrintf("The folder %s could not be made: %s.", Innermost, Error.message())};
	}
	// not as other text files: other programs than the engine read it too
	if (const std::error_code Error = ReplaceFile(ToOsPath(Info.DescriptorPath), MakeDescriptorText(Plugin.Descriptor)))
	{
		return FError{QVPrintf("%s could not be written: %s.", Info.DescriptorPath, Error.message())};
	}
	return Success();
}
} // namespace

std::string MakeDescriptorText(const FQVPluginDescriptor& Descriptor)
{
	return FQVJson::Object()
		.Set("FileVersion", DescriptorFileVersion)
		.Set("Version", Descriptor.Version)
		.Set("VersionName", Descriptor.VersionName)
		.Set("FriendlyName", Descriptor.FriendlyName)
		.Set("Description", Descriptor.Description)
		.Set("Category", Descriptor.Category)
		.Set("CreatedBy", Descriptor.CreatedBy)
		.Set("CreatedByURL", "")
		.Set("DocsURL", "")
		.Set("MarketplaceURL", "")
		.Set("SupportURL", "")
		.Set("CanContainContent", Descriptor.bCanContainContent)
		.Set("IsBetaVersion", false)
		.Set("IsExperimentalVersion", false)
		.Set("Installed", false)
		.ToPrettyString();
}

TResult<FQVPluginInfo> CreatePluginFolder(const FQVNewPlugin& Plugin)
{
	FQVPluginInfo Info;
	Info.Name = Plugin.Name;
	Info.BaseDir = FQVPath::Combine(Plugin.Location, Plugin.Name);
	Info.DescriptorPath = FQVPath::Combine(Info.BaseDir, Plugin.Name + ".uplugin");
	Info.VersionName = Plugin.Descriptor.VersionName;
	Info.bEnabled = true;
	Info.bCanContainContent = Plugin.Descriptor.bCanContainContent;
	if (FDisk::Exists(ToOsPath(Info.BaseDir)))
	{
		return FError{QVPrintf("%s is there already.", Info.BaseDir)};
	}
	const FStatus Filled = Fill(Plugin, Info);
	if (Filled)
	{
		return Info;
	}
	const std::error_code Left = RemoveTree(ToOsPath(Info.BaseDir));
	return Left ? FError{QVPrintf(
					  "%s What was begun could not be removed again: delete %s.", Filled.Error().Message, Info.BaseDir)}
				: Filled.Error();
}
} // namespace QVStandalone
