// SPDX-License-Identifier: MIT
#include "Core/QVString.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/PackageSave.h"
#include "Standalone/Engine/Packages.h"
#include "Standalone/Formats/Base/MappedFile.h"
#include "Standalone/Formats/Package/PackageHeader.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
struct FTopObjects
{
	bool bWorld = false;
	std::vector<std::string> Names;
};

TResult<FTopObjects> ReadTopObjects(const std::string& File)
{
	const TResult<FMappedFile> Mapped = FMappedFile::Open(ToOsPath(File));
	const TResult<FPackageHeader> Header =
		Mapped ? ReadPackageHeader(Mapped->Bytes(), {false}) : TResult<FPackageHeader>(Mapped.Error());
	if (!Header)
	{
		return FError{File + " " + Header.Error().Message};
	}
	FTopObjects Objects;
	for (const FPackageExport& Export : Header->Exports)
	{
		if (Export.Outer.IsNull())
		{
			Objects.Names.push_back(Header->Names.Text(Export.ObjectName));
			Objects.bWorld |= Header->ClassPathOf(Export) == FQVAssetData::WorldClass;
		}
	}
	return Objects;
}

std::string_view WithoutClassSuffix(std::string_view Name)
{
	return FQVString::EndsWithIgnoreCase(Name, "_C") ? Name.substr(0, Name.size() - 2) : Name;
}

/** What is wrong with a duplicate of these objects; empty if nothing is. */
std::string WhatIsMissing(const TResult<FTopObjects>& Objects, std::string_view AssetName)
{
	if (!Objects)
	{
		return Objects.Error().Message;
	}
	const bool bThere = std::any_of(Objects->Names.begin(), Objects->Names.end(),
		[AssetName](const std::string& Each) { return FQVString::EqualsIgnoreCase(Each, AssetName); });
	return bThere ? std::string() : QVPrintf("there is no %s in it", AssetName);
}
} // namespace

bool FPackages::IsLoaded(FQVName Package) const
{
	return InMemory.Find(Package) != nullptr;
}

bool FPackages::LoadPackage(FQVName Package)
{
	if (IsLoaded(Package))
	{
		return true;
	}
	const std::string File = FindPackageFile(Package.ToView());
	if (File.empty())
	{
		return false;
	}
	const TResult<FTopObjects> Objects = ReadTopObjects(File);
	if (!Objects)
	{
		LogEngine(EQVLogVerbosity::Warning, "%s", Objects.Error().Message);
		return false;
	}
	InMemory.Add(Package, {Package, File, {}, Objects->bWorld, false});
	return true;
}

void FPackages::GetDirtyPackages(std::vector<FQVName>& Out) const
{
	InMemory.GetDirty(Out);
}

void FPackages::SetDirtyFlag(FQVName Package, bool bDirty)
{
	if (FLoadedPackage* Found = InMemory.Find(Package))
	{
		Found->bDirty = bDirty;
		TellOfSaved();
	}
}

bool FPackages::ContainsWorld(FQVName Package) const
{
	const FLoadedPackage* Found = InMemory.Find(Package);
	return Found != nullptr && Found->bWorld;
}

bool FPackages::CreatePackage(FQVName Package)
{
	if (!IsValidLongPackageName(Package.ToView()))
	{
		LogEngine(EQVLogVerbosity::Error, "'%s' cannot be a package's name", Package.ToView());
		return false;
	}
	if (!IsLoaded(Package))
	{
		InMemory.Add(Package, {Package, {}, {}, false, false});
	}
	return true;
}

/** Of a world: its actors may lie in files of their own, which do not come along. */
bool FPackages::HasExternalObjects(std::string_view World) const
{
	const std::size_t Root = World.find('/', 1);
	const auto HasFolder = [&](std::string_view Marker)
	{
		std::string Below(World.substr(0, Root));
		std::string Folder;
		Below.append(Marker).append(World.substr(Root));
		return TryConvertLongPackageNameToFilename(Below, Folder, {}) && FFiles().DirectoryExists(Folder);
	};
	return HasFolder("/__ExternalActors__") || HasFolder("/__ExternalObjects__");
}

/** Why an asset cannot go into a package; empty if it can. Its own package is loaded then. */
std::string FPackages::WhatPreventsCopy(const FQVAssetData& Asset, FQVName NewPackage)
{
	const FLoadedPackage* Target = InMemory.Find(NewPackage);
	if (Target == nullptr || !Target->SourceFile.empty())
	{
		return Target == nullptr ? "its new package was not created" : "its new package holds something already";
	}
	if (!LoadPackage(Asset.PackageName))
	{
		return "its package cannot be loaded";
	}
	const FLoadedPackage& Source = *InMemory.Find(Asset.PackageName);
	const std::string Missing = WhatIsMissing(ReadTopObjects(Source.SourceFile), Asset.AssetName.ToView());
	if (Missing.empty() && Source.bWorld && HasExternalObjects(Source.SourceName.ToView()))
	{
		return "its actors lie in files of their own, which would not come along: duplicate it in the editor";
	}
	return Missing;
}

