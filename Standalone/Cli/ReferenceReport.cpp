// SPDX-License-Identifier: MIT
#include "Standalone/Cli/ReferenceReport.h"

#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Standalone/Cli/InspectReport.h"
#include "Standalone/Cli/ReferenceGraph.h"
#include "Standalone/Cli/TextColumns.h"

#include <algorithm>
#include <map>

namespace QVCli
{
namespace
{
using FReferences = std::vector<FQVExternalReference>;

constexpr std::size_t SizeColumns = 12;

std::string Counted(std::size_t Count, std::string_view One, std::string_view Many)
{
	return QVPrintf("%d %s", Count, Count == 1 ? One : Many);
}

std::string Shown(FQVName Name)
{
	return EscapeControls(Name.ToView());
}

std::string ChainText(const FQVExternalReference& Reference)
{
	std::vector<std::string> Names;
	for (const FQVName Package : Reference.Chain)
	{
		Names.push_back(Shown(Package));
	}
	return FQVString::Join(Names, " > ");
}

std::string ClassText(const FQVExternalReference& Reference)
{
	return Reference.AssetClass.empty() ? "(unknown)" : EscapeControls(Reference.AssetClass);
}

std::string LeftPadded(const std::string& Text, std::size_t Columns)
{
	return std::string(Columns > Text.size() ? Columns - Text.size() : 0, ' ') + Text;
}

std::string HeadLine(const FReferenceReport& Report)
{
	const FQVReferenceAudit& Audit = Report.Audit;
	return QVPrintf("%s: %s, %s of the mod reached, %d missing in the game (%s), %s, %d in every game\n", Report.Mod,
		Counted(static_cast<std::size_t>(Audit.MapCount), "map", "maps"),
		Counted(Audit.InternalPackages.Num(), "package", "packages"), Audit.UntrustedExternal.size(),
		MegabytesText(Audit.UntrustedBytes),
		Counted(Audit.LeftoverRedirectors.size(), "leftover redirector", "leftover redirectors"),
		Audit.TrustedExternal.size());
}

std::string MissingText(const FReferences& Missing)
{
	std::size_t ClassColumns = 0;
	for (const FQVExternalReference& Each : Missing)
	{
		ClassColumns = std::max(ClassColumns, CountColumns(ClassText(Each)));
	}
	std::string Text = Missing.empty() ? "" : "\nmissing in the game, largest first\n";
	for (const FQVExternalReference& Each : Missing)
	{
		const std::string Size = Each.SizeBytes > 0 ? MegabytesText(Each.SizeBytes) : "?";
		Text += QVPrintf("%s  %s  %s  %s\n              by  %s\n", LeftPadded(Size, SizeColumns),
			Each.bHardReference ? "hard" : "soft", PadColumns(ClassText(Each), ClassColumns), Shown(Each.Package),
			ChainText(Each));
	}
	return Text;
}

std::string RedirectorsText(const FReferences& Redirectors)
{
	std::string Text = Redirectors.empty() ? "" : "\nleftover redirectors\n";
	for (const FQVExternalReference& Each : Redirectors)
	{
		const std::string Target =
			Each.RedirectorTarget.IsNone() ? "a target that is not known" : Shown(Each.RedirectorTarget);
		Text += QVPrintf("  %s  to  %s\n              by  %s\n", Shown(Each.Package), Target, ChainText(Each));
	}
	return Text;
}

std::string TrustedText(const FReferences& Trusted, bool bAll)
{
	std::map<std::string, std::size_t> Roots;
	std::string Text = Trusted.empty() ? "" : "\nin every game\n";
	for (const FQVExternalReference& Each : Trusted)
	{
		++Roots[EscapeControls(RootOf(Each.Package.ToView()))];
		Text += bAll ? QVPrintf("  %s\n", Shown(Each.Package)) : std::string();
	}
	for (const auto& [Root, Count] : Roots)
	{
		Text += bAll ? std::string() : QVPrintf("  %s  %s\n", Root, Counted(Count, "package", "packages"));
	}
	return Text;
}

std::string InternalText(const FQVNameSet& Packages)
{
	std::string Text = "\nof the mod\n";
	for (const FQVName Package : Packages)
	{
		Text += QVPrintf("  %s\n", Shown(Package));
	}
	return Text;
}

FQVJson ToJson(const FReferences& References)
{
	FQVJson List = FQVJson::Array();
	for (const FQVExternalReference& Each : References)
	{
		FQVJson Chain = FQVJson::Array();
		for (const FQVName Package : Each.Chain)
		{
			Chain.Add(Package.ToView());
		}
		List.Add(FQVJson::Object()
					 .Set("package", Each.Package.ToView())
					 .Set("asset", Each.Asset.AssetName.ToView())
					 .Set("class", Each.AssetClass)
					 .Set("hard", Each.bHardReference)
					 .Set("bytes", Each.SizeBytes)
					 .Set("redirector", Each.bRedirector)
					 .Set("redirector_target", Each.RedirectorTarget.ToView())
					 .Set("internal_referencer", Each.InternalReferencer.ToView())
					 .Set("chain", std::move(Chain)));
	}
	return List;
}

FQVJson ToJson(const FQVNameSet& Packages)
{
	const IQVAssetRegistry& Registry = *FQVEngine::Get().AssetRegistry;
	FQVJson List = FQVJson::Array();
	std::vector<FQVAssetData> Assets;
	for (const FQVName Package : Packages)
	{
		Registry.GetAssetsByPackageName(Package, Assets);
		List.Add(FQVJson::Object()
					 .Set("package", Package.ToView())
					 .Set("class", Assets.empty() ? std::string_view() : Assets.front().GetClassName())
					 .Set("bytes", Registry.GetPackageSize(Package).value_or(0)));
	}
	return List;
}

FQVJson ToJson(const std::vector<QVStandalone::FUnreadablePackage>& Unreadable)
{
	FQVJson List = FQVJson::Array();
	for (const QVStandalone::FUnreadablePackage& Each : Unreadable)
	{
		List.Add(FQVJson::Object().Set("file", Each.File).Set("reason", Each.Reason));
	}
	return List;
}
} // namespace

std::string ToText(const FReferenceReport& Report, bool bAll)
{
	const FQVReferenceAudit& Audit = Report.Audit;
	return HeadLine(Report) + MissingText(Audit.UntrustedExternal) + RedirectorsText(Audit.LeftoverRedirectors) +
		   TrustedText(Audit.TrustedExternal, bAll) + (bAll ? InternalText(Audit.InternalPackages) : std::string());
}

FQVJson ToJson(const FReferenceReport& Report)
{
	const FQVReferenceAudit& Audit = Report.Audit;
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("mod", Report.Mod)
		.Set("maps", Audit.MapCount)
		.Set("redirector_hops", Audit.RedirectorHops)
		.Set("untrusted_bytes", Audit.UntrustedBytes)
		.Set("internal", ToJson(Audit.InternalPackages))
		.Set("untrusted", ToJson(Audit.UntrustedExternal))
		.Set("leftover_redirectors", ToJson(Audit.LeftoverRedirectors))
		.Set("trusted", ToJson(Audit.TrustedExternal))
		.Set("unreadable", ToJson(Report.Unreadable));
}
} // namespace QVCli
