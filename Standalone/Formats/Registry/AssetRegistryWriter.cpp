// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Base/CityHash.h"
#include "Standalone/Formats/Base/Unicode.h"
#include "Standalone/Formats/Registry/RegistryLayout.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
using namespace RegistryLayout;

struct FStringRows
{
	FByteWriter Offsets;
	FByteWriter Ascii;
	FByteWriter Wide;
};

/** The mirror of the reader; values always go to the lists of names and paths that may have numbers. */
class FStateWriter
{
public:
	explicit FStateWriter(const FAssetRegistryState& InState);
	TResult<std::vector<std::byte>> Write();

private:
	void Start(FByteWriter& To) const;
	void NameRow(const std::string& Entry, FByteWriter& Hashes, FByteWriter& Headers, FByteWriter& Strings);
	void NameBatch(FByteWriter& To);
	void TagStore();
	FStringRows StringRows();
	void Pairs();
	void Bundles(const std::vector<FRegistryBundle>& Bundles);
	void Asset(const FRegistryAsset& Asset);
	void Dependencies();
	void Node(const FRegistryNode& Node);
	void Package(const FRegistryPackage& Package);
	void Name(FNameRef Name);
	void NodeIndex(std::int32_t Index);
	void NodeIndices(const std::vector<std::int32_t>& Indices);
	void Count(std::size_t Value) { Out.U32(static_cast<std::uint32_t>(Value)); }
	template<class T>
	void Items(const std::vector<T>& Values)
	{
		Count(Values.size());
		Out.Append(std::as_bytes(std::span(Values)));
	}
	void Refuse(std::string Why)
	{
		if (Problem.empty())
		{
			Problem = std::move(Why);
		}
	}

	const FAssetRegistryState& State;
	/** Behind the state's own names if it has none of that spelling. */
	std::uint32_t NoneEntry;
	bool bNoneUsed = false;
	/** Everything behind the names. */
	FByteWriter Out;
	std::string Problem;
};

FStateWriter::FStateWriter(const FAssetRegistryState& InState)
	: State(InState)
	, NoneEntry(static_cast<std::uint32_t>(
		  std::find(InState.Names.begin(), InState.Names.end(), "None") - InState.Names.begin()))
{
}

void FStateWriter::Start(FByteWriter& To) const
{
	To.Write(Guid);
	To.Write(EVersion::Written);
	To.Bool32(State.bFilterEditorOnly);
}

void FStateWriter::NameRow(const std::string& Entry, FByteWriter& Hashes, FByteWriter& Headers, FByteWriter& Strings)
{
	const bool bWide = !IsAscii(Entry);
	const std::u16string Wide = bWide ? Utf8ToUtf16(Entry) : std::u16string();
	const FBytes Bytes = bWide ? std::as_bytes(std::span(Wide)) : std::as_bytes(std::span(Entry));
	const std::size_t Units = bWide ? Wide.size() : Entry.size();
	if (Units > LongestName)
	{
		Refuse("a name of " + std::to_string(Units) + " characters does not fit; names have at most " +
			   std::to_string(LongestName));
	}
	Hashes.U64(CityHash64Folded({Bytes, bWide}));
	Headers.U8(static_cast<std::uint8_t>((bWide ? 0x80 : 0) | (Units >> 8 & 0x7F)));
	Headers.U8(static_cast<std::uint8_t>(Units));
	Strings.Append(Bytes);
}

void FStateWriter::NameBatch(FByteWriter& To)
{
	std::vector<std::string> Names = State.Names;
	if (bNoneUsed && NoneEntry == Names.size())
	{
		Names.emplace_back("None");
	}
	FByteWriter Hashes;
	FByteWriter Headers;
	FByteWriter Strings;
	for (const std::string& Entry : Names)
	{
		NameRow(Entry, Hashes, Headers, Strings);
	}
	To.U32(static_cast<std::uint32_t>(Names.size()));
	if (!Names.empty())
	{
		To.U32(static_cast<std::uint32_t>(Strings.Position()));
		To.U64(CityHashAlgorithm);
		To.Append(Hashes.Bytes());
		To.Append(Headers.Bytes());
		To.Append(Strings.Bytes());
	}
}

void FStateWriter::Name(FNameRef Name)
{
	if (Name != NoName && Name.Entry >= State.Names.size())
	{
		Refuse("a name points at entry " + std::to_string(Name.Entry) + " of " + std::to_string(State.Names.size()));
	}
	bNoneUsed |= Name == NoName;
	const std::uint32_t Entry = Name == NoName ? NoneEntry : Name.Entry;
	Out.U32(Entry | (Name.Number != 0 ? NumberFollows : 0));
	if (Name.Number != 0)
	{
		Out.U32(Name.Number);
	}
}

