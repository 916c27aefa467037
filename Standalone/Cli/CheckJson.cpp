// SPDX-License-Identifier: MIT
#include "Standalone/Cli/CheckReport.h"

namespace QVCli
{
namespace
{
FQVJson ActionJson(const FQVDiagnosticFinding& Finding)
{
	constexpr std::string_view Kinds[] = {"none", "open_folder", "open_file", "browse_to_assets", "custom"};
	FQVJson Assets = FQVJson::Array();
	for (const FQVAssetData& Asset : Finding.ActionAssets)
	{
		Assets.Add(Asset.GetObjectPath());
	}
	return FQVJson::Object()
		.Set("kind", Kinds[static_cast<std::size_t>(Finding.ActionKind)])
		.Set("label", Finding.ActionLabel.ToString())
		.Set("path", Finding.ActionPath)
		.Set("assets", std::move(Assets));
}

FQVJson FindingJson(const FQVDiagnosticFinding& Finding, const std::string& Mod)
{
	FQVJson Children = FQVJson::Array();
	for (const FQVDiagnosticFinding& Child : Finding.Children)
	{
		Children.Add(FindingJson(Child, Mod));
	}
	constexpr std::string_view Groups[] = {"environment", "map_content", "references", "last_export"};
	return FQVJson::Object()
		.Set("group", Groups[static_cast<std::size_t>(Finding.Category)])
		.Set("id", Finding.Id.ToView())
		.Set("severity", SeverityWord(Finding.Severity))
		.Set("title", Finding.Title.ToString())
		.Set("detail", Finding.Detail.ToString())
		.Set("remedy", Finding.Remedy.ToString())
		.Set("command", CommandFor(Finding, Mod))
		.Set("action", ActionJson(Finding))
		.Set("children", std::move(Children));
}
} // namespace

FQVJson ToJson(const FCheckReport& Report)
{
	FQVJson Findings = FQVJson::Array();
	for (const FQVDiagnosticFinding* Finding : InShownOrder(Report.Report))
	{
		Findings.Add(FindingJson(*Finding, Report.Report.ModName));
	}
	const FCheckCounts Counts(Report.Report);
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("mod", Report.Report.ModName)
		.Set("map", Report.Map)
		.Set("time", Report.Report.Timestamp.ToString())
		.Set("cancelled", Report.Report.bCancelled)
		.Set("errors", Counts.Errors)
		.Set("warnings", Counts.Warnings)
		.Set("notes", Counts.Notes)
		.Set("passes", Counts.Passes)
		.Set("findings", std::move(Findings));
}
} // namespace QVCli
