// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVPackages.h"
#include "Standalone/Engine/RenamedText.h"

#include <memory>
#include <unordered_map>

namespace QVStandalone
{
/** A package that the toolkit takes to be in memory. */
struct FLoadedPackage
{
	/** What a package's references are to lead to, with the objects in it that have another name there. */
	struct FTarget
	{
		FQVName Package;
		std::vector<std::pair<std::string, std::string>> Objects;
	};
	/** By old package. Shared by all packages whose references were replaced at once. */
	using FReplacements = std::unordered_map<FQVName, FTarget>;

	/** Whose bytes it is made of: its own or, until it is saved, those of what it was duplicated from. */
	FQVName SourceName;
	/** Empty: a package without objects. */
	std::string SourceFile;
	/** What its references are to become, in this order. */
	std::vector<std::shared_ptr<const FReplacements>> Replacements;
	bool bWorld = false;
	bool bDirty = false;
};

/** The renames of a save, and a search for what is left of the old names. */
struct FRenameTable
{
	explicit FRenameTable(std::vector<QVFormats::FPackageRename> InRenames)
		: List(std::move(InRenames))
		, Renames(QVFormats::FPackageRenames::Make(List))
		, OldNames(List)
	{
	}
	FRenameTable(const FRenameTable&) = delete;
	FRenameTable& operator=(const FRenameTable&) = delete;

private:
	const std::vector<QVFormats::FPackageRename> List;

public:
	/** An error if one of them cannot be done. */
	const QVFormats::TResult<QVFormats::FPackageRenames> Renames;
	const FRenamedText OldNames;
};

/** The packages in memory, by name. Memory does not grow with their files. Game thread. */
class FLoadedPackages
{
public:
	/** Null if it is not loaded. */
	FLoadedPackage* Find(FQVName Package);
	const FLoadedPackage* Find(FQVName Package) const;
	void Add(FQVName Package, FLoadedPackage Loaded) { Packages.insert_or_assign(Package, std::move(Loaded)); }
	void Forget(FQVName Package) { Packages.erase(Package); }
	bool AnyDirty() const;
	/** Replaces Out; in alphabetical order. */
	void GetDirty(std::vector<FQVName>& Out) const;
	void ReplaceReferences(std::span<const FQVName> Among, FLoadedPackage::FReplacements Replacements);

	/** What has to be renamed in the source's bytes; each old name once. */
	std::shared_ptr<const FRenameTable> RenamesOf(FQVName Package, const FLoadedPackage& Loaded);

private:
	std::unordered_map<FQVName, FLoadedPackage> Packages;

	/** Packages that are saved one after the other mostly have the same table, and it may be large. */
	std::vector<std::shared_ptr<const FLoadedPackage::FReplacements>> LastReplacements;
	FLoadedPackage::FReplacements LastTargets;
	std::shared_ptr<const FRenameTable> LastTable;
};
} // namespace QVStandalone
