// SPDX-License-Identifier: MIT
#include "Standalone/EngineTools/CookRegistry.h"

#include "Core/QVString.h"
#include "Standalone/Formats/Package/PackageDependencies.h"

namespace QVEngineTools
{
using namespace QVFormats;

namespace
{
FRegistryAssetSpec DescribeAsset(
	const std::string& PackageName, const FPackageHeader& Header, const FPackageAsset& Asset)
{
	FRegistryAssetSpec Spec;
	Spec.PackageName = PackageName;
	Spec.ClassPath = Asset.Class.ToUtf8();
	Spec.PackageFlags = Header.Summary.Flags;
	// "Hall", or of an external actor "/Game/Hall.Hall:PersistentLevel.Wall_3"
	const std::string ObjectPath = Asset.ObjectPath.ToUtf8();
	const std::size_t Mark = ObjectPath.find_last_of(".:");
	Spec.AssetName = Mark == std::string::npos ? ObjectPath : ObjectPath.substr(Mark + 1);
	Spec.OuterPath = Mark == std::string::npos ? std::string() : ObjectPath.substr(0, Mark);
	for (const FPackageTag& Tag : Header.Registry.TagsOf(Asset))
	{
		Spec.Tags.emplace_back(Tag.Key.ToUtf8(), Tag.Value.ToUtf8());
	}
	return Spec;
}
} // namespace

void FCookRegistry::AddPackage(
	const std::string& PackageName, const FPackageHeader& Header, std::int64_t Size, const std::string& Extension)
{
	for (const FPackageAsset& Asset : Header.Registry.Assets)
	{
		Builder.AddAsset(DescribeAsset(PackageName, Header, Asset));
	}
	for (const FPackageDependency& Dependency : PackageDependencies(Header))
	{
		const std::string Target = Header.Names.Text(Dependency.Package);
		if (!FQVString::EqualsIgnoreCase(Target, PackageName))
		{
			Builder.AddDependency(PackageName, Target, FDependencySet::Of(Dependency.bHard, Dependency.bGame));
		}
	}
	FRegistryPackage Package;
	Package.Name = Builder.Name(PackageName);
	Package.SizeOnDisk = Size;
	Package.FileVersionUE4 = Header.Summary.FileVersionUE4;
	Package.FileVersionUE5 = Header.Summary.FileVersionUE5;
	Package.Extension = Extension;
	Builder.AddPackage(std::move(Package));
}
} // namespace QVEngineTools
