// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapDiagnosticReport.h"

#include <algorithm>

FQVDiagnosticFinding FQVDiagnosticModel::MakeFinding(EQVDiagCategory Category, EQVDiagSeverity Severity,
	std::string_view Id, FQVText Title, FQVText Detail, FQVText Remedy)
{
	FQVDiagnosticFinding Finding;
	Finding.Category = Category;
	Finding.Severity = Severity;
	Finding.Id = FQVName(Id);
	Finding.Title = std::move(Title);
	Finding.Detail = std::move(Detail);
	Finding.Remedy = std::move(Remedy);
	return Finding;
}

FQVDiagnosticFinding FQVDiagnosticModel::MakePassFinding(
	EQVDiagCategory Category, std::string_view Id, FQVText Title, FQVText Detail)
{
	return MakeFinding(Category, EQVDiagSeverity::Pass, Id, std::move(Title), std::move(Detail), {});
}

std::vector<const FQVDiagnosticFinding*> FQVDiagnosticModel::WorstFirst(
	const FQVDiagnosticReport& Report, EQVDiagCategory Category)
{
	std::vector<const FQVDiagnosticFinding*> Rows;
	for (const FQVDiagnosticFinding& Finding : Report.Findings)
	{
		if (Finding.Category == Category)
		{
			Rows.push_back(&Finding);
		}
	}
	std::ranges::stable_sort(Rows, std::ranges::greater(), [](const auto* Finding) { return Finding->Severity; });
	return Rows;
}

std::int32_t FQVDiagnosticModel::CountBySeverity(const FQVDiagnosticReport& Report, EQVDiagSeverity Severity)
{
	return static_cast<std::int32_t>(std::ranges::count(Report.Findings, Severity, &FQVDiagnosticFinding::Severity));
}

FQVText FQVDiagnosticModel::GetCategoryText(EQVDiagCategory Category)
{
	switch (Category)
	{
	case EQVDiagCategory::Environment:
		return Text("CategoryEnvironment", "Environment");
	case EQVDiagCategory::ModContent:
		return Text("CategoryModContent", "Map Content");
	case EQVDiagCategory::References:
		return Text("CategoryReferences", "Asset References");
	case EQVDiagCategory::LastExport:
		return Text("CategoryLastExport", "Last Export");
	}
	return {};
}

std::string_view FQVDiagnosticModel::GetSeverityIcon(EQVDiagSeverity Severity)
{
	switch (Severity)
	{
	case EQVDiagSeverity::Pass:
		return "Icons.SuccessWithColor";
	case EQVDiagSeverity::Info:
		return "Icons.Info";
	case EQVDiagSeverity::Warning:
		return "Icons.WarningWithColor";
	case EQVDiagSeverity::Error:
		return "Icons.ErrorWithColor";
	}
	return {};
}

FQVText FQVDiagnosticModel::FormatBytes(std::int64_t Bytes)
{
	constexpr std::int64_t Kilobyte = 1024;
	constexpr std::int64_t Megabyte = Kilobyte * 1024;
	if (Bytes < Kilobyte)
	{
		return Text("BytesB", "{0} B", Bytes);
	}
	// single precision, as the numbers have always been shown
	const auto Count = static_cast<float>(Bytes);
	if (Bytes < Megabyte)
	{
		return Text("BytesKB", "{0} KB", static_cast<double>(Count * 0.0009765625F));
	}
	return Text("BytesMB", "{0} MB", static_cast<double>(Count * 9.536743e-7F));
}
