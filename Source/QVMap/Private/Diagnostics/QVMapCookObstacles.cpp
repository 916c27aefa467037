// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapCookObstacles.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Core/QVUnicode.h"
#include "Diagnostics/QVMapFindingMaker.h"
#include "Diagnostics/QVMapPackageFiles.h"
#include "Engine/QVEngine.h"
#include "Workspace/QVMapPaths.h"

#include <algorithm>

namespace
{
using enum EQVDiagSeverity;
constexpr FQVFindingMaker Group(EQVDiagCategory::References);

/** The longest file that a cook makes of a package; empty if it lies nowhere below the map. */
std::string CookedFileOf(FQVName Package, const std::string& CookedContent, const std::string& Mod)
{
	const std::string Root = "/" + Mod + "/";
	const std::string_view Name = Package.ToView();
	return FQVString::StartsWithIgnoreCase(Name, Root)
			   ? FQVPath::Combine(CookedContent, Name.substr(Root.size())) + ".uasset"
			   : std::string();
}

void AddNewer(EQVDiagSeverity Severity, std::string_view Id, FQVName Package, FQVDiagnosticFinding& Finding)
{
	const std::string Engine = FQVEngine::Get().AssetRegistry->GetNewerEngine(Package);
	if (!Engine.empty())
	{
		const std::string File = FQVMapPackageFiles::Find(Package.ToView());
		FQVDiagnosticFinding& Child = Finding.Children.emplace_back(Group.Make(Severity, Id, Group.Shown(File),
			Group.Text("RefNewerRow", "{0} was saved by {1}.", Package.ToView(), Engine)));
		Group.OfferFolderOf(Child, File);
		Finding.Severity = std::max(Finding.Severity, Severity);
	}
}

void AddMisspelled(FQVName Package, FQVDiagnosticFinding& Finding)
{
	const IQVAssetRegistry& Registry = *FQVEngine::Get().AssetRegistry;
	std::vector<FQVMisspelledReference> References;
	std::vector<FQVAssetData> Assets;
	Registry.GetMisspelledReferences(Package, References);
	for (const FQVMisspelledReference& Each : References)
	{
		FQVDiagnosticFinding& Child =
			Finding.Children.emplace_back(Group.Make(Warning, "Ref.LetterCase.Reference", Group.Shown(Package.ToView()),
				Group.Text("RefLetterCaseRow", "refers to {0}\non disk it is {1}", Each.Reference, Each.OnDisk)));
		Registry.GetAssetsByPackageName(Package, Assets);
		Group.OfferReferencer(Child, Assets.empty() ? FQVAssetData() : Assets.front());
	}
}
} // namespace

/** Files of the map stop its cook; what others lack is only not known. */
FQVDiagnosticFinding FQVMapCookObstacles::CheckUnreadable(const std::string& Mod)
{
	constexpr std::string_view Id = "Ref.Unreadable";
	FQVText Title = Group.Text("RefUnreadableTitle", "Packages readable");
	std::vector<FQVUnreadablePackage> Unreadable;
	FQVEngine::Get().AssetRegistry->GetUnreadablePackages(Unreadable);
	if (Unreadable.empty())
	{
		return Group.Pass(Id, std::move(Title), Group.Text("RefUnreadablePass", "Every package could be read."));
	}
	FQVDiagnosticFinding Finding = Group.Make(Warning, Id, std::move(Title),
		Group.Text("RefUnreadableFail", "{0} package(s) could not be read.", Unreadable.size()),
		Group.Text("RefUnreadableRemedy",
			"What they refer to is not known, and those of the map cannot be cooked. Restore them, or open and save "
			"them in the editor."));
	const std::string Own = FQVPath::Combine(FQVMapPaths::GetPluginsDir(), Mod) + "/";
	for (const FQVUnreadablePackage& Each : Unreadable)
	{
		const bool bOwn = FQVString::StartsWithIgnoreCase(Each.File, Own);
		Finding.Severity = bOwn ? Error : Finding.Severity;
		Finding.Children.push_back(
			Group.Make(bOwn ? Error : Warning, bOwn ? "Ref.Unreadable.Own" : "Ref.Unreadable.Other",
				Group.Shown(Each.File), Group.Text("RefUnreadableRow", "The file {0}.", Each.Reason)));
		Group.OfferFolderOf(Finding.Children.back(), Each.File);
	}
	return Finding;
}

