// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVNameSet.h"
#include "Standalone/Engine/PackageGraph.h"

#include <unordered_map>
#include <utility>
#include <vector>

namespace QVStandalone
{
/**
 * The packages that hold a map's actors and other objects in files of their own. Nothing in the map's file need name
 * them: they belong to it by their place, `/Cave/__ExternalActors__/Maps/Hall/0/AB/<name>` to `/Cave/Maps/Hall`.
 */
class FExternalPackages
{
public:
	FExternalPackages() = default;
	explicit FExternalPackages(const FPackageGraph& Graph);

	/** Adds them behind what the map itself refers to, soft and used in the game. */
	void AppendTo(FQVName Map, const FPackageGraph& Graph, std::vector<FQVPackageDependency>& Out) const;
	/** Adds their names, in order. */
	void AppendTo(FQVName Map, const FPackageGraph& Graph, std::vector<FQVName>& Out) const;

private:
	/** Rows, the last one not included. */
	using FRows = std::pair<std::uint32_t, std::uint32_t>;

	/** Asked first: almost no package has any. */
	FQVNameSet Owners;
	std::unordered_map<FQVName, std::vector<FRows>> RowsOf;

	template<class TAdd>
	void ForEachOf(FQVName Map, const FPackageGraph& Graph, TAdd Add) const;
	void AddBelow(const FPackageGraph& Graph, const std::string& Root, std::string_view Marker);
};
} // namespace QVStandalone
