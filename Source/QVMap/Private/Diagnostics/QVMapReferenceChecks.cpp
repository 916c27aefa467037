// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapReferenceChecks.h"

#include "Content/QVMapRedirectors.h"
#include "Content/QVMapReferenceAudit.h"
#include "Content/QVMapSecurityScanner.h"
#include "Core/QVString.h"
#include "Diagnostics/QVMapCookObstacles.h"
#include "Diagnostics/QVMapFindingMaker.h"
#include "Diagnostics/QVMapPackageFiles.h"
#include "Engine/QVEngine.h"
#include "Workspace/QVMapConfig.h"

#include <map>

namespace
{
using enum EQVDiagSeverity;
constexpr FQVFindingMaker Group(EQVDiagCategory::References);

using FReferences = std::vector<FQVExternalReference>;

std::string ChainText(const std::vector<FQVName>& Chain)
{
	std::vector<std::string> Names;
	for (const FQVName Package : Chain)
	{
		Names.push_back(Package.ToString());
	}
	return FQVString::Join(Names, " > ");
}

std::string_view HardOrSoft(const FQVExternalReference& Reference, std::string_view Hard, std::string_view Soft)
{
	return Reference.bHardReference ? Hard : Soft;
}

FQVText HardOrSoftWord(const FQVExternalReference& Reference)
{
	return Reference.bHardReference ? Group.Text("RefHard", "Hard") : Group.Text("RefSoft", "Soft");
}

bool Exists(FQVName Package)
{
	std::vector<FQVAssetData> Assets;
	FQVEngine::Get().AssetRegistry->GetAssetsByPackageName(Package, Assets);
	return !Assets.empty() || !FQVMapPackageFiles::Find(Package.ToView()).empty();
}

FQVDiagnosticFinding CheckUntrusted(const FReferences& Untrusted)
{
	constexpr std::string_view Id = "Ref.Untrusted";
	FQVText Title = Group.Text("RefUntrustedTitle", "Nothing used from outside the map");
	if (Untrusted.empty())
	{
		return Group.Pass(Id, std::move(Title),
			Group.Text("RefUntrustedPass", "Everything the map uses is its own or part of every game."));
	}
	std::int64_t Bytes = 0;
	const bool bBroughtIn = FQVMapConfig::GetImportExternalAssets();
	const EQVDiagSeverity Severity = bBroughtIn ? EQVDiagSeverity::Info : Warning;
	FQVDiagnosticFinding Finding = Group.Make(Severity, Id, std::move(Title), {},
		bBroughtIn
			? Group.Text("RefUntrustedBroughtIn",
				  "A pack brings them in for its length and leaves the project as it was. To make them the map's "
				  "own for good, move them into its folder.")
			: Group.Text("RefUntrustedRemedy",
				  "The game does not have them. Move them into the map's own folder, or switch "
				  "import_external_assets on."));
	for (const FQVExternalReference& Each : Untrusted)
	{
		Bytes += Each.SizeBytes;
		FQVDiagnosticFinding Child = Group.Make(Severity, HardOrSoft(Each, "Ref.Untrusted.Hard", "Ref.Untrusted.Soft"),
			Group.Shown(Each.Package.ToView()),
			Group.Text("RefUntrustedRow", "{0} reference to {1}, {2}\n{3}", HardOrSoftWord(Each), Each.AssetClass,
				Group.FormatBytes(Each.SizeBytes), ChainText(Each.Chain)));
		Group.OfferReferencer(Child, Each.InternalReferencerAsset);
		Finding.Children.push_back(std::move(Child));
	}
	Finding.Detail = Group.Text(
		"RefUntrustedFail", "{0} package(s) from outside the map ({1}).", Untrusted.size(), Group.FormatBytes(Bytes));
	return Finding;
}

void AddMissingOutside(const FReferences& Missing, FQVDiagnosticFinding& Finding)
{
	for (const FQVExternalReference& Each : Missing)
	{
		FQVDiagnosticFinding Child = Group.Make(Warning, HardOrSoft(Each, "Ref.Missing.Hard", "Ref.Missing.Soft"),
			Group.Shown(Each.Package.ToView()),
			Group.Text("RefMissingRow", "{0} reference\n{1}", HardOrSoftWord(Each), ChainText(Each.Chain)));
		Group.OfferReferencer(Child, Each.InternalReferencerAsset);
		Finding.Children.push_back(std::move(Child));
	}
}

void AddMissingInside(const FQVNameSet& Packages, FQVDiagnosticFinding& Finding)
{
	std::vector<FQVName> Referencers;
	for (const FQVName Package : Packages)
	{
		if (!Exists(Package))
		{
			FQVEngine::Get().AssetRegistry->GetReferencers(Package, Referencers);
			Finding.Children.push_back(Group.Make(Warning, "Ref.Missing.Own", Group.Shown(Package.ToView()),
				Group.Text("RefMissingOwnRow", "Referenced by {0}", ChainText(Referencers))));
		}
	}
}

FQVDiagnosticFinding CheckMissing(const FReferences& Missing, const FQVNameSet& Internal)
{
	constexpr std::string_view Id = "Ref.Missing";
	FQVText Title = Group.Text("RefMissingTitle", "Referenced packages exist");
	FQVDiagnosticFinding Finding = Group.Make(Warning, Id, Title, {},
		Group.Text("RefMissingRemedy",
			"The cook leaves these references empty. Restore the packages, or open what refers to them, clear the "
			"reference and save."));
	AddMissingOutside(Missing, Finding);
	AddMissingInside(Internal, Finding);
	if (Finding.Children.empty())
	{
		return Group.Pass(
			Id, std::move(Title), Group.Text("RefMissingPass", "No reference leads to a package that is not there."));
	}
	Finding.Detail = Group.Text("RefMissingFail", "{0} referenced package(s) do not exist.", Finding.Children.size());
	return Finding;
}

FQVDiagnosticFinding CheckRedirectors(const FReferences& Redirectors)
{
	constexpr std::string_view Id = "Ref.Redirectors";
	FQVText Title = Group.Text("RefRedirectorsTitle", "No leftover redirectors");
	if (Redirectors.empty())
	{
		return Group.Pass(
			Id, std::move(Title), Group.Text("RefRedirectorsPass", "No reference goes through a redirector outside."));
	}
	FQVDiagnosticFinding Finding = Group.Make(Warning, Id, std::move(Title),
		Group.Text(
			"RefRedirectorsFail", "{0} reference(s) go through a redirector outside the map.", Redirectors.size()),
		Group.Text("RefRedirectorsRemedy", "The game does not have the redirectors. Fix them up and save the map."));
	std::vector<FQVAssetData> Assets;
	for (const FQVExternalReference& Each : Redirectors)
	{
		Assets.push_back(Each.Asset);
		FQVDiagnosticFinding Child = Group.Make(Warning, "Ref.Redirectors.Leftover", Group.Shown(Each.Package.ToView()),
			Group.Text("RefRedirectorRow", "Leads to {0}\n{1}",
				Each.RedirectorTarget.IsNone() ? std::string("?") : Each.RedirectorTarget.ToString(),
				ChainText(Each.Chain)));
		Group.OfferReferencer(Child, Each.InternalReferencerAsset);
		Finding.Children.push_back(std::move(Child));
	}
	Finding.ActionKind = EQVDiagAction::Custom;
	Finding.ActionLabel = Group.Text("FixRedirectors", "Fix Redirectors");
	Finding.ActionCallback = [Assets = std::move(Assets)]
	{ return FQVMapRedirectors::FixRedirectorsWithDialog(Assets); };
	return Finding;
}

FQVDiagnosticFinding SummarizeTrusted(const FReferences& Trusted)
{
	std::map<std::string, int> Roots;
	for (const FQVExternalReference& Each : Trusted)
	{
		const std::string_view Name = Each.Package.ToView();
		++Roots[std::string(Name.substr(0, Name.find('/', 1)))];
	}
	std::vector<std::string> Parts;
	for (const auto& [Root, Count] : Roots)
	{
		Parts.push_back(Root + " (" + FQVText::AsNumber(std::int64_t{Count}) + ")");
	}
	FQVText Title = Group.Text("RefTrustedTitle", "Content that every game has");
	return Group.Make(Info, "Ref.Trusted", std::move(Title),
		Trusted.empty()
			? Group.Text("RefTrustedNone", "The map uses none.")
			: Group.Text("RefTrustedDetail", "{0} package(s): {1}", Trusted.size(), FQVString::Join(Parts, ", ")));
}

/** A package of the engine may well not be there where only its content is missing: those are not asked for. */
bool CanBeMissing(const FQVExternalReference& Reference, bool bBridgeKnown)
{
	const std::string_view Name = Reference.Package.ToView();
	return !FQVMapSecurityScanner::IsTrustedPackagePath(Name) ||
		   (bBridgeKnown && FQVString::StartsWithIgnoreCase(Name, "/QUARVEL/"));
}

void SplitMissing(FReferences& References, FReferences& OutMissing)
{
	std::vector<FQVAssetData> OfBridge;
	FQVEngine::Get().AssetRegistry->GetAssets({"/QUARVEL", {}}, OfBridge);
	std::erase_if(References,
		[&](const FQVExternalReference& Each)
		{
			const bool bMissing =
				CanBeMissing(Each, !OfBridge.empty()) && !Each.Asset.IsValid() && !Exists(Each.Package);
			if (bMissing)
			{
				OutMissing.push_back(Each);
			}
			return bMissing;
		});
}

FQVDiagnosticFinding TellAudit(const FQVReferenceAudit& Audit)
{
	constexpr std::string_view Id = "Ref.Audit";
	FQVText Title = Group.Text("RefAuditTitle", "References traced");
	return Audit.bSuccess
			   ? Group.Pass(Id, std::move(Title),
					 Group.Text("RefAuditPass", "{0} map(s) reach {1} package(s) of the map and {2} outside it.",
						 Audit.MapCount, Audit.InternalPackages.Num(),
						 Audit.UntrustedExternal.size() + Audit.TrustedExternal.size()))
			   : Group.Make(Error, Id, std::move(Title), Group.Shown(Audit.ErrorMessage),
					 Group.Text("RefAuditRemedy", "Save a map below the plugin's Content folder, then refresh."));
}
} // namespace