FStringRows FStateWriter::StringRows()
{
	FStringRows Rows;
	for (const std::string& Value : State.AsciiValues)
	{
		Rows.Offsets.U32(static_cast<std::uint32_t>(Rows.Ascii.Position()));
		Rows.Ascii.Append(std::as_bytes(std::span(Value)));
		Rows.Ascii.U8(0);
		if (!IsAscii(Value))
		{
			Refuse("a value among the ASCII ones is not: " + Value);
		}
	}
	for (const std::string& Value : State.WideValues)
	{
		const std::u16string Units = Utf8ToUtf16(Value);
		Rows.Offsets.U32(static_cast<std::uint32_t>(Rows.Wide.Position() / 2));
		Rows.Wide.Append(std::as_bytes(std::span(Units)));
		Rows.Wide.U16(0);
	}
	return Rows;
}

void FStateWriter::TagStore()
{
	const FStringRows Strings = StringRows();
	FByteWriter Texts;
	std::for_each(State.TextValues.begin(), State.TextValues.end(), [&Texts](const auto& Each) { Texts.String(Each); });
	const std::size_t Counts[] = {0, State.NameValues.size(), 0, State.PathValues.size(), State.TextValues.size(),
		State.AsciiValues.size(), State.WideValues.size(), Strings.Ascii.Position(), Strings.Wide.Position() / 2, 0,
		State.Tags.size(), Texts.Position()};
	Out.U32(TagStoreBegin);
	std::for_each(std::begin(Counts), std::end(Counts), [this](std::size_t Each) { Count(Each); });
	Out.Append(Texts.Bytes());
	std::for_each(State.NameValues.begin(), State.NameValues.end(), [this](FNameRef Each) { Name(Each); });
	for (const FRegistryPath& Path : State.PathValues)
	{
		Name(Path.ClassPackage);
		Name(Path.ClassName);
		Name(Path.Object);
		Name(Path.Package);
	}
	Out.Append(Strings.Offsets.Bytes());
	Out.Append(Strings.Ascii.Bytes());
	Out.Append(Strings.Wide.Bytes());
	Pairs();
	Out.U32(TagStoreEnd);
}

void FStateWriter::Pairs()
{
	struct FKind
	{
		std::uint32_t Code;
		std::size_t Count;
	};
	// In the order of ERegistryValue.
	const FKind Kinds[] = {{0, State.AsciiValues.size()}, {1, State.WideValues.size()}, {3, State.NameValues.size()},
		{5, State.PathValues.size()}, {6, State.TextValues.size()}};
	for (const FRegistryTag& Tag : State.Tags)
	{
		const FKind& Kind = Kinds[static_cast<std::size_t>(Tag.Kind)];
		if (Tag.Index >= Kind.Count)
		{
			Refuse("a tag points at value " + std::to_string(Tag.Index) + " of " + std::to_string(Kind.Count));
		}
		Name(Tag.Key);
		Out.U32(Tag.Index << 3 | Kind.Code);
	}
}

void FStateWriter::Bundles(const std::vector<FRegistryBundle>& Bundles)
{
	Count(Bundles.size());
	for (const FRegistryBundle& Bundle : Bundles)
	{
		Name(Bundle.Name);
		Count(Bundle.Entries.size());
		for (const FRegistryBundleEntry& Entry : Bundle.Entries)
		{
			Name(Entry.Package);
			Name(Entry.Asset);
			Out.String(Entry.SubPath);
		}
	}
}

void FStateWriter::Asset(const FRegistryAsset& Asset)
{
	Name(Asset.PackagePath);
	Name(Asset.ClassPackage);
	Name(Asset.ClassName);
	Name(Asset.PackageName);
	Name(Asset.AssetName);
	if (!State.bFilterEditorOnly)
	{
		Name(Asset.OuterPath);
	}
	if (std::uint64_t{Asset.FirstTag} + Asset.TagCount > State.Tags.size() || Asset.TagCount > 0xFFFF)
	{
		Refuse("an asset has tags " + std::to_string(Asset.FirstTag) + " and " + std::to_string(Asset.TagCount) +
			   " more of " + std::to_string(State.Tags.size()));
	}
	Out.U64(std::uint64_t{Asset.TagCount} << 32 | Asset.FirstTag);
	Bundles(Asset.Bundles);
	Items(Asset.ChunkIds);
	Out.U32(Asset.PackageFlags);
}

