// SPDX-License-Identifier: MIT
#include "Content/QVMapReferenceAudit.h"

#include "Content/QVMapModMaps.h"
#include "Content/QVMapSecurityScanner.h"
#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVSlowTask.h"

#include <algorithm>

namespace
{
/** Breadth first, so that the first chain to a package is a shortest one. */
class FAuditWalk
{
public:
	FAuditWalk(std::string_view PluginName, const IQVSlowTask* InCancel)
		: Root(QVPrintf("/%s/", PluginName))
		, Cancel(InCancel)
	{
		// one pass in order costs less than asking for each package when it is met
		Registry.GetAssets({QVPrintf("/%s", PluginName), {}}, Assets);
		for (const FQVAssetData& Asset : Assets)
		{
			Inside.Add(Asset.PackageName);
			if (Asset.IsRedirector())
			{
				InnerRedirectors.Add(Asset.PackageName);
			}
		}
	}

	FQVReferenceAudit Result;

	void Run(const std::vector<FQVAssetData>& Maps)
	{
		for (const FQVAssetData& Map : Maps)
		{
			Join(Map.PackageName, NoParent);
		}
		while (Current < Queue.size())
		{
			AskForMore();
			for (std::size_t Place = 0; Place < Lists.Ends.size(); ++Place, ++Current)
			{
				if (Cancel != nullptr && Cancel->ShouldCancel())
				{
					Result.ErrorMessage = "Cancelled.";
					return;
				}
				for (const FQVPackageDependency& Dependency : Lists.Of(Place))
				{
					Meet(Dependency);
				}
			}
		}
		std::stable_sort(Result.UntrustedExternal.begin(), Result.UntrustedExternal.end(),
			[](const FQVExternalReference& A, const FQVExternalReference& B) { return A.SizeBytes > B.SizeBytes; });
		Result.bSuccess = true;
	}

private:
	static constexpr std::uint32_t NoParent = UINT32_MAX;
	static constexpr std::size_t LotSize = 64;
	/** A package of the mod, and where in the queue the one stands that led to it. */
	struct FStep
	{
		FQVName Package;
		std::uint32_t Parent = NoParent;
	};

	const std::string Root;
	const IQVSlowTask* const Cancel;
	const IQVAssetRegistry& Registry = *FQVEngine::Get().AssetRegistry;
	std::vector<FStep> Queue;
	std::uint32_t Current = 0;
	/** Packages of the mod that have an asset. */
	FQVNameSet Inside;
	FQVNameSet InnerRedirectors;
	/** Whatever needs no second look: packages of the mod, of the outside, and code. */
	FQVNameSet Met;
	std::vector<FQVName> Lot;
	FQVDependencyLists Lists;
	std::vector<FQVAssetData> Assets;

	bool IsInPlugin(FQVName Package) const
	{
		return Inside.Contains(Package) || FQVString::StartsWithIgnoreCase(Package.ToView(), Root);
	}

	/** The references of the packages that come next. */
	void AskForMore()
	{
		Lot.clear();
		for (std::size_t Next = Current; Next < Queue.size() && Lot.size() < LotSize; ++Next)
		{
			Lot.push_back(Queue[Next].Package);
		}
		Registry.GetDependenciesOfEach(Lot, EQVDependencyQuery::Game, Lists);
	}

	bool Join(FQVName Package, std::uint32_t Parent)
	{
		Met.Add(Package);
		const bool bNew = Result.InternalPackages.Add(Package);
		if (bNew)
		{
			Queue.push_back({Package, Parent});
		}
		return bNew;
	}

	void Meet(const FQVPackageDependency& Dependency)
	{
		// almost every reference leads to a package that was met before
		if (!Met.Add(Dependency.Package))
		{
			return;
		}
		if (IsInPlugin(Dependency.Package))
		{
			Join(Dependency.Package, Current);
			FollowInnerRedirectors(Dependency.bHard);
		}
		else if (!FQVString::StartsWithIgnoreCase(Dependency.Package.ToView(), "/Script/"))
		{
			Found(Dependency.Package, Current, Dependency.bHard);
		}
	}

	/** A package of the mod has joined the queue. What its redirectors lead to counts as found there, and so on: what
	 * joins in doing so is looked at in its turn. */
	void FollowInnerRedirectors(bool bHard)
	{
		for (std::size_t Place = Queue.size() - 1; Place < Queue.size(); ++Place)
		{
			for (const FQVName Target : TargetsIn(Queue[Place].Package))
			{
				if (!Target.IsNone() && !Met.Contains(Target))
				{
					++Result.RedirectorHops;
					Found(Target, static_cast<std::uint32_t>(Place), bHard);
				}
			}
		}
	}

	void Found(FQVName Target, std::uint32_t Place, bool bHard)
	{
		Met.Add(Target);
		if (IsInPlugin(Target))
		{
			Join(Target, Place);
			return;
		}
		std::vector<FQVName> Chain = ChainTo(Place);
		Chain.push_back(Target);
		Report(MakeRecord(std::move(Chain), bHard));
	}

