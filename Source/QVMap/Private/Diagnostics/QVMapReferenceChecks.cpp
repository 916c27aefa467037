// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapReferenceChecks.h"

#include "Content/QVMapRedirectors.h"
#include "Content/QVMapReferenceAudit.h"
#include "Content/QVMapSecurityScanner.h"
#include "Core/QVString.h"
#include "Diagnostics/QVMapCookObstacles.h"
#include "Diagnostics/QVMapPackageFiles.h"
#include "Engine/QVEngine.h"

#include <map>

namespace
{
constexpr auto Category = EQVDiagCategory::References;
constexpr auto Error = EQVDiagSeverity::Error;
constexpr auto Warning = EQVDiagSeverity::Warning;
constexpr auto Info = EQVDiagSeverity::Info;

using FReferences = std::vector<FQVExternalReference>;

template<class... Args>
FQVText Text(std::string_view Key, std::string_view Source, Args&&... Arguments)
{
	return FQVDiagnosticModel::Text(Key, Source, std::forward<Args>(Arguments)...);
}

FQVDiagnosticFinding Pass(std::string_view Id, FQVText Title, FQVText Detail)
{
	return FQVDiagnosticModel::MakePassFinding(Category, Id, std::move(Title), std::move(Detail));
}

FQVDiagnosticFinding Make(
	EQVDiagSeverity Severity, std::string_view Id, FQVText Title, FQVText Detail, FQVText Remedy = {})
{
	return FQVDiagnosticModel::MakeFinding(
		Category, Severity, Id, std::move(Title), std::move(Detail), std::move(Remedy));
}

std::string ChainText(const std::vector<FQVName>& Chain)
{
	std::vector<std::string> Names;
	for (const FQVName Package : Chain)
	{
		Names.push_back(Package.ToString());
	}
	return FQVString::Join(Names, " > ");
}

/** The package that would have to be changed. */
void OfferReferencer(FQVDiagnosticFinding& Finding, const FQVAssetData& Referencer)
{
	if (Referencer.IsValid())
	{
		Finding.ActionKind = EQVDiagAction::BrowseToAssets;
		Finding.ActionLabel = Text("ShowReferencer", "Show Referencer");
		Finding.ActionAssets = {Referencer};
	}
}

std::string_view HardOrSoft(const FQVExternalReference& Reference, std::string_view Hard, std::string_view Soft)
{
	return Reference.bHardReference ? Hard : Soft;
}

FQVText HardOrSoftWord(const FQVExternalReference& Reference)
{
	return Reference.bHardReference ? Text("RefHard", "Hard") : Text("RefSoft", "Soft");
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
	FQVText Title = Text("RefUntrustedTitle", "Nothing used from outside the map");
	if (Untrusted.empty())
	{
		return Pass(Id, std::move(Title),
			Text("RefUntrustedPass", "Everything the map uses is its own or part of every game."));
	}
	std::int64_t Bytes = 0;
	// whatever import_external_assets says: no pack brings them in yet
	FQVDiagnosticFinding Finding = Make(Warning, Id, std::move(Title), {},
		Text("RefUntrustedRemedy", "The game does not have them. Move them into the map's own folder."));
	for (const FQVExternalReference& Each : Untrusted)
	{
		Bytes += Each.SizeBytes;
		FQVDiagnosticFinding Child = Make(Warning, HardOrSoft(Each, "Ref.Untrusted.Hard", "Ref.Untrusted.Soft"),
			FQVText::FromString(Each.Package.ToView()),
			Text("RefUntrustedRow", "{0} reference to {1}, {2}\n{3}", HardOrSoftWord(Each), Each.AssetClass,
				FQVDiagnosticModel::FormatBytes(Each.SizeBytes), ChainText(Each.Chain)));
		OfferReferencer(Child, Each.InternalReferencerAsset);
		Finding.Children.push_back(std::move(Child));
	}
	Finding.Detail = Text("RefUntrustedFail", "{0} package(s) from outside the map ({1}).", Untrusted.size(),
		FQVDiagnosticModel::FormatBytes(Bytes));
	return Finding;
}

void AddMissingOutside(const FReferences& Missing, FQVDiagnosticFinding& Finding)
{
	for (const FQVExternalReference& Each : Missing)
	{
		FQVDiagnosticFinding Child = Make(Warning, HardOrSoft(Each, "Ref.Missing.Hard", "Ref.Missing.Soft"),
			FQVText::FromString(Each.Package.ToView()),
			Text("RefMissingRow", "{0} reference\n{1}", HardOrSoftWord(Each), ChainText(Each.Chain)));
		OfferReferencer(Child, Each.InternalReferencerAsset);
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
			Finding.Children.push_back(Make(Warning, "Ref.Missing.Own", FQVText::FromString(Package.ToView()),
				Text("RefMissingOwnRow", "Referenced by {0}", ChainText(Referencers))));
		}
	}
}