void FStateWriter::NodeIndex(std::int32_t Index)
{
	if (Index < 0 || static_cast<std::size_t>(Index) >= State.Nodes.size())
	{
		Refuse("a dependency points at node " + std::to_string(Index) + " of " + std::to_string(State.Nodes.size()));
	}
	Out.I32(Index);
}

void FStateWriter::NodeIndices(const std::vector<std::int32_t>& Indices)
{
	Count(Indices.size());
	std::for_each(Indices.begin(), Indices.end(), [this](std::int32_t Each) { NodeIndex(Each); });
}

/** Numbers of a few bits each, lowest first, in 32-bit words. */
template<class TItem, class TNumberOf>
void WritePacked(FByteWriter& Out, const std::vector<TItem>& Items, std::uint32_t Bits, TNumberOf NumberOf)
{
	std::vector<std::uint32_t> Words((Items.size() * Bits + 31) / 32);
	std::size_t Position = 0;
	for (const TItem& Item : Items)
	{
		const std::uint32_t Number = NumberOf(Item);
		for (std::uint32_t Bit = 0; Bit < Bits; ++Bit, ++Position)
		{
			Words[Position / 32] |= (Number >> Bit & 1) << (Position % 32);
		}
	}
	Out.Append(std::as_bytes(std::span(Words)));
}

void FStateWriter::Node(const FRegistryNode& Node)
{
	Out.U8(Node.Parts);
	const FNameRef Parts[] = {Node.Package, Node.PrimaryAssetType, Node.Object, Node.Value};
	for (std::size_t Part = 0; Part < std::size(Parts); ++Part)
	{
		if ((Node.Parts >> Part & 1) != 0)
		{
			Name(Parts[Part]);
		}
	}
	Count(Node.Packages.size());
	for (const FRegistryDependency& Each : Node.Packages)
	{
		NodeIndex(Each.Node);
	}
	WritePacked(Out, Node.Packages, DependencyBits, [](const FRegistryDependency& Each) { return Each.Set.ToCode(); });
	NodeIndices(Node.Names);
	Count(Node.Manages.size());
	for (const FRegistryManage& Each : Node.Manages)
	{
		NodeIndex(Each.Node);
	}
	WritePacked(Out, Node.Manages, 1, [](const FRegistryManage& Each) { return Each.bDirect ? 1u : 0u; });
	NodeIndices(Node.Referencers);
}

void FStateWriter::Dependencies()
{
	const std::size_t SizeAt = Out.Position();
	Out.I64(0);
	Count(State.bFilterEditorOnly ? 0 : State.Nodes.size());
	if (!State.bFilterEditorOnly)
	{
		std::for_each(State.Nodes.begin(), State.Nodes.end(), [this](const FRegistryNode& Each) { Node(Each); });
	}
	Out.PatchAt(SizeAt, static_cast<std::int64_t>(Out.Position() - SizeAt - sizeof(std::int64_t)));
}

void FStateWriter::Package(const FRegistryPackage& Package)
{
	Name(Package.Name);
	Out.I64(Package.SizeOnDisk);
	Out.Write(Package.Guid);
	Out.Bool32(Package.bCookedHash);
	if (Package.bCookedHash)
	{
		Out.Write(Package.CookedHash);
	}
	Items(Package.ChunkHashes);
	Out.I32(Package.FileVersionUE4);
	Out.I32(Package.FileVersionUE5);
	Out.I32(Package.FileVersionLicensee);
	Out.U32(Package.Flags);
	Items(Package.CustomVersions);
	Count(Package.ImportedClasses.size());
	std::for_each(
		Package.ImportedClasses.begin(), Package.ImportedClasses.end(), [this](FNameRef Each) { Name(Each); });
	Out.String(Package.Extension);
}

TResult<std::vector<std::byte>> FStateWriter::Write()
{
	TagStore();
	Count(State.Assets.size());
	std::for_each(State.Assets.begin(), State.Assets.end(), [this](const FRegistryAsset& Each) { Asset(Each); });
	Dependencies();
	Count(State.bFilterEditorOnly ? 0 : State.Packages.size());
	if (!State.bFilterEditorOnly)
	{
		std::for_each(
			State.Packages.begin(), State.Packages.end(), [this](const FRegistryPackage& Each) { Package(Each); });
	}
	FByteWriter File;
	Start(File);
	NameBatch(File);
	File.Append(Out.Bytes());
	if (!Problem.empty())
	{
		return FError{"cannot be written as an asset registry: " + Problem};
	}
	return File.Release();
}
} // namespace

TResult<std::vector<std::byte>> WriteAssetRegistry(const FAssetRegistryState& State)
{
	return FStateWriter(State).Write();
}
} // namespace QVFormats
