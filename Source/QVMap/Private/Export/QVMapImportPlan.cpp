// SPDX-License-Identifier: MIT
#include "Export/QVMapImportPlan.h"

#include "Content/QVMapReferenceAudit.h"
#include "Content/QVMapSecurityScanner.h"
#include "Core/QVLog.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVPackages.h"
#include "Export/QVMapImportPaths.h"
#include "Export/QVMapPackageSaver.h"

#include <algorithm>

namespace
{
constexpr std::size_t MostMissingShown = 10;

class FPlanner
{
public:
	FPlanner(std::string_view InPluginName, FQVImportPlan::EMemoryOnly InMemoryOnly)
		: PluginName(InPluginName)
		, MemoryOnly(InMemoryOnly)
	{
	}

	FQVImportPlan Plan;

	void Run()
	{
		if (Registry.IsLoadingAssets())
		{
			Plan.ErrorMessage = "The asset registry is still scanning the project. Wait for 'Discovering Assets' to "
								"finish, then pack again.";
			return;
		}
		const FQVReferenceAudit Audit = FQVMapReferenceAudit::AuditReferences(PluginName);
		if (!Audit.bSuccess)
		{
			Plan.ErrorMessage = QVPrintf("Could not work out what '%s' references: %s", PluginName, Audit.ErrorMessage);
			return;
		}
		CollectExternal(Audit);
		if (FindMissingForCook(Audit))
		{
			RefuseMissing();
			return;
		}
		CollectRedirections(Audit);
		Plan.bSuccess = Plan.External.IsEmpty() || CollectRepoint();
	}

private:
	const std::string_view PluginName;
	const FQVImportPlan::EMemoryOnly MemoryOnly;
	const IQVAssetRegistry& Registry = *FQVEngine::Get().AssetRegistry;
	std::vector<FQVPackageDependency> Dependencies;
	FQVNameSet OwnByWayOfOutside;

	bool NeedsNoCopy(FQVName Package) const
	{
		return Plan.External.Contains(Package) || Plan.Missing.Contains(Package) ||
			   FQVMapSecurityScanner::IsTrustedPackagePath(Package.ToView()) ||
			   FQVMapImportPaths::IsInPlugin(Package.ToView(), PluginName) ||
			   !FQVEngine::Get().Packages->IsValidLongPackageName(Package.ToView());
	}

	bool IsOnDisk(FQVName Package) const
	{
		std::string File;
		return FQVEngine::Get().Packages->DoesPackageExist(Package.ToView(), File) ||
			   (MemoryOnly == FQVImportPlan::EMemoryOnly::Save && FQVMapPackageSaver::SaveReferencedPackage(Package));
	}

	void CollectExternal(const FQVReferenceAudit& Audit)
	{
		std::vector<FQVName> Work;
		for (const FQVExternalReference& Reference : Audit.UntrustedExternal)
		{
			if (!Reference.bRedirector)
			{
				Work.push_back(Reference.Package);
			}
		}
		while (!Work.empty())
		{
			const FQVName Package = Work.back();
			Work.pop_back();
			if (NeedsNoCopy(Package))
			{
				if (FQVMapImportPaths::IsInPlugin(Package.ToView(), PluginName) &&
					!Audit.InternalPackages.Contains(Package) && OwnByWayOfOutside.Add(Package))
				{
					AddDependencies(Package, Work); // the mod's own, but only an outside package leads to it
				}
				continue;
			}
			if (!IsOnDisk(Package))
			{
				Plan.Missing.Add(Package);
				continue;
			}
			Plan.External.Add(Package);
			AddDependencies(Package, Work);
		}
	}

	void AddDependencies(FQVName Package, std::vector<FQVName>& Work)
	{
		Registry.GetDependencies(Package, EQVDependencyQuery::Game, Dependencies);
		for (const FQVPackageDependency& Dependency : Dependencies)
		{
			Work.push_back(Dependency.Package);
		}
	}

	/** A cook takes what is reached by hard references of the game, and complains of what it misses there only. */
	bool FindMissingForCook(const FQVReferenceAudit& Audit)
	{
		std::vector<FQVName> Work;
		for (const FQVExternalReference& Reference : Audit.UntrustedExternal)
		{
			if (!Reference.bRedirector && Reference.bHardReference)
			{
				Work.push_back(Reference.Package);
			}
		}
		FQVNameSet Visited;
		FQVNameSet Fatal;
		while (!Work.empty())
		{
			const FQVName Package = Work.back();
			Work.pop_back();
			if (!Visited.Add(Package))
			{
				continue;
			}
			if (Plan.Missing.Contains(Package))
			{
				Fatal.Add(Package);
			}
			else if (Plan.External.Contains(Package))
			{
				AddHardDependencies(Package, Work);
			}
		}
		WarnOfMissing(Fatal);
		Plan.MissingForCook.assign(Fatal.begin(), Fatal.end());
		return !Fatal.IsEmpty();
	}

