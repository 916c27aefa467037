// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVNameSet.h"
#include "Engine/QVAssetRegistry.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class IQVSlowTask;

/** A package outside the mod that the mod's maps reach. */
struct FQVExternalReference
{
	FQVName Package;
	/** Class name of Asset; empty if the registry knows no asset of the package. */
	std::string AssetClass;
	/** The package's first asset. */
	FQVAssetData Asset;
	/** The reference that found it is a hard one. */
	bool bHardReference = false;
	bool bRedirector = false;
	/** Of a redirector: the package that it leads to, if that is known. */
	FQVName RedirectorTarget;
	/** Bytes on disk; 0 if not known. */
	std::int64_t SizeBytes = 0;
	/** From a map down to this package, which is the last. */
	std::vector<FQVName> Chain;
	/** The last package of Chain that is in the mod: the one to repoint. */
	FQVName InternalReferencer;
	/** Its first asset. */
	FQVAssetData InternalReferencerAsset;
};

/** What the maps of a mod reach at run time, and what of that the game will not have. */
struct FQVReferenceAudit
{
	/** The walk ran to its end. */
	bool bSuccess = false;
	std::string ErrorMessage;
	std::int32_t MapCount = 0;
	/** Redirectors met on the way, inside and outside the mod. */
	std::int32_t RedirectorHops = 0;
	/** Packages of the mod that the maps reach, the maps among them, in the order in which they were met. */
	FQVNameSet InternalPackages;
	/** Missing in the game; largest first. */
	std::vector<FQVExternalReference> UntrustedExternal;
	/** Untrusted references that are redirectors. */
	std::vector<FQVExternalReference> LeftoverRedirectors;
	/** There in every game. */
	std::vector<FQVExternalReference> TrustedExternal;
	/** Sum over UntrustedExternal. */
	std::int64_t UntrustedBytes = 0;
};

/** Follows the references of a mod's maps through the asset registry; loads nothing. */
struct FQVMapReferenceAudit
{
	/** Game thread. Cancel is optional and is asked once for each package walked. */
	static FQVReferenceAudit AuditReferences(std::string_view PluginName, const IQVSlowTask* Cancel = nullptr);
};
