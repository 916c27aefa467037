// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Registry/RegistryLayout.h"

#include <functional>

namespace QVFormats
{
namespace
{
using namespace RegistryLayout;

/** Reads the parts in file order into one state; the input fails at the first field that cannot be true. */
class FStateReader
{
public:
	FStateReader(FBytes File, FAssetRegistryState& InState)
		: In(File)
		, State(InState)
	{
	}
	FStatus Read();

private:
	void Assets();
	void Dependencies();
	void Packages();
	FRegistryAsset Asset();
	void AssetTags(FRegistryAsset& Asset);
	std::vector<FRegistryBundle> Bundles();
	FRegistryNode Node(std::int32_t NodeCount);
	void PackageDependencies(FRegistryNode& Node, std::int32_t NodeCount);
	void Manages(FRegistryNode& Node, std::int32_t NodeCount);
	std::vector<std::int32_t> NodeIndices(std::int32_t NodeCount);
	FRegistryPackage Package();
	void PackageVersions(FRegistryPackage& Package);

	FInput In;
	FAssetRegistryState& State;
	std::uint32_t NumberlessTags = 0;
};

void FStateReader::AssetTags(FRegistryAsset& Asset)
{
	const std::uint64_t Handle = In.U64();
	const bool bNumberless = (Handle & NumberlessHandle) != 0;
	const std::uint64_t End = bNumberless ? NumberlessTags : State.Tags.size();
	const std::uint64_t First = (Handle & 0xFFFFFFFF) + (bNumberless ? 0 : NumberlessTags);
	Asset.TagCount = static_cast<std::uint32_t>((Handle >> 32) & 0xFFFF);
	Asset.FirstTag = Asset.TagCount == 0 ? 0 : static_cast<std::uint32_t>(First);
	if (Asset.TagCount != 0 && First + Asset.TagCount > End)
	{
		In.Fail();
	}
}

std::vector<FRegistryBundle> FStateReader::Bundles()
{
	std::vector<FRegistryBundle> Result;
	for (std::int32_t Left = In.Count(8); Left > 0 && !In.Failed(); --Left)
	{
		FRegistryBundle& Bundle = Result.emplace_back();
		Bundle.Name = In.Name();
		for (std::int32_t Entries = In.Count(12); Entries > 0 && !In.Failed(); --Entries)
		{
			FRegistryBundleEntry& Entry = Bundle.Entries.emplace_back();
			Entry.Package = In.Name();
			Entry.Asset = In.Name();
			Entry.SubPath = In.Text();
		}
	}
	return Result;
}

FRegistryAsset FStateReader::Asset()
{
	FRegistryAsset Asset;
	if (!In.IsAtLeast(EVersion::NoObjectPaths))
	{
		In.Name(); // follows from package and asset
	}
	Asset.PackagePath = In.Name();
	Asset.ClassPackage = In.IsAtLeast(EVersion::ClassPaths) ? In.Name() : NoName;
	Asset.ClassName = In.Name();
	Asset.PackageName = In.Name();
	Asset.AssetName = In.Name();
	Asset.OuterPath = In.HasOuterPaths() ? In.Name() : NoName;
	AssetTags(Asset);
	Asset.Bundles = Bundles();
	Asset.ChunkIds = In.Items<std::int32_t>();
	Asset.PackageFlags = In.U32();
	return Asset;
}

void FStateReader::Assets()
{
	const std::int32_t Count = In.Count(SmallestAsset);
	State.Assets.reserve(static_cast<std::size_t>(Count));
	for (std::int32_t Left = Count; Left > 0 && !In.Failed(); --Left)
	{
		State.Assets.push_back(Asset());
	}
}

/** Bits of a packed row of small numbers, lowest first, as they lie in 32-bit words. */
class FPackedNumbers
{
public:
	FPackedNumbers(FInput& In, std::size_t Count, std::uint32_t InBits)
		: Words(In.Take((Count * InBits + 31) / 32 * 4))
		, Bits(InBits)
	{
	}
	std::uint32_t Next()
	{
		std::uint32_t Value = 0;
		for (std::uint32_t Bit = 0; Bit < Bits; ++Bit, ++Position)
		{
			Value |= (std::to_integer<std::uint32_t>(Words[Position / 8]) >> (Position % 8) & 1) << Bit;
		}
		return Value;
	}

private:
	FBytes Words;
	std::uint32_t Bits;
	std::size_t Position = 0;
};

std::vector<std::int32_t> FStateReader::NodeIndices(std::int32_t NodeCount)
{
	std::vector<std::int32_t> Indices = In.Items<std::int32_t>();
	for (const std::int32_t Index : Indices)
	{
		if (Index < 0 || Index >= NodeCount)
		{
			In.Fail();
		}
	}
	return Indices;
}

void FStateReader::PackageDependencies(FRegistryNode& Node, std::int32_t NodeCount)
{
	const std::vector<std::int32_t> Indices = NodeIndices(NodeCount);
	FPackedNumbers Codes(In, Indices.size(), DependencyBits);
	for (std::size_t Row = 0; Row < Indices.size() && !In.Failed(); ++Row)
	{
		const std::optional<FDependencySet> Set = FDependencySet::FromCode(Codes.Next());
		if (!Set)
		{
			In.Fail();
			return;
		}
		Node.Packages.push_back({Indices[Row], *Set});
	}
}

void FStateReader::Manages(FRegistryNode& Node, std::int32_t NodeCount)
{
	const std::vector<std::int32_t> Indices = NodeIndices(NodeCount);
	FPackedNumbers Flags(In, Indices.size(), In.IsAtLeast(EVersion::ManageRules) ? 3 : 1);
	for (std::size_t Row = 0; Row < Indices.size() && !In.Failed(); ++Row)
	{
		Node.Manages.push_back({Indices[Row], (Flags.Next() & 1) != 0});
	}
}

FRegistryNode FStateReader::Node(std::int32_t NodeCount)
{
	FRegistryNode Node;
	Node.Parts = In.U8();
	FNameRef* const Names[] = {&Node.Package, &Node.PrimaryAssetType, &Node.Object, &Node.Value};
	for (std::size_t Part = 0; Part < std::size(Names); ++Part)
	{
		if ((Node.Parts >> Part & 1) != 0)
		{
			*Names[Part] = In.Name();
		}
	}
	PackageDependencies(Node, NodeCount);
	Node.Names = NodeIndices(NodeCount);
	Manages(Node, NodeCount);
	Node.Referencers = NodeIndices(NodeCount);
	return Node;
}

void FStateReader::Dependencies()
{
	const std::int64_t Size = In.I64();
	const std::size_t Begin = In.Position();
	if (Size < 0 || static_cast<std::uint64_t>(Size) > In.Remaining())
	{
		In.Fail();
		return;
	}
	const std::int32_t Count = In.Count(SmallestNode);
	State.Nodes.reserve(static_cast<std::size_t>(Count));
	for (std::int32_t Left = Count; Left > 0 && !In.Failed(); --Left)
	{
		State.Nodes.push_back(Node(Count));
	}
	if (In.Position() != Begin + static_cast<std::size_t>(Size))
	{
		In.Fail();
	}
}

void FStateReader::PackageVersions(FRegistryPackage& Package)
{
	Package.FileVersionUE4 = In.I32();
	Package.FileVersionUE5 = In.IsAtLeast(EVersion::FileVersionUE5) ? In.I32() : 0;
	Package.FileVersionLicensee = In.I32();
	Package.Flags = In.U32();
	Package.CustomVersions = In.Items<FRegistryCustomVersion>();
}

FRegistryPackage FStateReader::Package()
{
	FRegistryPackage Package;
	Package.Name = In.Name();
	Package.SizeOnDisk = In.I64();
	Package.Guid = In.Read<std::array<std::uint8_t, 16>>();
	In.Skip(In.IsAtLeast(EVersion::PackageSavedHash) ? 4 : 0);
	Package.bCookedHash = In.Bool32();
	if (Package.bCookedHash)
	{
		Package.CookedHash = In.Read<std::array<std::uint8_t, 16>>();
	}
	if (In.IsAtLeast(EVersion::ChunkHashes))
	{
		Package.ChunkHashes = In.Items<std::array<std::uint8_t, 32>>();
	}
	if (In.IsAtLeast(EVersion::WorkspaceDomain))
	{
		PackageVersions(Package);
	}
	for (std::int32_t Left = In.IsAtLeast(EVersion::ImportedClasses) ? In.Count(4) : 0; Left > 0; --Left)
	{
		Package.ImportedClasses.push_back(In.Name());
	}
	Package.Extension = In.IsAtLeast(EVersion::PackageExtension) ? In.Text() : std::string();
	return Package;
}

void FStateReader::Packages()
{
	const std::int32_t Count = In.Count(SmallestPackage);
	State.Packages.reserve(static_cast<std::size_t>(Count));
	for (std::int32_t Left = Count; Left > 0 && !In.Failed(); --Left)
	{
		State.Packages.push_back(Package());
	}
}

FStatus FStateReader::Read()
{
	if (FStatus Status = ReadStart(In); !Status)
	{
		return Status;
	}
	State.Version = static_cast<std::int32_t>(In.Version);
	State.bFilterEditorOnly = In.bFilterEditorOnly;
	const std::pair<std::string_view, std::function<void()>> Parts[] = {{"its names", [this] { ReadNames(In, State); }},
		{"its tags", [this] { NumberlessTags = ReadTags(In, State); }}, {"its assets", [this] { Assets(); }},
		{"its dependencies", [this] { Dependencies(); }}, {"its package data", [this] { Packages(); }}};
	for (const auto& [Where, ReadPart] : Parts)
	{
		ReadPart();
		if (In.Failed())
		{
			return Damaged(Where, In);
		}
	}
	return Success();
}
} // namespace

std::string FAssetRegistryState::Text(FNameRef Name) const
{
	std::string Result = Name.Entry < Names.size() ? Names[Name.Entry] : "None";
	AppendNameNumber(Result, Name.Number);
	return Result;
}

std::string FAssetRegistryState::ValueText(const FRegistryTag& Tag) const
{
	switch (Tag.Kind)
	{
	case ERegistryValue::Ascii:
		return AsciiValues[Tag.Index];
	case ERegistryValue::Wide:
		return WideValues[Tag.Index];
	case ERegistryValue::Name:
		return Text(NameValues[Tag.Index]);
	case ERegistryValue::Text:
		return TextValues[Tag.Index];
	case ERegistryValue::Path:
		break;
	}
	const FRegistryPath& Path = PathValues[Tag.Index];
	std::string Object = Text(Path.Package) + (Path.Object == NoName ? "" : "." + Text(Path.Object));
	if (Path.ClassName == NoName)
	{
		return Object;
	}
	const std::string ClassPackage = Path.ClassPackage == NoName ? "" : Text(Path.ClassPackage) + ".";
	return ClassPackage + Text(Path.ClassName) + "'" + Object + "'";
}

TResult<FAssetRegistryState> ReadAssetRegistry(FBytes File)
{
	FAssetRegistryState State;
	FStateReader Reader(File, State);
	if (FStatus Status = Reader.Read(); !Status)
	{
		return Status.Error();
	}
	return State;
}
} // namespace QVFormats
