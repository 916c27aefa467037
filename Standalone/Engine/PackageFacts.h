// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/PackageGraph.h"
#include "Standalone/Formats/Package/PackageHeader.h"

#include <string>
#include <vector>

namespace QVStandalone
{
/** Empty, or why no package can have the name: `has " " in its name, which no package may have`. */
std::string PackageNameProblem(std::string_view PackageName);

/** By its file version, or by the engine that it calls compatible: 5.4 will not load it. */
bool IsOfNewerEngine(const QVFormats::FPackageSummary& Summary);

/** An asset of the header as the registry knows it. Package: by the file's place. */
FAssetRow MakeAssetRow(const QVFormats::FPackageHeader& Header, const QVFormats::FPackageAsset& Asset, FQVName Package);

/** Takes from headers what the registry keeps, one package behind the other. One for each thread. */
class FPackageFacts
{
public:
	FPackageTraits Append(const QVFormats::FPackageHeader& Header, FQVName Package);

	std::vector<FAssetRow> Assets;
	/** As PackageDependencies gives them, which is the plain way to the same. */
	std::vector<FPackedReference> References;

private:
	struct FFound
	{
		FQVName Package;
		std::uint32_t Entry = 0;
		std::uint32_t Number = 0;
		bool bHard = false;
		bool bGame = false;
	};

	std::vector<FFound> Found;
	std::vector<FFound> Merged;
	/** By entry of the header's name table: the name, if it was already made. */
	std::vector<FQVName> Made;
	std::string Buffer;
	bool bOddReferences = false;

	FQVName Make(std::string_view Package);
	FQVName NameOf(const QVFormats::FPackageHeader& Header, QVFormats::FNameRef Name);
	void Add(const QVFormats::FPackageHeader& Header, QVFormats::FNameRef Package, bool bHard, bool bGame);
	void Merge(std::span<const FFound> SamePackage);
	void MergeAll();
};
} // namespace QVStandalone