FQVDiagnosticFinding FQVMapCookObstacles::CheckEngine(const FQVReferenceAudit& Audit)
{
	constexpr std::string_view Id = "Ref.NewerEngine";
	FQVText Title = Group.Text("RefNewerTitle", "Nothing saved by a newer engine");
	FQVDiagnosticFinding Finding = Group.Make(Warning, Id, Title, {},
		Group.Text("RefNewerRemedy", "Unreal Engine 5.4 does not load them, so the cook fails or leaves them out. "
									 "Restore what 5.4 saved, or make "
									 "them anew in 5.4: a newer engine cannot save for an older one."));
	for (const FQVName Package : Audit.InternalPackages)
	{
		AddNewer(Error, "Ref.NewerEngine.Own", Package, Finding);
	}
	for (const std::vector<FQVExternalReference>* Outside : {&Audit.UntrustedExternal, &Audit.TrustedExternal})
	{
		for (const FQVExternalReference& Each : *Outside)
		{
			AddNewer(Warning, "Ref.NewerEngine.Other", Each.Package, Finding);
		}
	}
	if (Finding.Children.empty())
	{
		return Group.Pass(Id, std::move(Title), Group.Text("RefNewerPass", "5.4 can load all that the map uses."));
	}
	Finding.Detail =
		Group.Text("RefNewerFail", "{0} package(s) were saved by an engine newer than 5.4.", Finding.Children.size());
	return Finding;
}

FQVDiagnosticFinding FQVMapCookObstacles::CheckLetterCase(const FQVNameSet& Packages)
{
	constexpr std::string_view Id = "Ref.LetterCase";
	FQVText Title = Group.Text("RefLetterCaseTitle", "References spelled like their files");
	FQVDiagnosticFinding Finding = Group.Make(Warning, Id, Title, {},
		Group.Text("RefLetterCaseRemedy",
			"Windows takes them; a disk that tells upper from lower case does not have such a file. Rename files and "
			"folders to what the references say, or set the references anew."));
	for (const FQVName Package : Packages)
	{
		AddMisspelled(Package, Finding);
	}
	if (Finding.Children.empty())
	{
		return Group.Pass(Id, std::move(Title),
			Group.Text("RefLetterCasePass", "No reference differs from its file in upper and lower case."));
	}
	Finding.Detail = Group.Text("RefLetterCaseFail", "{0} reference(s) differ from their file in upper and lower case.",
		Finding.Children.size());
	return Finding;
}

FQVDiagnosticFinding FQVMapCookObstacles::CheckCookedPaths(const std::string& Mod, const FQVNameSet& Internal)
{
	constexpr std::string_view Id = "Ref.CookedPaths";
	FQVText Title = Group.Text("RefCookedPathsTitle", "Cooked paths short enough for Windows");
	const std::string Cooked = FQVMapPaths::FindCookedPluginDir(Mod);
	FQVDiagnosticFinding Finding = Group.Make(Error, Id, Title, {},
		Group.Text("RefCookedPathsRemedy",
			"Windows takes paths of up to {0} characters, so these cannot be cooked. Shorten the folders, or move the "
			"project nearer to the drive's root.",
			MostPathUnits));
	std::size_t Longest = 0;
	for (const FQVName Package : Internal)
	{
		const std::string File = CookedFileOf(Package, Cooked, Mod);
		if (File.size() <= std::min(Longest, MostPathUnits))
		{
			continue; // there are never more units than bytes
		}
		const std::size_t Units = FQVUnicode::ToUtf16(File).size();
		Longest = std::max(Longest, Units);
		if (Units > MostPathUnits)
		{
			Finding.Children.push_back(Group.Make(Error, "Ref.CookedPaths.TooLong", Group.Shown(Package.ToView()),
				Group.Text("RefCookedPathRow", "{0} characters: {1}", Units, File)));
		}
	}
	if (Finding.Children.empty())
	{
		return Group.Pass(
			Id, std::move(Title), Group.Text("RefCookedPathsPass", "The longest has {0} characters.", Longest));
	}
	Finding.Detail = Group.Text("RefCookedPathsFail", "{0} cooked path(s) are too long.", Finding.Children.size());
	return Finding;
}
