// SPDX-License-Identifier: MIT
#include "Standalone/Cli/Inspect.h"
#include "Standalone/Cli/InspectNames.h"
#include "Standalone/Formats/Registry/AssetRegistry.h"

#include <algorithm>
#include <map>
#include <set>

namespace QVCli
{
using namespace QVFormats;

namespace
{
/** Writes one registry into a report, part by part. */
class FRegistryInspection
{
public:
	FRegistryInspection(const FAssetRegistryState& InState, FInspectReport& InReport)
		: State(InState)
		, Report(InReport)
	{
	}

	void Head();
	void Classes();
	void Assets();
	void Packages();
	void Dependencies();

private:
	FQVJson NameText(FNameRef Name) { return Report.Text(Name == NoName ? std::string() : State.Text(Name)); }
	std::string ClassOf(const FRegistryAsset& Asset) const;
	std::string NodeText(const FRegistryNode& Node) const;
	FQVJson AssetRow(const FRegistryAsset& Asset);
	FQVJson PackageRow(const FRegistryPackage& Package);
	void AddDependencyRows(const FRegistryNode& Node, FQVJson& Rows);

	const FAssetRegistryState& State;
	FInspectReport& Report;
};

std::string FRegistryInspection::ClassOf(const FRegistryAsset& Asset) const
{
	const std::string Class = State.Text(Asset.ClassName);
	return Asset.ClassPackage == NoName ? Class : State.Text(Asset.ClassPackage) + "." + Class;
}

void FRegistryInspection::Head()
{
	std::set<FNameRef> Packages;
	for (const FRegistryAsset& Asset : State.Assets)
	{
		Packages.insert(Asset.PackageName);
	}
	Report.Field("version", "registry version", State.Version);
	Report.Field("editor_only_filtered", "editor-only data left out", State.bFilterEditorOnly);
	Report.Field("counts", "holds",
		FQVJson::Object()
			.Set("packages", Packages.size())
			.Set("assets", State.Assets.size())
			.Set("tags", State.Tags.size())
			.Set("names", State.Names.size())
			.Set("dependency_nodes", State.Nodes.size())
			.Set("package_data", State.Packages.size()));
}

void FRegistryInspection::Classes()
{
	std::map<std::pair<FNameRef, FNameRef>, std::pair<const FRegistryAsset*, std::size_t>> Counts;
	for (const FRegistryAsset& Asset : State.Assets)
	{
		auto& [First, Count] = Counts[{Asset.ClassPackage, Asset.ClassName}];
		First = &Asset;
		++Count;
	}
	std::vector<std::pair<std::size_t, std::string>> Sorted;
	for (const auto& [Names, Each] : Counts)
	{
		Sorted.emplace_back(Each.second, ClassOf(*Each.first));
	}
	std::sort(Sorted.begin(), Sorted.end(),
		[](const auto& A, const auto& B) { return A.first != B.first ? A.first > B.first : A.second < B.second; });
	FQVJson Rows = FQVJson::Array();
	for (const auto& [Count, Class] : Sorted)
	{
		Rows.Add(FQVJson::Object().Set("class", Report.Text(Class)).Set("assets", Count));
	}
	Report.Table({"classes", "Classes", {{"class", "class"}, {"assets", "assets"}}, std::move(Rows), true});
}

FQVJson FRegistryInspection::AssetRow(const FRegistryAsset& Asset)
{
	FQVJson Tags = FQVJson::Array();
	for (std::uint32_t Index = 0; Index < Asset.TagCount && !Report.IsTooMuch(); ++Index)
	{
		const FRegistryTag& Tag = State.Tags[Asset.FirstTag + Index];
		Tags.Add(FQVJson::Object().Set("key", NameText(Tag.Key)).Set("value", Report.Text(State.ValueText(Tag))));
	}
	FQVJson Chunks = FQVJson::Array();
	for (const std::int32_t Chunk : Asset.ChunkIds)
	{
		Chunks.Add(Chunk);
	}
	return FQVJson::Object()
		.Set("class", Report.Text(ClassOf(Asset)))
		.Set("package", NameText(Asset.PackageName))
		.Set("name", NameText(Asset.AssetName))
		.Set("outer", NameText(Asset.OuterPath))
		.Set("flags", FQVJson::Array(PackageFlagNames(Asset.PackageFlags)))
		.Set("chunks", std::move(Chunks))
		.Set("tags", std::move(Tags));
}

void FRegistryInspection::Assets()
{
	FQVJson Rows = FQVJson::Array();
	for (const FRegistryAsset& Asset : State.Assets)
	{
		if (Report.IsTooMuch())
		{
			break;
		}
		Rows.Add(AssetRow(Asset));
	}
	Report.Table({"assets", "Assets",
		{{"class", "class"}, {"package", "package"}, {"name", "name"}, {"outer", "outer"}, {"flags", "package flags"},
			{"chunks", "chunks"}, {"tags", ""}},
		std::move(Rows)});
}

FQVJson FRegistryInspection::PackageRow(const FRegistryPackage& Package)
{
	return FQVJson::Object()
		.Set("package", NameText(Package.Name))
		.Set("extension", Report.Text(Package.Extension))
		.Set("bytes", static_cast<double>(Package.SizeOnDisk))
		.Set("file_version_ue4", Package.FileVersionUE4)
		.Set("file_version_ue5", Package.FileVersionUE5)
		.Set("flags", FQVJson::Array(PackageFlagNames(Package.Flags)));
}

void FRegistryInspection::Packages()
{
	FQVJson Rows = FQVJson::Array();
	for (const FRegistryPackage& Package : State.Packages)
	{
		Rows.Add(PackageRow(Package));
	}
	Report.Table({"packages", "Package data",
		{{"package", "package"}, {"extension", "extension"}, {"bytes", "bytes"}, {"file_version_ue4", "UE4"},
			{"file_version_ue5", "UE5"}, {"flags", "flags"}},
		std::move(Rows)});
}

/** A package by its name; a primary asset or a searchable name by its parts. */
std::string FRegistryInspection::NodeText(const FRegistryNode& Node) const
{
	std::string Text;
	for (const FNameRef Part : {Node.Package, Node.PrimaryAssetType, Node.Object, Node.Value})
	{
		if (Part != NoName)
		{
			Text += (Text.empty() ? "" : ":") + State.Text(Part);
		}
	}
	return Text;
}

void FRegistryInspection::AddDependencyRows(const FRegistryNode& Node, FQVJson& Rows)
{
	const std::string From = NodeText(Node);
	for (const FRegistryDependency& Each : Node.Packages)
	{
		if (Report.IsTooMuch())
		{
			return;
		}
		Rows.Add(FQVJson::Object()
					 .Set("package", Report.Text(From))
					 .Set("depends_on", Report.Text(NodeText(State.Nodes[static_cast<std::size_t>(Each.Node)])))
					 .Set("hard", Each.Set.IsHard())
					 .Set("game", Each.Set.IsGame())
					 .Set("build", Each.Set.IsBuild()));
	}
}

void FRegistryInspection::Dependencies()
{
	FQVJson Rows = FQVJson::Array();
	for (const FRegistryNode& Node : State.Nodes)
	{
		AddDependencyRows(Node, Rows);
	}
	Report.Table({"dependencies", "Dependencies",
		{{"package", "package"}, {"depends_on", "depends on"}, {"hard", "hard"}, {"game", "game"}, {"build", "build"}},
		std::move(Rows)});
}
} // namespace

FStatus InspectRegistry(FBytes File, FInspectReport& Report)
{
	const TResult<FAssetRegistryState> State = ReadAssetRegistry(File);
	if (!State)
	{
		return FError{Report.FileName() + ": " + State.Error().Message};
	}
	FRegistryInspection Inspection(*State, Report);
	Inspection.Head();
	Inspection.Classes();
	Inspection.Assets();
	Inspection.Packages();
	Inspection.Dependencies();
	return Success();
}
} // namespace QVCli
