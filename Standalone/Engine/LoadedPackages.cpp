// SPDX-License-Identifier: MIT
#include "Standalone/Engine/LoadedPackages.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** Replacing twice: what the first has led to a place is led on from there. */
void LeadFurther(FLoadedPackage::FTarget& Target, const FLoadedPackage::FTarget& Further)
{
	FPackageRename Second;
	Second.Objects = Further.Objects;
	for (auto& [Old, New] : Target.Objects)
	{
		New = FPackageRenames::Object(Second, New).value_or(New);
	}
	FPackageRename First;
	First.Objects = Target.Objects;
	for (const auto& Object : Further.Objects)
	{
		if (!FPackageRenames::Object(First, Object.first))
		{
			Target.Objects.push_back(Object);
		}
	}
	Target.Package = Further.Package;
}

FLoadedPackage::FReplacements Joined(const std::vector<std::shared_ptr<const FLoadedPackage::FReplacements>>& InOrder)
{
	FLoadedPackage::FReplacements Targets;
	for (const std::shared_ptr<const FLoadedPackage::FReplacements>& Replacements : InOrder)
	{
		for (auto& [From, Target] : Targets)
		{
			if (const auto Further = Replacements->find(Target.Package); Further != Replacements->end())
			{
				LeadFurther(Target, Further->second);
			}
		}
		Targets.insert(Replacements->begin(), Replacements->end());
	}
	return Targets;
}

std::vector<FPackageRename> ToRenames(const FLoadedPackage::FReplacements& Targets)
{
	std::vector<FPackageRename> Renames;
	for (const auto& [From, Target] : Targets)
	{
		if (From != Target.Package && !From.IsNone())
		{
			Renames.push_back({From.ToString(), Target.Package.ToString(), Target.Objects});
		}
	}
	return Renames;
}

/** Whether these make of the source just what it is to be. */
bool RenamesItself(const FLoadedPackage::FReplacements& Targets, FQVName Package, FQVName Source)
{
	const auto Own = Targets.find(Source);
	const bool bKnown = Own != Targets.end() && Own->second.Package == Package && Own->second.Objects.empty();
	return Source == Package ? Own == Targets.end() : bKnown && !Targets.contains(Package);
}
} // namespace

FLoadedPackage* FLoadedPackages::Find(FQVName Package)
{
	const auto Found = Packages.find(Package);
	return Found != Packages.end() ? &Found->second : nullptr;
}

const FLoadedPackage* FLoadedPackages::Find(FQVName Package) const
{
	const auto Found = Packages.find(Package);
	return Found != Packages.end() ? &Found->second : nullptr;
}

bool FLoadedPackages::AnyDirty() const
{
	return std::any_of(Packages.begin(), Packages.end(), [](const auto& Each) { return Each.second.bDirty; });
}

void FLoadedPackages::GetDirty(std::vector<FQVName>& Out) const
{
	Out.clear();
	for (const auto& [Name, Loaded] : Packages)
	{
		if (Loaded.bDirty)
		{
			Out.push_back(Name);
		}
	}
	std::sort(Out.begin(), Out.end(), FQVName::LexicalLess);
}

void FLoadedPackages::ReplaceReferences(std::span<const FQVName> Among, FLoadedPackage::FReplacements Replacements)
{
	const auto Shared = std::make_shared<const FLoadedPackage::FReplacements>(std::move(Replacements));
	for (const FQVName Package : Among)
	{
		FLoadedPackage* Loaded = Find(Package);
		if (Loaded != nullptr && !Shared->empty())
		{
			Loaded->Replacements.push_back(Shared);
			Loaded->bDirty = true;
		}
	}
}

std::shared_ptr<const FRenameTable> FLoadedPackages::RenamesOf(FQVName Package, const FLoadedPackage& Loaded)
{
	if (LastTable == nullptr || LastReplacements != Loaded.Replacements)
	{
		LastReplacements = Loaded.Replacements;
		LastTargets = Joined(LastReplacements);
		LastTable = std::make_shared<const FRenameTable>(ToRenames(LastTargets));
	}
	if (RenamesItself(LastTargets, Package, Loaded.SourceName))
	{
		return LastTable;
	}
	// references to itself stay with it, wherever others are led
	FLoadedPackage::FReplacements Targets = LastTargets;
	Targets.erase(Package);
	Targets[Loaded.SourceName] = {Package, {}};
	return std::make_shared<const FRenameTable>(ToRenames(Targets));
}
} // namespace QVStandalone
