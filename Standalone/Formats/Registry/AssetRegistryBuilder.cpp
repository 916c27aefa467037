// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Registry/AssetRegistryBuilder.h"

#include "Standalone/Formats/Base/Unicode.h"

#include <algorithm>

namespace QVFormats
{
FNameRef FAssetRegistryBuilder::Name(std::string_view Text)
{
	if (Text.empty() || Text == "None")
	{
		return NoName;
	}
	const FSplitName Split = SplitNameNumber(Text);
	const auto [Known, bNew] =
		Entries.try_emplace(std::string(Split.Entry), static_cast<std::uint32_t>(State.Names.size()));
	if (bNew)
	{
		State.Names.emplace_back(Split.Entry);
	}
	return {Known->second, Split.Number};
}

FRegistryTag FAssetRegistryBuilder::Tag(std::string_view Key, const std::string& Value)
{
	std::vector<std::string>& List = IsAscii(Value) ? State.AsciiValues : State.WideValues;
	const ERegistryValue Kind = IsAscii(Value) ? ERegistryValue::Ascii : ERegistryValue::Wide;
	const auto [Known, bNew] =
		Values.try_emplace(Value, FRegistryTag{NoName, Kind, static_cast<std::uint32_t>(List.size())});
	if (bNew)
	{
		List.push_back(Value);
	}
	return {Name(Key), Kind, Known->second.Index};
}

void FAssetRegistryBuilder::AddAsset(const FRegistryAssetSpec& Spec)
{
	const std::string_view Package = Spec.PackageName;
	const std::string_view Class = Spec.ClassPath;
	const std::size_t Dot = Class.find('.');
	const bool bHasPackage = Dot != std::string_view::npos;
	FRegistryAsset Asset;
	Asset.PackagePath = Name(Package.substr(0, std::min(Package.rfind('/'), Package.size())));
	Asset.ClassPackage = Name(bHasPackage ? Class.substr(0, Dot) : std::string_view());
	Asset.ClassName = Name(bHasPackage ? Class.substr(Dot + 1) : Class);
	Asset.PackageName = Name(Package);
	Asset.AssetName = Name(Spec.AssetName);
	Asset.OuterPath = Name(Spec.OuterPath);
	Asset.FirstTag = Spec.Tags.empty() ? 0 : static_cast<std::uint32_t>(State.Tags.size());
	Asset.TagCount = static_cast<std::uint32_t>(Spec.Tags.size());
	Asset.ChunkIds = Spec.ChunkIds;
	Asset.PackageFlags = Spec.PackageFlags;
	auto Tags = Spec.Tags;
	std::sort(Tags.begin(), Tags.end());
	for (const auto& [Key, Value] : Tags)
	{
		State.Tags.push_back(Tag(Key, Value));
	}
	State.Assets.push_back(std::move(Asset));
}

std::int32_t FAssetRegistryBuilder::NodeOf(std::string_view Package)
{
	constexpr std::uint8_t PackagePart = 1;
	const auto [Known, bNew] =
		NodesByPackage.try_emplace(ToLowerAscii(Package), static_cast<std::int32_t>(State.Nodes.size()));
	if (bNew)
	{
		FRegistryNode& Node = State.Nodes.emplace_back();
		Node.Package = Name(Package);
		Node.Parts = PackagePart;
	}
	return Known->second;
}

void FAssetRegistryBuilder::AddDependency(std::string_view Package, std::string_view DependsOn, FDependencySet Set)
{
	const std::int32_t To = NodeOf(DependsOn);
	std::vector<FRegistryDependency>& List = State.Nodes[static_cast<std::size_t>(NodeOf(Package))].Packages;
	const auto Known =
		std::find_if(List.begin(), List.end(), [To](const FRegistryDependency& Each) { return Each.Node == To; });
	if (Known != List.end())
	{
		Known->Set.Add(Set);
		return;
	}
	List.push_back({To, Set});
}

FAssetRegistryState FAssetRegistryBuilder::Finish()
{
	LinkReferencers(State);
	Entries.clear();
	Values.clear();
	NodesByPackage.clear();
	return std::exchange(State, {});
}

void LinkReferencers(FAssetRegistryState& State)
{
	for (FRegistryNode& Node : State.Nodes)
	{
		Node.Referencers.clear();
	}
	const auto Link = [&State](std::int32_t To, std::size_t From)
	{
		std::vector<std::int32_t>& List = State.Nodes[static_cast<std::size_t>(To)].Referencers;
		if (List.empty() || List.back() != static_cast<std::int32_t>(From))
		{
			List.push_back(static_cast<std::int32_t>(From));
		}
	};
	for (std::size_t From = 0; From < State.Nodes.size(); ++From)
	{
		for (const FRegistryDependency& Each : State.Nodes[From].Packages)
		{
			Link(Each.Node, From);
		}
		for (const std::int32_t Each : State.Nodes[From].Names)
		{
			Link(Each, From);
		}
		for (const FRegistryManage& Each : State.Nodes[From].Manages)
		{
			Link(Each.Node, From);
		}
	}
}
} // namespace QVFormats
