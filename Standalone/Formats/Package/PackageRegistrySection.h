// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageNames.h"

namespace QVFormats
{
/** One bit per row of a table, in place. */
class FBitView
{
public:
	FBitView() = default;
	FBitView(FBytes InWords, std::size_t InCount)
		: Words(InWords)
		, Count(InCount)
	{
	}

	std::size_t Num() const { return Count; }
	/** Rows that the package has no bit for count as used in game, as in packages that have no bits at all. */
	bool IsUsedInGame(std::size_t Index) const;

private:
	FBytes Words;
	std::size_t Count = 0;
};

struct FPackageTag
{
	FStringView Key;
	FStringView Value;
};

struct FPackageAsset
{
	/** Without the package (`Hall`), or whole when it lies in another package's tree, as external actors do. */
	FStringView ObjectPath;
	/** `/Script/Engine.World`; before 5.1 `World`. */
	FStringView Class;
	/** Tags of FPackageRegistrySection. */
	std::size_t FirstTag = 0;
	std::size_t TagCount = 0;
};

/** What the asset registry reads of a package without loading it. Views into the header's bytes. */
struct FPackageRegistrySection
{
	std::vector<FPackageAsset> Assets;
	std::vector<FPackageTag> Tags;
	FBitView ImportUsedInGame;
	FBitView SoftPackageUsedInGame;
	/** Positions, for edits and for checking; 0 where the part is absent. */
	std::size_t DependencyOffsetAt = 0;
	std::size_t DependencyBegin = 0;
	std::size_t TagsEnd = 0;
	std::size_t DependencyEnd = 0;

	std::span<const FPackageTag> TagsOf(const FPackageAsset& Asset) const
	{
		return std::span(Tags).subspan(Asset.FirstTag, Asset.TagCount);
	}
};

TResult<FPackageRegistrySection> ReadRegistrySection(FBytes Header, const FPackageSummary& Summary);
} // namespace QVFormats
