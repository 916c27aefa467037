// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapCookObstacles.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Core/QVUnicode.h"
#include "Engine/QVEngine.h"
#include "Workspace/QVMapPaths.h"

#include <algorithm>

namespace
{
constexpr auto Category = EQVDiagCategory::References;
constexpr auto Error = EQVDiagSeverity::Error;
constexpr auto Warning = EQVDiagSeverity::Warning;

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

/** The longest file that a cook makes of a package; empty if it lies nowhere below the map. */
std::string CookedFileOf(FQVName Package, const std::string& CookedContent, const std::string& Mod)
{
	const std::string Root = "/" + Mod + "/";
	const std::string_view Name = Package.ToView();
	return FQVString::StartsWithIgnoreCase(Name, Root)
			   ? FQVPath::Combine(CookedContent, Name.substr(Root.size())) + ".uasset"
			   : std::string();
}

} // namespace

/** Files of the map stop its cook; what others lack is only not known. */
FQVDiagnosticFinding FQVMapCookObstacles::CheckUnreadable(const std::string& Mod)
{
	constexpr std::string_view Id = "Ref.Unreadable";
	FQVText Title = Text("RefUnreadableTitle", "Packages readable");
	std::vector<FQVUnreadablePackage> Unreadable;
	FQVEngine::Get().AssetRegistry->GetUnreadablePackages(Unreadable);
	if (Unreadable.empty())
	{
		return Pass(Id, std::move(Title), Text("RefUnreadablePass", "Every package could be read."));
	}
	FQVDiagnosticFinding Finding = Make(Warning, Id, std::move(Title),
		Text("RefUnreadableFail", "{0} package(s) could not be read.", Unreadable.size()),
		Text("RefUnreadableRemedy",
			"What they refer to is not known, and those of the map cannot be cooked. Restore them, or open and save "
			"them in the editor."));
	const std::string Own = FQVPath::Combine(FQVMapPaths::GetPluginsDir(), Mod) + "/";
	for (const FQVUnreadablePackage& Each : Unreadable)
	{
		const bool bOwn = FQVString::StartsWithIgnoreCase(Each.File, Own);
		Finding.Severity = bOwn ? Error : Finding.Severity;
		Finding.Children.push_back(Make(bOwn ? Error : Warning, bOwn ? "Ref.Unreadable.Own" : "Ref.Unreadable.Other",
			FQVText::FromString(Each.File), Text("RefUnreadableRow", "The file {0}.", Each.Reason)));
		FQVDiagnosticFinding& Child = Finding.Children.back();
		Child.ActionKind = EQVDiagAction::OpenFolder;
		Child.ActionLabel = Text("OpenFolder", "Open Folder");
		Child.ActionPath = FQVPath::GetPath(Each.File);
	}
	return Finding;
}

FQVDiagnosticFinding FQVMapCookObstacles::CheckCookedPaths(const std::string& Mod, const FQVNameSet& Internal)
{
	constexpr std::string_view Id = "Ref.CookedPaths";
	FQVText Title = Text("RefCookedPathsTitle", "Cooked paths short enough for Windows");
	const std::string Cooked = FQVMapPaths::FindCookedPluginDir(Mod);
	FQVDiagnosticFinding Finding = Make(Error, Id, Title, {},
		Text("RefCookedPathsRemedy",
			"Windows takes paths of up to {0} characters, so these cannot be cooked. Shorten the folders, or move the "
			"project nearer to the drive's root.",
			MostPathUnits));
	std::size_t Longest = 0;
	for (const FQVName Package : Internal)
	{
		const std::string File = CookedFileOf(Package, Cooked, Mod);
		const std::size_t Units = FQVUnicode::ToUtf16(File).size();
		Longest = std::max(Longest, Units);
		if (Units > MostPathUnits)
		{
			Finding.Children.push_back(Make(Error, "Ref.CookedPaths.TooLong", FQVText::FromString(Package.ToView()),
				Text("RefCookedPathRow", "{0} characters: {1}", Units, File)));
		}
	}
	if (Finding.Children.empty())
	{
		return Pass(Id, std::move(Title), Text("RefCookedPathsPass", "The longest has {0} characters.", Longest));
	}
	Finding.Detail = Text("RefCookedPathsFail", "{0} cooked path(s) are too long.", Finding.Children.size());
	return Finding;
}
