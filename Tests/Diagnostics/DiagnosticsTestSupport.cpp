// SPDX-License-Identifier: MIT
#include "Tests/Diagnostics/DiagnosticsTestSupport.h"

namespace QVTest
{
FDiagnosticsTest::FDiagnosticsTest()
{
	Engine.Interfaces.Editor = &Editor;
	Engine.Interfaces.Dialogs = &Dialogs;
}

std::string FDiagnosticsTest::Describe(const FQVText& Text) const
{
	const std::string Key = Text.GetKey().empty() ? "" : Text.GetKey() + ": ";
	return Key + Project.Mask(Text.ToString());
}

std::string FDiagnosticsTest::Describe(const FQVDiagnosticFinding& Finding, const std::string& Indent) const
{
	constexpr std::string_view Severities[] = {"Pass", "Info", "Warning", "Error"};
	constexpr std::string_view Actions[] = {"None", "OpenFolder", "OpenFile", "BrowseToAssets", "Custom"};
	std::string Text =
		QVPrintf("%s%s %s\n", Indent, Severities[static_cast<std::size_t>(Finding.Severity)], Finding.Id.ToView());
	for (const FQVText* Each : {&Finding.Title, &Finding.Detail, &Finding.Remedy})
	{
		Text += Each->ToString().empty() ? "" : Indent + "  " + Describe(*Each) + "\n";
	}
	if (Finding.ActionKind != EQVDiagAction::None)
	{
		Text += QVPrintf("%s  [%s] %s", Indent, Describe(Finding.ActionLabel),
			Actions[static_cast<std::size_t>(Finding.ActionKind)]);
		Text += Finding.ActionPath.empty() ? "" : " " + Project.Mask(Finding.ActionPath);
		for (const FQVAssetData& Asset : Finding.ActionAssets)
		{
			Text += " " + Asset.GetObjectPath();
		}
		Text += "\n";
	}
	for (const FQVDiagnosticFinding& Child : Finding.Children)
	{
		EXPECT_EQ(Child.Category, Finding.Category);
		Text += Describe(Child, Indent + "    ");
	}
	return Text;
}

std::string FDiagnosticsTest::Describe(const FQVDiagnosticFindings& Findings) const
{
	std::string Text;
	for (const FQVDiagnosticFinding& Finding : Findings)
	{
		Text += Describe(Finding);
	}
	return Text;
}

std::string FDiagnosticsTest::Describe(const FQVDiagnosticFindings& Findings, std::string_view Id) const
{
	std::string Text;
	for (const FQVDiagnosticFinding& Finding : Findings)
	{
		Text += Finding.Id == FQVName(Id) ? Describe(Finding) : "";
	}
	return Text;
}

const FQVDiagnosticFinding& FDiagnosticsTest::Find(const FQVDiagnosticFindings& Findings, std::string_view Id)
{
	static const FQVDiagnosticFinding None;
	for (const FQVDiagnosticFinding& Finding : Findings)
	{
		if (Finding.Id == FQVName(Id))
		{
			return Finding;
		}
	}
	ADD_FAILURE() << "no finding " << Id;
	return None;
}
} // namespace QVTest
