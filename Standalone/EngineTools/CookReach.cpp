// SPDX-License-Identifier: MIT
#include "Standalone/EngineTools/CookReach.h"

#include "Core/QVString.h"
#include "Engine/QVAssetRegistry.h"
#include "Standalone/Formats/Base/MappedFile.h"
#include "Standalone/Formats/Registry/AssetRegistry.h"

namespace QVEngineTools
{
using namespace QVFormats;

std::vector<FQVName> FindReached(
	const IQVAssetRegistry& Registry, const std::vector<FQVName>& Maps, const FQVNameSet& Except)
{
	FQVNameSet Met;
	std::vector<FQVName> Reached;
	const auto Meet = [&](FQVName Package)
	{
		if (Met.Add(Package) && !Except.Contains(Package) &&
			!FQVString::StartsWithIgnoreCase(Package.ToView(), "/Script/"))
		{
			Reached.push_back(Package);
		}
	};
	for (const FQVName Map : Maps)
	{
		Meet(Map);
	}
	std::vector<FQVPackageDependency> Dependencies;
	for (std::size_t Index = 0; Index < Reached.size(); ++Index)
	{
		Registry.GetDependencies(Reached[Index], EQVDependencyQuery::Game, Dependencies);
		for (const FQVPackageDependency& Dependency : Dependencies)
		{
			Meet(Dependency.Package);
		}
	}
	return Reached;
}

TResult<FQVNameSet> ReadReleasePackages(const std::filesystem::path& RegistryFile)
{
	const TResult<FMappedFile> File = FMappedFile::Open(RegistryFile);
	if (!File)
	{
		return File.Error();
	}
	const TResult<FAssetRegistryState> State = ReadAssetRegistry(File->Bytes());
	if (!State)
	{
		return State.Error();
	}
	FQVNameSet Packages;
	for (const FRegistryAsset& Asset : State->Assets)
	{
		Packages.Add(FQVName(State->Text(Asset.PackageName)));
	}
	return Packages;
}
} // namespace QVEngineTools