FQVDiagnosticFinding CheckMissing(const FReferences& Missing, const FQVNameSet& Internal)
{
	constexpr std::string_view Id = "Ref.Missing";
	FQVText Title = Text("RefMissingTitle", "Referenced packages exist");
	FQVDiagnosticFinding Finding = Make(Warning, Id, Title, {},
		Text("RefMissingRemedy",
			"The cook leaves these references empty. Restore the packages, or open what refers to them, clear the "
			"reference and save."));
	AddMissingOutside(Missing, Finding);
	AddMissingInside(Internal, Finding);
	if (Finding.Children.empty())
	{
		return Pass(Id, std::move(Title), Text("RefMissingPass", "No reference leads to a package that is not there."));
	}
	Finding.Detail = Text("RefMissingFail", "{0} referenced package(s) do not exist.", Finding.Children.size());
	return Finding;
}

FQVDiagnosticFinding CheckRedirectors(const FReferences& Redirectors)
{
	constexpr std::string_view Id = "Ref.Redirectors";
	FQVText Title = Text("RefRedirectorsTitle", "No leftover redirectors");
	if (Redirectors.empty())
	{
		return Pass(
			Id, std::move(Title), Text("RefRedirectorsPass", "No reference goes through a redirector outside."));
	}
	FQVDiagnosticFinding Finding = Make(Warning, Id, std::move(Title),
		Text("RefRedirectorsFail", "{0} reference(s) go through a redirector outside the map.", Redirectors.size()),
		Text("RefRedirectorsRemedy", "The game does not have the redirectors. Fix them up and save the map."));
	std::vector<FQVAssetData> Assets;
	for (const FQVExternalReference& Each : Redirectors)
	{
		Assets.push_back(Each.Asset);
		FQVDiagnosticFinding Child =
			Make(Warning, "Ref.Redirectors.Leftover", FQVText::FromString(Each.Package.ToView()),
				Text("RefRedirectorRow", "Leads to {0}\n{1}",
					Each.RedirectorTarget.IsNone() ? std::string("?") : Each.RedirectorTarget.ToString(),
					ChainText(Each.Chain)));
		OfferReferencer(Child, Each.InternalReferencerAsset);
		Finding.Children.push_back(std::move(Child));
	}
	Finding.ActionKind = EQVDiagAction::Custom;
	Finding.ActionLabel = Text("FixRedirectors", "Fix Redirectors");
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
	FQVText Title = Text("RefTrustedTitle", "Content that every game has");
	return Make(Info, "Ref.Trusted", std::move(Title),
		Trusted.empty()
			? Text("RefTrustedNone", "The map uses none.")
			: Text("RefTrustedDetail", "{0} package(s): {1}", Trusted.size(), FQVString::Join(Parts, ", ")));
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
	FQVText Title = Text("RefAuditTitle", "References traced");
	return Audit.bSuccess ? Pass(Id, std::move(Title),
								Text("RefAuditPass", "{0} map(s) reach {1} package(s) of the map and {2} outside it.",
									Audit.MapCount, Audit.InternalPackages.Num(),
									Audit.UntrustedExternal.size() + Audit.TrustedExternal.size()))
						  : Make(Error, Id, std::move(Title), FQVText::FromString(Audit.ErrorMessage),
								Text("RefAuditRemedy", "Save a map below the plugin's Content folder, then refresh."));
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
		Findings.push_back(FQVMapCookObstacles::CheckCookedPaths(Mod, Audit.InternalPackages));
		Findings.push_back(SummarizeTrusted(Audit.TrustedExternal));
	}
	Findings.push_back(FQVMapCookObstacles::CheckUnreadable(Mod));
}