void FQVMapReferenceChecks::CheckReferences(const FQVDiagnosticOptions& Options, FQVDiagnosticFindings& Findings)
{
	const std::string& Mod = Options.ModName;
	if (Mod.empty())
	{
		return;
	}
	FQVReferenceAudit Audit = FQVMapReferenceAudit::AuditReferences(Mod);
	Findings.push_back(TellAudit(Audit));
	if (Audit.bSuccess)
	{
		FReferences Missing;
		SplitMissing(Audit.UntrustedExternal, Missing);
		SplitMissing(Audit.TrustedExternal, Missing);
		Findings.push_back(CheckUntrusted(Audit.UntrustedExternal));
		Findings.push_back(CheckMissing(Missing, Audit.InternalPackages));
		Findings.push_back(CheckRedirectors(Audit.LeftoverRedirectors));
		Findings.push_back(FQVMapCookObstacles::CheckEngine(Audit));
		Findings.push_back(FQVMapCookObstacles::CheckLetterCase(Audit.InternalPackages));
		Findings.push_back(FQVMapCookObstacles::CheckCookedPaths(Mod, Audit.InternalPackages));
		Findings.push_back(SummarizeTrusted(Audit.TrustedExternal));
	}
	Findings.push_back(FQVMapCookObstacles::CheckUnreadable(Mod));
}