	/** What the redirectors of a package of the mod lead to. */
	std::vector<FQVName> TargetsIn(FQVName Package)
	{
		std::vector<FQVName> Targets;
		if (!InnerRedirectors.Contains(Package))
		{
			return Targets;
		}
		Registry.GetAssetsByPackageName(Package, Assets);
		for (const FQVAssetData& Asset : Assets)
		{
			if (Asset.IsRedirector())
			{
				Targets.push_back(TargetOf(Asset));
			}
		}
		return Targets;
	}

	/** A package of the outside, met for the first time. What a redirector leads to stands in for it: the redirector
	 * itself is only in the way. */
	void Report(FQVExternalReference Record)
	{
		bool bTrusted = FQVMapSecurityScanner::IsTrustedPackagePath(Record.Package.ToView());
		while (Record.bRedirector && !bTrusted)
		{
			++Result.RedirectorHops;
			Result.LeftoverRedirectors.push_back(Record);
			const FQVName Target = Record.RedirectorTarget;
			if (Target.IsNone())
			{
				break;
			}
			if (IsInPlugin(Target))
			{
				Join(Target, Current);
				return;
			}
			if (!Met.Add(Target))
			{
				return;
			}
			std::vector<FQVName> Chain = std::move(Record.Chain);
			Chain.push_back(Target);
			Record = MakeRecord(std::move(Chain), Record.bHardReference);
			bTrusted = FQVMapSecurityScanner::IsTrustedPackagePath(Target.ToView());
		}
		if (bTrusted)
		{
			Result.TrustedExternal.push_back(std::move(Record));
			return;
		}
		Result.UntrustedBytes += Record.SizeBytes;
		Result.UntrustedExternal.push_back(std::move(Record));
	}

	std::vector<FQVName> ChainTo(std::uint32_t Place) const
	{
		std::vector<FQVName> Chain;
		for (; Place != NoParent; Place = Queue[Place].Parent)
		{
			Chain.push_back(Queue[Place].Package);
		}
		std::reverse(Chain.begin(), Chain.end());
		return Chain;
	}

	FQVAssetData FirstAssetOf(FQVName Package)
	{
		Registry.GetAssetsByPackageName(Package, Assets);
		return Assets.empty() ? FQVAssetData() : Assets.front();
	}

	FQVName TargetOf(const FQVAssetData& Redirector) const
	{
		std::string Destination;
		return Registry.GetTagValue(Redirector, FQVAssetData::DestinationTag, Destination)
				   ? FQVName(FQVAssetData::PackageOfObjectPath(Destination))
				   : FQVName();
	}

	FQVExternalReference MakeRecord(std::vector<FQVName> Chain, bool bHard)
	{
		FQVExternalReference Record;
		Record.Package = Chain.back();
		Record.Asset = FirstAssetOf(Record.Package);
		Record.AssetClass = Record.Asset.GetClassName();
		Record.bHardReference = bHard;
		Record.bRedirector = Record.Asset.IsRedirector();
		Record.RedirectorTarget = Record.bRedirector ? TargetOf(Record.Asset) : FQVName();
		Record.SizeBytes = Registry.GetPackageSize(Record.Package).value_or(0);
		const auto Inner =
			std::find_if(Chain.rbegin(), Chain.rend(), [this](FQVName Package) { return IsInPlugin(Package); });
		if (Inner != Chain.rend())
		{
			Record.InternalReferencer = *Inner;
			Record.InternalReferencerAsset = FirstAssetOf(*Inner);
		}
		Record.Chain = std::move(Chain);
		return Record;
	}
};

FQVReferenceAudit Failed(std::string Message)
{
	FQVReferenceAudit Audit;
	Audit.ErrorMessage = std::move(Message);
	return Audit;
}
} // namespace

FQVReferenceAudit FQVMapReferenceAudit::AuditReferences(std::string_view PluginName, const IQVSlowTask* Cancel)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	std::string ContentDir;
	if (!FQVModMaps::ScanContent(PluginName, ContentDir))
	{
		return Failed(QVPrintf("Plugin Content directory not found: %s", ContentDir));
	}
	const std::vector<FQVAssetData> Maps = FQVModMaps::Find(PluginName);
	if (Maps.empty())
	{
		return Failed(QVPrintf("No maps found in plugin: %s", PluginName));
	}
	FAuditWalk Walk(PluginName, Cancel);
	Walk.Result.MapCount = static_cast<std::int32_t>(Maps.size());
	Walk.Run(Maps);
	const FQVReferenceAudit& Result = Walk.Result;
	if (Result.bSuccess)
	{
		QVLog(EQVLogVerbosity::Log,
			"QVMap: Reference audit for %s -- %d map(s), %d internal package(s), %d untrusted external (%lld bytes), "
			"%d trusted external, %d leftover redirector(s)",
			PluginName, Result.MapCount, Result.InternalPackages.Num(), Result.UntrustedExternal.size(),
			Result.UntrustedBytes, Result.TrustedExternal.size(), Result.LeftoverRedirectors.size());
	}
	return std::move(Walk.Result);
}
