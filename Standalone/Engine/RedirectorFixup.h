// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/AssetRegistry.h"
#include "Standalone/Formats/Package/PackageEditor.h"

#include <map>
#include <span>
#include <string>
#include <vector>

namespace QVStandalone
{
/** A package of redirectors, and what becomes of it. */
struct FRedirectorFix
{
	FQVName Package;
	std::string File;
	/** The end of its chain, and its objects' names there. */
	QVFormats::FPackageRename Rename;
	/** Why it stays; empty if it goes, or once it has gone. */
	std::string Obstacle;
	/** Whoever refers to it is not changed either. */
	bool bLeftAlone = false;
	bool bDeleted = false;
};

/** A package that refers to redirectors. */
struct FReferencerFix
{
	FQVName Package;
	std::string File;
	/** Places of FRedirectorPlan::Redirectors. */
	std::vector<std::size_t> Redirectors;
	/** Fields of the header that change. */
	std::size_t References = 0;
	/** Why it cannot be rewritten, or was not. */
	std::string Obstacle;
	bool bRewritten = false;
};

struct FRedirectorPlan
{
	std::vector<FRedirectorFix> Redirectors;
	std::vector<FReferencerFix> Referencers;
	/** Where Apply has put the files as they were; empty if it changed none. */
	std::string BackupDir;

	bool IsWhole() const;
};

/**
 * Redirectors done away with in the files: whoever refers to one is made to refer to what it leads to, then the ones
 * that nothing refers to any more are deleted. A referencer is rewritten whole or not at all. Game thread.
 */
class FRedirectorFixup
{
public:
	FRedirectorFixup(FAssetRegistry& InRegistry, const FPackages& InPackages, std::string InProjectDir);

	/** What was not read, damaged packages and those of plugins that are off, may refer to any redirector: unless this
	 * is set, all are left alone then. */
	bool bDespiteUnreadable = false;

	/** What would be done; changes nothing. Every rewriting is tried out in memory. */
	FRedirectorPlan Plan(std::span<const FQVAssetData> Redirectors);
	/** Does it, as far as the files have not changed their minds since, and fills in what came of it. */
	void Apply(FRedirectorPlan& Plan, std::string_view BackupDir);

private:
	FAssetRegistry& Registry;
	const FPackages& Packages;
	const std::string ProjectDir;

	FRedirectorFix Describe(FQVName Package) const;
	void AddReferencers(FRedirectorPlan& Plan, std::size_t Place);
	std::string Rewrite(const FRedirectorPlan& Plan, FReferencerFix& Referencer, std::string* OutBytes) const;
	std::string KeepCopy(std::string_view File, std::string_view BackupDir) const;
	void RewriteOne(FRedirectorPlan& Plan, FReferencerFix& Referencer, std::string_view BackupDir);
	void DeleteUnused(FRedirectorPlan& Plan, std::string_view BackupDir);
	std::string WhatIsUnread() const;
	void LeaveAloneForUnread(FRedirectorPlan& Plan) const;
	FQVName FindReferencer(FQVName Redirector, const FQVNameSet& Gone) const;
	void Delete(FRedirectorFix& Fix, std::string_view BackupDir) const;
	static void HoldBack(FRedirectorPlan& Plan, const FReferencerFix& Referencer);
};
} // namespace QVStandalone
