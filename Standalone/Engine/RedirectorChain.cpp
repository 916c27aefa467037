// SPDX-License-Identifier: MIT
#include "Standalone/Engine/RedirectorChain.h"

#include "Core/QVNameSet.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/MappedFile.h"
#include "Standalone/Formats/Package/PackageHeader.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** `/Cave/Rock.Rock` taken apart; the object is empty if there is none. */
struct FObjectPath
{
	std::string Package;
	std::string Object;

	explicit FObjectPath(std::string_view Path)
		: Package(FQVAssetData::PackageOfObjectPath(Path))
	{
		// behind the class in quotes, if there is one
		const std::size_t Begin = Path.find('\'') == std::string_view::npos ? 0 : Path.find('\'') + 1;
		Path.remove_prefix(std::min(Path.size(), Begin + Package.size() + 1));
		Object = Path.substr(0, Path.find('\''));
	}
};

/** What the objects of a package of redirectors lead to. */
struct FRedirectorObjects
{
	std::vector<std::pair<std::string, std::string>> Objects;
	std::string Target;
	std::string Obstacle;

	void Add(std::string_view Object, const std::string& Destination)
	{
		const FObjectPath Path(Destination);
		if (Path.Package.empty() || Path.Object.empty())
		{
			Obstacle = QVPrintf("%s leads nowhere", Object);
		}
		else if (!Target.empty() && !FQVString::EqualsIgnoreCase(Target, Path.Package))
		{
			Obstacle = QVPrintf("its objects lead to several packages: %s and %s", Target, Path.Package);
		}
		Target = Path.Package;
		Objects.emplace_back(Object, Path.Object);
	}
};

FRedirectorObjects ReadObjects(const FPackageHeader& Header)
{
	FRedirectorObjects Found;
	if (Header.Summary.Has(EPackageFlags::Cooked))
	{
		Found.Obstacle = "it is cooked";
	}
	for (const FPackageExport& Export : Header.Exports)
	{
		if (Export.bAsset && Header.ClassPathOf(Export) != FQVAssetData::RedirectorClass)
		{
			Found.Obstacle = QVPrintf("it holds %s too, which is no redirector", Header.Names.Text(Export.ObjectName));
		}
	}
	for (const FPackageAsset& Asset : Header.Registry.Assets)
	{
		for (const FPackageTag& Tag : Header.Registry.TagsOf(Asset))
		{
			if (Tag.Key.ToUtf8() == FQVAssetData::DestinationTag)
			{
				Found.Add(Asset.ObjectPath.ToUtf8(), Tag.Value.ToUtf8());
			}
		}
	}
	return Found;
}

FRedirectorObjects ReadObjects(const std::string& File)
{
	FRedirectorObjects Failed;
	const auto Mapped = FMappedFile::Open(ToOsPath(File));
	if (!Mapped)
	{
		Failed.Obstacle = Mapped.Error().Message;
		return Failed;
	}
	const auto Header = ReadPackageHeader(Mapped->Bytes());
	if (!Header)
	{
		Failed.Obstacle = QVPrintf("%s %s", File, Header.Error().Message);
		return Failed;
	}
	return ReadObjects(*Header);
}

std::string ObjectThere(const FRedirectorObjects& Next, const std::string& Object)
{
	const auto Found = std::find_if(Next.Objects.begin(), Next.Objects.end(),
		[&](const auto& Pair) { return FQVString::EqualsIgnoreCase(Pair.first, Object); });
	return Found == Next.Objects.end() ? Object : Found->second;
}
} // namespace

std::string FollowRedirector(const FPackages& Packages, const std::string& RedirectorFile, FPackageRename& Rename)
{
	FQVNameSet Met{FQVName(Rename.From)};
	FRedirectorObjects Found = ReadObjects(RedirectorFile);
	if (Found.Obstacle.empty() && Found.Objects.empty())
	{
		return "it holds no redirector";
	}
	while (Found.Obstacle.empty())
	{
		if (!Met.Add(FQVName(Found.Target)))
		{
			return "it leads to itself in the end";
		}
		const std::string File = Packages.FindPackageFile(Found.Target);
		if (File.empty())
		{
			return QVPrintf("what it leads to is not there: %s", Found.Target);
		}
		Rename.To = Found.Target;
		Rename.Objects = Found.Objects;
		FRedirectorObjects Next = ReadObjects(File);
		if (Next.Objects.empty() || !Next.Obstacle.empty())
		{
			return {}; // the end: an asset, or what cannot be followed further
		}
		for (auto& [Old, New] : Found.Objects)
		{
			New = ObjectThere(Next, New);
		}
		Found.Target = Next.Target;
	}
	return Found.Obstacle;
}
} // namespace QVStandalone