bool FPackages::DuplicateAsset(const FQVAssetData& Asset, FQVName NewPackage)
{
	const std::string Obstacle = WhatPreventsCopy(Asset, NewPackage);
	if (!Obstacle.empty())
	{
		LogEngine(EQVLogVerbosity::Error, "%s could not be duplicated to %s: %s", Asset.GetObjectPath(),
			NewPackage.ToView(), Obstacle);
		return false;
	}
	FLoadedPackage Copy = *InMemory.Find(Asset.PackageName);
	Copy.bDirty = true;
	InMemory.Add(NewPackage, std::move(Copy));
	return true;
}

/** A blueprint and its class go together, whichever of them is named. */
std::vector<std::pair<std::string, std::string>> FPackages::ObjectsOf(const FQVAssetReplacement& Replacement) const
{
	if (Replacement.ToAsset.IsNone() || Replacement.ToAsset == Replacement.From.AssetName)
	{
		return {};
	}
	const std::string Old(WithoutClassSuffix(Replacement.From.AssetName.ToView()));
	const std::string New(WithoutClassSuffix(Replacement.ToAsset.ToView()));
	const FLoadedPackage* Target = InMemory.Find(Replacement.To);
	if (Target == nullptr || !WhatIsMissing(ReadTopObjects(Target->SourceFile), New).empty())
	{
		return {{Replacement.From.AssetName.ToString(), Replacement.ToAsset.ToString()}};
	}
	return {{Old, New}, {Old + "_C", New + "_C"}};
}

void FPackages::ReplaceReferences(std::span<const FQVName> Packages, std::span<const FQVAssetReplacement> Replacements)
{
	FLoadedPackage::FReplacements Targets;
	for (const FQVAssetReplacement& Each : Replacements)
	{
		FLoadedPackage::FTarget& Target =
			Targets.try_emplace(Each.From.PackageName, FLoadedPackage::FTarget{Each.To, {}}).first->second;
		const auto Objects = ObjectsOf(Each);
		Target.Objects.insert(Target.Objects.end(), Objects.begin(), Objects.end());
	}
	InMemory.ReplaceReferences(Packages, std::move(Targets));
}

EQVSaveResult FPackages::SavePackage(FQVName Package, std::string_view File, bool bWorld)
{
	const FQVPackageToSave Save{Package, std::string(File), bWorld};
	return SavePackages(std::span(&Save, 1)).front();
}

std::vector<EQVSaveResult> FPackages::SavePackages(std::span<const FQVPackageToSave> Saves)
{
	std::vector<FPackageSave> Jobs;
	std::vector<std::size_t> Places;
	for (std::size_t Place = 0; Place < Saves.size(); ++Place)
	{
		const FQVName Package = Saves[Place].Package;
		const FLoadedPackage* Found = InMemory.Find(Package);
		if (Found == nullptr || Found->SourceFile.empty())
		{
			LogEngine(EQVLogVerbosity::Error, "%s could not be saved: there is nothing in it", Package.ToView());
			continue;
		}
		Jobs.push_back(
			{Found->SourceName.ToView(), Found->SourceFile, Saves[Place].File, InMemory.RenamesOf(Package, *Found)});
		Places.push_back(Place);
	}
	const std::vector<TResult<std::string>> Saved = SaveRenamedPackages(Jobs);
	std::vector<EQVSaveResult> Results(Saves.size(), EQVSaveResult::Failed);
	for (std::size_t Job = 0; Job < Jobs.size(); ++Job)
	{
		Results[Places[Job]] = NoteSaved(Saves[Places[Job]], Saved[Job]);
	}
	TellOfSaved();
	return Results;
}

EQVSaveResult FPackages::NoteSaved(const FQVPackageToSave& Save, const TResult<std::string>& Saved)
{
	if (!Saved)
	{
		LogEngine(EQVLogVerbosity::Error, "%s could not be saved: %s", Save.Package.ToView(), Saved.Error().Message);
		return EQVSaveResult::Failed;
	}
	if (!Saved->empty())
	{
		LogEngine(EQVLogVerbosity::Warning, "%s still holds %s in a text, where it stays", Save.File, *Saved);
	}
	FLoadedPackage& Loaded = *InMemory.Find(Save.Package);
	Loaded = {Save.Package, Save.File, {}, Loaded.bWorld, false};
	SavedFiles.push_back(Save.File);
	PackageSaved.Broadcast(Save.Package);
	return EQVSaveResult::Success;
}

void FPackages::TellOfNew(FQVName Package, const std::string& File)
{
	SavedFiles.push_back(File);
	PackageSaved.Broadcast(Package);
	TellOfSaved();
}

void FPackages::ReloadPackages(std::span<const FQVName> Packages, std::string& OutMessage)
{
	OutMessage.clear();
	Forget(Packages);
	if (OnReloaded)
	{
		OnReloaded();
	}
}

void FPackages::DeleteAssets(std::span<const FQVName> Packages)
{
	Forget(Packages);
}

void FPackages::Forget(std::span<const FQVName> Packages)
{
	for (const FQVName Package : Packages)
	{
		InMemory.Forget(Package);
	}
	TellOfSaved();
}

/** A scan for each of many files that are saved one after the other would take longer than saving them. */
void FPackages::TellOfSaved()
{
	if (!SavedFiles.empty() && !InMemory.AnyDirty())
	{
		const std::vector<std::string> Files = std::exchange(SavedFiles, {});
		if (OnSaved)
		{
			OnSaved(Files);
		}
	}
}
} // namespace QVStandalone
