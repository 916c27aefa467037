// SPDX-License-Identifier: MIT
#include "Standalone/EngineTools/CookRegistry.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Core/QVUnicode.h"
#include "Standalone/Formats/Package/PackageDependencies.h"

namespace QVEngineTools
{
using namespace QVFormats;

namespace
{
constexpr std::uint8_t PackageNameOnly = 1; // which parts of a node's identifier are written

/** "/Script/Engine.World" to its two names; a class of before 5.1 has no package. */
std::pair<std::string, std::string> SplitClass(const std::string& ClassPath)
{
	const std::size_t Dot = ClassPath.rfind('.');
	return Dot == std::string::npos ? std::pair(std::string(), ClassPath)
									: std::pair(ClassPath.substr(0, Dot), ClassPath.substr(Dot + 1));
}

/** "/Game/Hall.Hall:PersistentLevel.Wall_3" to "/Game/Hall.Hall:PersistentLevel" and "Wall_3"; "Hall" has no outer. */
std::pair<std::string, std::string> SplitObjectPath(const std::string& ObjectPath)
{
	const std::size_t Mark = ObjectPath.find_last_of(".:");
	return Mark == std::string::npos ? std::pair(std::string(), ObjectPath)
									 : std::pair(ObjectPath.substr(0, Mark), ObjectPath.substr(Mark + 1));
}
} // namespace

FNameRef FCookRegistry::Name(const std::string& Text)
{
	if (Text.empty() || FQVString::EqualsIgnoreCase(Text, "None"))
	{
		return NoName;
	}
	const FSplitName Split = SplitNameNumber(Text);
	const auto [Place, bNew] =
		NameEntries.emplace(std::string(Split.Entry), static_cast<std::uint32_t>(State.Names.size()));
	if (bNew)
	{
		State.Names.emplace_back(Split.Entry);
	}
	return {Place->second, Split.Number};
}

std::int32_t FCookRegistry::Node(const std::string& PackageName)
{
	const auto [Place, bNew] =
		NodeByPackage.emplace(FQVString::ToLower(PackageName), static_cast<std::int32_t>(State.Nodes.size()));
	if (bNew)
	{
		FRegistryNode& New = State.Nodes.emplace_back();
		New.Package = Name(PackageName);
		New.Parts = PackageNameOnly;
	}
	return Place->second;
}

void FCookRegistry::AddAsset(
	const std::string& PackageName, const FPackageHeader& Header, const FPackageAsset& PackageAsset)
{
	const auto [ClassPackage, ClassName] = SplitClass(PackageAsset.Class.ToUtf8());
	const auto [OuterPath, AssetName] = SplitObjectPath(PackageAsset.ObjectPath.ToUtf8());
	FRegistryAsset Asset;
	Asset.PackagePath = Name(std::string(FQVPath::GetPath(PackageName)));
	Asset.ClassPackage = Name(ClassPackage);
	Asset.ClassName = Name(ClassName);
	Asset.PackageName = Name(PackageName);
	Asset.AssetName = Name(AssetName);
	Asset.OuterPath = Name(OuterPath);
	Asset.PackageFlags = Header.Summary.Flags;
	Asset.FirstTag = static_cast<std::uint32_t>(State.Tags.size());
	for (const FPackageTag& Tag : Header.Registry.TagsOf(PackageAsset))
	{
		const std::string Value = Tag.Value.ToUtf8();
		const bool bAscii = FQVUnicode::IsAscii(Value);
		std::vector<std::string>& Values = bAscii ? State.AsciiValues : State.WideValues;
		State.Tags.push_back({Name(Tag.Key.ToUtf8()), bAscii ? ERegistryValue::Ascii : ERegistryValue::Wide,
			static_cast<std::uint32_t>(Values.size())});
		Values.push_back(Value);
	}
	Asset.TagCount = static_cast<std::uint32_t>(State.Tags.size()) - Asset.FirstTag;
	State.Assets.push_back(std::move(Asset));
}

void FCookRegistry::AddDependencies(const std::string& PackageName, const FPackageHeader& Header)
{
	const std::int32_t Self = Node(PackageName);
	for (const FPackageDependency& Dependency : PackageDependencies(Header))
	{
		const std::int32_t Target = Node(Header.Names.Text(Dependency.Package));
		if (Target == Self)
		{
			continue;
		}
		const FDependencySet Set = FDependencySet::Of(Dependency.bHard, Dependency.bGame);
		std::vector<FRegistryDependency>& Packages = State.Nodes[static_cast<std::size_t>(Self)].Packages;
		if (!Packages.empty() && Packages.back().Node == Target)
		{
			Packages.back().Set.Add(Set); // hard for the editor, soft for the game: one row
			continue;
		}
		Packages.push_back({Target, Set});
		State.Nodes[static_cast<std::size_t>(Target)].Referencers.push_back(Self);
	}
}

void FCookRegistry::AddPackage(
	const std::string& PackageName, const FPackageHeader& Header, std::int64_t Size, const std::string& Extension)
{
	for (const FPackageAsset& Asset : Header.Registry.Assets)
	{
		AddAsset(PackageName, Header, Asset);
	}
	AddDependencies(PackageName, Header);
	FRegistryPackage Package;
	Package.Name = Name(PackageName);
	Package.SizeOnDisk = Size;
	Package.FileVersionUE4 = Header.Summary.FileVersionUE4;
	Package.FileVersionUE5 = Header.Summary.FileVersionUE5;
	Package.Extension = Extension;
	State.Packages.push_back(std::move(Package));
}

TResult<std::vector<std::byte>> FCookRegistry::RuntimeFile() const
{
	FAssetRegistryState Stripped = State;
	Stripped.bFilterEditorOnly = true;
	return WriteAssetRegistry(Stripped);
}

TResult<std::vector<std::byte>> FCookRegistry::DevelopmentFile() const
{
	return WriteAssetRegistry(State);
}
} // namespace QVEngineTools
