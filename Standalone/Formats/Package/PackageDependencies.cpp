// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageDependencies.h"

#include "Standalone/Formats/Base/CityHash.h"

#include <algorithm>
#include <tuple>

namespace QVFormats
{
namespace
{
/** Names compare without case, and one table can hold several spellings: the hash makes them one. */
struct FFound
{
	std::uint64_t FoldedEntry = 0;
	FPackageDependency Dependency;

	auto Key() const { return std::tuple(FoldedEntry, Dependency.Package.Number); }
};

void Add(std::vector<FFound>& Found, const FPackageHeader& Header, FPackageDependency Dependency)
{
	if (!Header.Names.IsNone(Dependency.Package))
	{
		Found.push_back({CityHash64Folded(Header.Names.Entry(Dependency.Package.Entry)), Dependency});
	}
}

std::vector<FFound> CollectAll(const FPackageHeader& Header)
{
	std::vector<FFound> Found;
	Found.reserve(Header.Imports.size() + Header.SoftPackageReferences.size());
	for (std::size_t Index = 0; Index < Header.Imports.size(); ++Index)
	{
		FNameRef Package;
		if (Header.FindPackageOf(Header.Imports[Index], Package))
		{
			Add(Found, Header, {Package, true, Header.Registry.ImportUsedInGame.IsUsedInGame(Index)});
		}
	}
	for (std::size_t Index = 0; Index < Header.SoftPackageReferences.size(); ++Index)
	{
		const bool bGame = Header.Registry.SoftPackageUsedInGame.IsUsedInGame(Index);
		Add(Found, Header, {Header.SoftPackageReferences[Index], false, bGame});
	}
	return Found;
}

/** All that was found of one package becomes one hard, one soft, or both. */
void AddMerged(std::span<const FFound> SamePackage, std::vector<FPackageDependency>& Out)
{
	const FNameRef Package = SamePackage.front().Dependency.Package;
	bool bAny[2] = {false, false};
	bool bGame[2] = {false, false};
	for (const FFound& Each : SamePackage)
	{
		bAny[Each.Dependency.bHard] = true;
		bGame[Each.Dependency.bHard] |= Each.Dependency.bGame;
	}
	if (bAny[true])
	{
		Out.push_back({Package, true, bGame[true]});
	}
	if (bAny[false] && (!bAny[true] || (bGame[false] && !bGame[true])))
	{
		Out.push_back({Package, false, bGame[false]});
	}
}
} // namespace

std::vector<FPackageDependency> PackageDependencies(const FPackageHeader& Header)
{
	std::vector<FFound> Found = CollectAll(Header);
	std::sort(Found.begin(), Found.end(),
		[](const FFound& A, const FFound& B)
		{ return std::tuple(A.Key(), A.Dependency.Package) < std::tuple(B.Key(), B.Dependency.Package); });
	std::vector<FPackageDependency> Dependencies;
	for (std::size_t Begin = 0; Begin < Found.size();)
	{
		std::size_t End = Begin + 1;
		while (End < Found.size() && Found[End].Key() == Found[Begin].Key())
		{
			++End;
		}
		AddMerged(std::span(Found).subspan(Begin, End - Begin), Dependencies);
		Begin = End;
	}
	std::stable_sort(Dependencies.begin(), Dependencies.end(),
		[](const FPackageDependency& A, const FPackageDependency& B) { return A.Package < B.Package; });
	return Dependencies;
}
} // namespace QVFormats
