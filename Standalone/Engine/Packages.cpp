// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Packages.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Base/MappedFile.h"
#include "Standalone/Formats/Package/PackageHeader.h"

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** The file of a package, given below a folder that ends in a slash; empty if there is none. */
std::string FindIgnoringCase(const std::string& Folder, std::string_view Below)
{
	const std::size_t Slash = Below.find('/');
	const bool bLast = Slash == std::string_view::npos;
	const std::string Wanted(Below.substr(0, Slash));
	std::string Found;
	FFiles().IterateDirectory(Folder,
		[&](std::string_view Path, bool bIsDirectory)
		{
			const std::string_view Name = FQVPath::GetCleanFilename(Path);
			if (!bLast && bIsDirectory && FQVString::EqualsIgnoreCase(Name, Wanted))
			{
				Found = FindIgnoringCase(std::string(Path) + "/", Below.substr(Slash + 1));
			}
			for (const std::string_view Extension :
				{IQVPackages::AssetPackageExtension, IQVPackages::MapPackageExtension})
			{
				if (bLast && !bIsDirectory && FQVString::EqualsIgnoreCase(Name, Wanted + std::string(Extension)))
				{
					Found = Path;
				}
			}
			return Found.empty();
		});
	return Found;
}

std::string FindBelow(const std::string& Folder, std::string_view Below, std::string_view Preferred)
{
	const std::string_view Other = Preferred == IQVPackages::MapPackageExtension ? IQVPackages::AssetPackageExtension
																				 : IQVPackages::MapPackageExtension;
	for (const std::string_view Extension : {Preferred, Other})
	{
		const std::string File = std::string(Below).append(Extension);
		if (FFiles().FileExists(Folder + File))
		{
			return Folder + FromOsPath(FDisk::Spelled(ToOsPath(Folder), ToOsPath(File)));
		}
	}
	return FindIgnoringCase(Folder, Below); // package names heed no case, the file system may
}
} // namespace

FPackages::FPackages(std::string InProjectDir, std::string InEngineDir, const FPlugins& InPlugins)
	: ProjectDir(std::move(InProjectDir))
	, EngineDir(std::move(InEngineDir))
	, Plugins(InPlugins)
{
}

std::vector<FMountPoint> FPackages::GetMountPoints() const
{
	std::vector<FMountPoint> Points = {{"/Game/", FQVPath::Combine(ProjectDir, "Content") + "/"},
		{"/Engine/", FQVPath::Combine(EngineDir, "Content") + "/"}};
	for (const FQVPluginInfo& Plugin : Plugins.GetDiscovered())
	{
		if (Plugin.bEnabled && Plugin.bCanContainContent)
		{
			Points.push_back({"/" + Plugin.Name + "/", FQVPath::Combine(Plugin.BaseDir, "Content") + "/"});
		}
	}
	return Points;
}

bool FPackages::TryConvertLongPackageNameToFilename(
	std::string_view PackageName, std::string& OutFilename, std::string_view Extension) const
{
	for (const FMountPoint& Point : GetMountPoints())
	{
		if (FQVString::StartsWithIgnoreCase(PackageName, Point.Root))
		{
			OutFilename = Point.Folder;
			OutFilename.append(PackageName.substr(Point.Root.size())).append(Extension);
			return true;
		}
	}
	return false;
}
bool FPackages::TryConvertFilenameToLongPackageName(std::string_view File, std::string& OutPackageName) const
{
	for (const FMountPoint& Point : GetMountPoints())
	{
		if (File.starts_with(Point.Folder))
		{
			OutPackageName = Point.Root;
			OutPackageName += FQVPath::WithoutExtension(File.substr(Point.Folder.size()));
			return true;
		}
	}
	return false;
}

bool FPackages::IsValidLongPackageName(std::string_view PackageName) const
{
	constexpr std::size_t ShortestName = 4;
	constexpr std::string_view Forbidden = "\\:*?\"<>|' ,.&!~\n\r\t@#";
	std::string File;
	return PackageName.size() >= ShortestName && PackageName.front() == '/' && PackageName.back() != '/' &&
		   PackageName.find("//") == std::string_view::npos &&
		   PackageName.find_first_of(Forbidden) == std::string_view::npos &&
		   TryConvertLongPackageNameToFilename(PackageName, File, {});
}

bool FPackages::DoesPackageExist(std::string_view PackageName, std::string& OutFilename) const
{
	OutFilename = FindPackageFile(PackageName);
	return !OutFilename.empty();
}

std::string FPackages::FindPackageFile(std::string_view PackageName, std::string_view Preferred) const
{
	for (const FMountPoint& Point : GetMountPoints())
	{
		if (FQVString::StartsWithIgnoreCase(PackageName, Point.Root))
		{
			return FindBelow(Point.Folder, PackageName.substr(Point.Root.size()), Preferred);
		}
	}
	return {};
}

/** The object itself stays in its file: of a redirector, where it leads to stands in the header too. */
FQVLoadedAsset FPackages::LoadAsset(const FQVAssetData& Asset) const
{
	const auto File = FMappedFile::Open(ToOsPath(FindPackageFile(Asset.PackageName.ToView())));
	const auto Header = File ? ReadPackageHeader(File->Bytes()) : TResult<FPackageHeader>(File.Error());
	FQVLoadedAsset Loaded;
	if (!Header)
	{
		return Loaded;
	}
	const auto IsNamedSo = [&](std::string_view Name)
	{ return FQVString::EqualsIgnoreCase(Name, Asset.AssetName.ToView()); };
	for (const FPackageExport& Export : Header->Exports)
	{
		if (IsNamedSo(Header->Names.Text(Export.ObjectName)))
		{
			Loaded.bLoaded = true;
			Loaded.bRedirector |= Header->ClassPathOf(Export) == FQVAssetData::RedirectorClass;
		}
	}
	for (const FPackageAsset& Listed : Header->Registry.Assets)
	{
		if (Loaded.bRedirector && IsNamedSo(Listed.ObjectPath.ToUtf8()))
		{
			Loaded.DestinationPackage = FindDestination(Header->Registry.TagsOf(Listed));
		}
	}
	return Loaded;
}

FQVName FPackages::FindDestination(std::span<const FPackageTag> Tags) const
{
	for (const FPackageTag& Tag : Tags)
	{
		if (FQVString::EqualsIgnoreCase(Tag.Key.ToUtf8(), FQVAssetData::DestinationTag))
		{
			const FQVName Package(FQVAssetData::PackageOfObjectPath(Tag.Value.ToUtf8()));
			const bool bThere = Package.ToView().starts_with("/Script/") || !FindPackageFile(Package.ToView()).empty();
			return bThere ? Package : FQVName();
		}
	}
	return {};
}
} // namespace QVStandalone