	void AddHardDependencies(FQVName Package, std::vector<FQVName>& Work)
	{
		Registry.GetDependencies(Package, EQVDependencyQuery::Game, Dependencies);
		for (const FQVPackageDependency& Dependency : Dependencies)
		{
			if (Dependency.bHard)
			{
				Work.push_back(Dependency.Package);
			}
		}
	}

	void WarnOfMissing(const FQVNameSet& Fatal) const
	{
		for (const FQVName Package : Plan.Missing)
		{
			if (!Fatal.Contains(Package))
			{
				QVLog(EQVLogVerbosity::Warning,
					"QVMap: %s is referenced but not on disk. Packing anyway: nothing reaches it through a hard "
					"runtime "
					"reference, so the cook would not have taken it.",
					Package.ToView());
			}
		}
	}

	void RefuseMissing()
	{
		std::sort(Plan.MissingForCook.begin(), Plan.MissingForCook.end(),
			[](FQVName A, FQVName B) { return FQVString::LessIgnoreCase(A.ToView(), B.ToView()); });
		std::vector<std::string> Shown;
		for (const FQVName Package : Plan.MissingForCook)
		{
			if (Shown.size() < MostMissingShown)
			{
				Shown.push_back(Package.ToString());
			}
		}
		const std::size_t Total = Plan.MissingForCook.size();
		Plan.ErrorMessage = QVPrintf(
			"%d asset(s) the map needs are neither on disk nor open in the editor, so there is nothing to pack for "
			"them. The map would load with them missing.\n\nCommon causes: content deleted or moved after it was "
			"placed "
			"in the map, or a material that samples a texture which was never imported.\n\nMissing (%d of %d):\n  %s",
			Total, Shown.size(), Total, FQVString::Join(Shown, "\n  "));
		QVLog(EQVLogVerbosity::Error, "QVMap: %d referenced package(s) are not on disk, refusing to pack %s", Total,
			PluginName);
	}

	/** What a redirector of the outside leads to has been found in its place, maybe over others. */
	void CollectRedirections(const FQVReferenceAudit& Audit)
	{
		for (const FQVExternalReference& Leftover : Audit.LeftoverRedirectors)
		{
			FQVName Target = Leftover.RedirectorTarget;
			for (std::size_t Hop = 0; Hop < Audit.LeftoverRedirectors.size(); ++Hop)
			{
				const auto Next = std::find_if(Audit.LeftoverRedirectors.begin(), Audit.LeftoverRedirectors.end(),
					[Target](const FQVExternalReference& Each) { return Each.Package == Target; });
				if (Next == Audit.LeftoverRedirectors.end())
				{
					break;
				}
				Target = Next->RedirectorTarget;
			}
			if (Plan.External.Contains(Target) && !Plan.External.Contains(Leftover.Package))
			{
				Plan.Redirections.push_back({Leftover.Asset, Target});
			}
		}
	}

	bool CollectRepoint()
	{
		FQVNameSet Copies; // of an earlier run that was cut off: about to be written anew
		for (const FQVName Package : Plan.External)
		{
			Copies.Add(FQVName(FQVMapImportPaths::MakeImportedName(PluginName, Package.ToView())));
		}
		for (const FQVName Package : Plan.External)
		{
			AddReferencers(Package, Copies);
		}
		for (const FQVImportPlan::FRedirection& Redirection : Plan.Redirections)
		{
			AddReferencers(Redirection.Redirector.PackageName, Copies);
		}
		if (Plan.Repoint.IsEmpty())
		{
			Plan.ErrorMessage =
				QVPrintf("Found %d asset(s) outside '%s' but nothing inside it that references them. The asset "
						 "registry may be out of date - try again after it finishes scanning.",
					Plan.External.Num(), PluginName);
		}
		return !Plan.Repoint.IsEmpty();
	}

	void AddReferencers(FQVName Package, const FQVNameSet& Copies)
	{
		std::vector<FQVName> Referencers;
		Registry.GetReferencers(Package, Referencers);
		for (const FQVName Referencer : Referencers)
		{
			if (FQVMapImportPaths::IsInPlugin(Referencer.ToView(), PluginName) && !Copies.Contains(Referencer))
			{
				Plan.Repoint.Add(Referencer);
			}
		}
	}
};
} // namespace

FQVImportPlan FQVImportPlan::Make(std::string_view PluginName, EMemoryOnly MemoryOnly)
{
	FPlanner Planner(PluginName, MemoryOnly);
	Planner.Run();
	return std::move(Planner.Plan);
}
