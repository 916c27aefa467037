// SPDX-License-Identifier: MIT
#include "Standalone/Cli/CheckReport.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Diagnostics/QVMapPackageFiles.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Workspace/QVMapPaths.h"

#include <algorithm>

namespace QVCli
{
namespace
{
std::string Counted(std::int32_t Count, std::string_view One, std::string_view Many)
{
	return QVPrintf("%d %s", Count, Count == 1 ? One : Many);
}

std::string DescriptorOf(const std::string& Mod)
{
	return FQVPath::Combine(FQVMapPaths::GetPluginsDir(), Mod, Mod + ".uplugin");
}

/** The file that a finding's category is about. */
std::string FileOfGroup(const FCheckReport& Report, EQVDiagCategory Category)
{
	if (Category != EQVDiagCategory::ModContent && Category != EQVDiagCategory::References)
	{
		return FQVMapPaths::GetProjectFilePath();
	}
	const std::string Map = Report.Map.empty() ? std::string() : FQVMapPackageFiles::Find(Report.Map);
	if (!Map.empty())
	{
		return Map;
	}
	return Report.Report.ModName.empty() ? FQVMapPaths::GetProjectFilePath() : DescriptorOf(Report.Report.ModName);
}

std::string FileOf(const FCheckReport& Report, const FQVDiagnosticFinding& Finding)
{
	const std::string Title = Finding.Title.ToString();
	if (FQVPath::IsAbsolute(Title) && FQVEngine::Get().Files->FileExists(Title))
	{
		return Title;
	}
	const std::string Asset =
		Finding.ActionAssets.empty() ? "" : FQVMapPackageFiles::Find(Finding.ActionAssets.front().PackageName.ToView());
	return Asset.empty() ? FileOfGroup(Report, Finding.Category) : Asset;
}

std::string BelowRoot(const std::string& Root, std::string File)
{
	const std::string Folder = Root + "/";
	return File.starts_with(Folder) ? File.substr(Folder.size()) : std::string();
}

std::string Sentences(const std::vector<FQVText>& Texts)
{
	std::string Result;
	for (const FQVText& Text : Texts)
	{
		const std::string Each = Text.ToString();
		Result += (Result.empty() || Each.empty() ? "" : "\n") + Each;
	}
	return Result;
}

void AddProblems(const FCheckReport& Report, const FQVDiagnosticFinding& Finding, std::vector<FCheckProblem>& Out)
{
	const std::string Id = Finding.Id.ToString();
	const std::string Title = Finding.Title.ToString();
	for (const FQVDiagnosticFinding& Child : Finding.Children)
	{
		if (Child.Severity >= EQVDiagSeverity::Warning)
		{
			const bool bOwnRemedy = !Child.Remedy.ToString().empty();
			Out.push_back({Child.Severity, Id, Title,
				Sentences({Child.Title, Child.Detail, bOwnRemedy ? Child.Remedy : Finding.Remedy}),
				BelowRoot(Report.Root, FileOf(Report, Child))});
		}
	}
	if (Finding.Children.empty())
	{
		Out.push_back({Finding.Severity, Id, Title, Sentences({Finding.Detail, Finding.Remedy}),
			BelowRoot(Report.Root, FileOf(Report, Finding))});
	}
}
} // namespace

FCheckCounts::FCheckCounts(const FQVDiagnosticReport& Report)
	: Errors(FQVDiagnosticModel::CountBySeverity(Report, EQVDiagSeverity::Error))
	, Warnings(FQVDiagnosticModel::CountBySeverity(Report, EQVDiagSeverity::Warning))
	, Notes(FQVDiagnosticModel::CountBySeverity(Report, EQVDiagSeverity::Info))
	, Passes(FQVDiagnosticModel::CountBySeverity(Report, EQVDiagSeverity::Pass))
{
}

std::string FCheckCounts::ToString() const
{
	return QVPrintf("%s, %s, %s, %d passed", Counted(Errors, "error", "errors"),
		Counted(Warnings, "warning", "warnings"), Counted(Notes, "note", "notes"), Passes);
}

std::vector<const FQVDiagnosticFinding*> InShownOrder(const FQVDiagnosticReport& Report)
{
	std::vector<const FQVDiagnosticFinding*> All;
	for (const EQVDiagCategory Category : {EQVDiagCategory::Environment, EQVDiagCategory::ModContent,
			 EQVDiagCategory::References, EQVDiagCategory::LastExport})
	{
		const auto Group = FQVDiagnosticModel::WorstFirst(Report, Category);
		All.insert(All.end(), Group.begin(), Group.end());
	}
	return All;
}

std::vector<FCheckProblem> ListProblems(const FCheckReport& Report)
{
	std::vector<FCheckProblem> Problems;
	for (const FQVDiagnosticFinding* Finding : InShownOrder(Report.Report))
	{
		if (Finding->Severity >= EQVDiagSeverity::Warning)
		{
			AddProblems(Report, *Finding, Problems);
		}
	}
	std::ranges::stable_sort(Problems, std::ranges::greater(), &FCheckProblem::Severity);
	return Problems;
}

std::string_view SeverityWord(EQVDiagSeverity Severity)
{
	constexpr std::string_view Words[] = {"pass", "info", "warning", "error"};
	return Words[static_cast<std::size_t>(Severity)];
}

std::string CommandFor(const FQVDiagnosticFinding& Finding, const std::string& Mod)
{
	const std::string_view Id = Finding.Id.ToView();
	if (Finding.Severity < EQVDiagSeverity::Warning)
	{
		return {};
	}
	if (Id == "Env.BaseRelease")
	{
		return "qvmap base-release build";
	}
	if (Id == "Env.GameLaunch")
	{
		return "qvmap settings set game_exe_path FILE";
	}
	return Id == "Ref.Redirectors" ? "qvmap redirectors fix " + Mod : std::string();
}

std::string FindRepository(std::string Folder)
{
	const IQVFiles& Files = *FQVEngine::Get().Files;
	while (!Folder.empty())
	{
		// in a worktree and in a submodule it is a file
		const std::string Mark = FQVPath::Combine(Folder, ".git");
		if (Files.DirectoryExists(Mark) || Files.FileExists(Mark))
		{
			return Folder;
		}
		Folder = FQVPath::GetPath(Folder);
	}
	return {};
}
} // namespace QVCli
