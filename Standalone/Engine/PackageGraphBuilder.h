// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/PackageGraph.h"

namespace QVStandalone
{
/**
 * Makes a package graph, from files or from anything else. Assets and references belong to the package that was added
 * last. Packages may come in any order, alphabetical is fastest; of two with one name the first one counts.
 */
class FPackageGraphBuilder
{
public:
	/** Optional: how much will come. */
	void Reserve(std::size_t Packages, std::size_t Assets, std::size_t References);

	void AddPackage(FQVName Name, const FPackageFile& File = {}, FPackageTraits Traits = {});
	void AddAsset(const FAssetRow& Asset) { Graph.Assets.push_back(Asset); }
	/** No name is passed over. */
	void AddReference(const FQVPackageDependency& Reference);
	/** A package of another graph as it stands there. */
	void AddFrom(const FPackageGraph& Other, std::uint32_t Row);

	/** The builder is empty again afterwards. */
	FPackageGraph Build();

private:
	FPackageGraph Graph;

	void ClosePackage();
	bool IsInOrder() const;
	void PutInOrder();
	std::uint32_t NumberNames();
	void MarkReferences();
	void LinkReferencers(std::uint32_t NodeCount);
};
} // namespace QVStandalone
