// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVAssetRegistry.h"

#include <bit>
#include <cstddef>
#include <limits>
#include <span>

namespace QVStandalone
{
/** The memory is needed soon. Any address will do. */
inline void Prefetch([[maybe_unused]] const void* Address)
{
#if defined(__GNUC__)
	__builtin_prefetch(Address);
#endif
}

/** Of a package, its file apart from its name. */
struct FPackageFile
{
	/** Bytes. */
	std::int64_t Size = 0;
	/** When it was changed, in nanoseconds since 1970. */
	std::int64_t Time = 0;
	/** `.umap`, not `.uasset`. */
	bool bMap = false;

	bool operator==(const FPackageFile&) const = default;
};

/** What a package's header tells of it apart from assets and references. */
struct FPackageTraits
{
	/** Only an engine newer than 5.4 loads it. */
	bool bNewerEngine = false;
	/** It spells a package that it refers to otherwise than that package's name. */
	bool bOddReferences = false;

	bool operator==(const FPackageTraits&) const = default;
};

/** FQVAssetData without the package, which knows its assets. */
struct FAssetRow
{
	FQVName AssetName;
	FQVName ClassPath;
	FQVName OuterPath;

	bool operator==(const FAssetRow&) const = default;
};

/** A reference in four bytes: a name's index, the two flags, and whether it is its package's last. */
struct FPackedReference
{
	std::uint32_t Bits = 0;

	static FPackedReference Pack(const FQVPackageDependency& Of)
	{
		return {Of.Package.GetIndex() << 3 | (Of.bHard ? 1U : 0U) | (Of.bUsedInGame ? 2U : 0U)};
	}
	FQVName Package() const { return std::bit_cast<FQVName>(Bits >> 3); }
	bool IsHard() const { return (Bits & 1) != 0; }
	bool IsUsedInGame() const { return (Bits & 2) != 0; }
	bool IsLast() const { return (Bits & 4) != 0; }
	void SetLast(bool bLast) { Bits = (Bits & ~4U) | (bLast ? 4U : 0U); }
	FQVPackageDependency Unpack() const { return {Package(), IsHard(), IsUsedInGame()}; }
};

/**
 * Packages in alphabetical order, their assets, and the references between them in both directions, in flat arrays:
 * below 100 bytes for a package with an asset and 12 for a reference, names aside. Never changes once it is built, so
 * that any thread may read it.
 */
class FPackageGraph
{
public:
	static constexpr std::uint32_t NoRow = std::numeric_limits<std::uint32_t>::max();

	std::uint32_t Num() const { return static_cast<std::uint32_t>(Names.size()); }
	std::size_t NumReferences() const { return References.size(); }
	/** NoRow for a package that is not in the graph, even if others refer to it. */
	std::uint32_t FindRow(FQVName Package) const
	{
		const std::uint32_t Node = NodeOf(Package);
		return Node < Num() ? Node : NoRow;
	}
	/** Rows of the packages below a folder such as `/Cave`; of all for an empty one. First and one past the last. */
	std::pair<std::uint32_t, std::uint32_t> RowsBelow(std::string_view Folder) const;

	// Rows below Num() only.
	FQVName NameAt(std::uint32_t Row) const { return Names[Row]; }
	const FPackageFile& FileAt(std::uint32_t Row) const { return Files[Row]; }
	FPackageTraits TraitsAt(std::uint32_t Row) const { return Traits[Row]; }
	std::span<const FAssetRow> AssetsAt(std::uint32_t Row) const
	{
		return std::span(Assets).subspan(AssetStarts[Row], AssetStarts[Row + 1] - AssetStarts[Row]);
	}
	std::span<const FPackedReference> ReferencesAt(std::uint32_t Row) const
	{
		return std::span(References).subspan(ReferenceStarts[Row], ReferenceStarts[Row + 1] - ReferenceStarts[Row]);
	}

	/** The first of a package's references, the others behind it until one is the last; null if it has none. A walk
	 * over a million packages has no time for more than one look-up. */
	const FPackedReference* FirstReferenceOf(FQVName Package) const
	{
		const bool bKnown = Package.GetIndex() < FirstReferences.size();
		const std::uint32_t First = bKnown ? FirstReferences[Package.GetIndex()] : NoRow;
		return First != NoRow ? &References[First] : nullptr;
	}

	void PrefetchReferenceOf(FQVName Package) const
	{
		if (Package.GetIndex() < FirstReferences.size())
		{
			Prefetch(&FirstReferences[Package.GetIndex()]);
		}
	}

	/** Rows that refer to a package, ascending; one that does so twice is there twice. The package need not exist. */
	std::span<const std::uint32_t> ReferencersOf(FQVName Package) const;
	/** What the arrays take, without the names' letters. */
	std::size_t BytesUsed() const;

private:
	friend class FPackageGraphBuilder;

	std::vector<FQVName> Names;
	std::vector<FPackageFile> Files;
	std::vector<FPackageTraits> Traits;
	std::vector<std::uint32_t> AssetStarts = {0};
	std::vector<FAssetRow> Assets;
	std::vector<std::uint32_t> ReferenceStarts = {0};
	std::vector<FPackedReference> References;
	/** By a name's index: its row; Num() and up for what is only referred to; NoRow for all else. */
	std::vector<std::uint32_t> Nodes;
	/** By a name's index: where the references of the package of that name begin; NoRow if it has none. */
	std::vector<std::uint32_t> FirstReferences;
	/** By node. */
	std::vector<std::uint32_t> ReferencerStarts = {0};
	std::vector<std::uint32_t> Referencers;

	std::uint32_t NodeOf(FQVName Name) const { return Name.GetIndex() < Nodes.size() ? Nodes[Name.GetIndex()] : NoRow; }
};
} // namespace QVStandalone
