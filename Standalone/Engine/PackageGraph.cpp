// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageGraph.h"

#include "Core/QVString.h"

#include <algorithm>

namespace QVStandalone
{
namespace
{
template<class T>
std::size_t BytesOf(const std::vector<T>& Items)
{
	return Items.capacity() * sizeof(T);
}
} // namespace

std::pair<std::uint32_t, std::uint32_t> FPackageGraph::RowsBelow(std::string_view Folder) const
{
	while (Folder.ends_with('/'))
	{
		Folder.remove_suffix(1);
	}
	const std::string Prefix = std::string(Folder) + "/";
	const auto First = std::partition_point(Names.begin(), Names.end(),
		[&Prefix](FQVName Name) { return FQVString::LessIgnoreCase(Name.ToView(), Prefix); });
	const auto Last = std::partition_point(
		First, Names.end(), [&Prefix](FQVName Name) { return FQVString::StartsWithIgnoreCase(Name.ToView(), Prefix); });
	return {static_cast<std::uint32_t>(First - Names.begin()), static_cast<std::uint32_t>(Last - Names.begin())};
}

std::span<const std::uint32_t> FPackageGraph::ReferencersOf(FQVName Package) const
{
	const std::uint32_t Node = NodeOf(Package);
	if (Node == NoRow)
	{
		return {};
	}
	return std::span(Referencers).subspan(ReferencerStarts[Node], ReferencerStarts[Node + 1] - ReferencerStarts[Node]);
}

std::size_t FPackageGraph::BytesUsed() const
{
	return BytesOf(Names) + BytesOf(Files) + BytesOf(Traits) + BytesOf(AssetStarts) + BytesOf(Assets) +
		   BytesOf(ReferenceStarts) + BytesOf(FirstReferences) + BytesOf(References) + BytesOf(Nodes) +
		   BytesOf(ReferencerStarts) + BytesOf(Referencers);
}
} // namespace QVStandalone
