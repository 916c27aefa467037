// SPDX-License-Identifier: MIT
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Standalone/Cli/CheckReport.h"
#include "Standalone/Cli/InspectReport.h"

namespace QVCli
{
namespace
{
constexpr std::string_view Style = R"(
:root{color-scheme:light dark;--page:#f6f7f9;--card:#fff;--text:#1c2126;--soft:#59636e;--line:#d8dee4;
--error:#b42318;--warning:#8a5a00;--info:#0b5cad;--pass:#1a7f37}
@media (prefers-color-scheme:dark){:root{--page:#14171b;--card:#1d2127;--text:#e6e9ed;--soft:#9aa5b1;--line:#343b44;
--error:#ff8077;--warning:#e3b341;--info:#79b8ff;--pass:#56d364}}
*{box-sizing:border-box}
body{margin:0 auto;padding:1rem;max-width:54rem;background:var(--page);color:var(--text);
font:16px/1.45 system-ui,"Segoe UI",Roboto,sans-serif;overflow-wrap:anywhere}
h1{font-size:1.5rem;margin:.2rem 0}
h2{font-size:1.05rem;margin:1.6rem 0 .5rem;color:var(--soft)}
h3{font-size:1rem;margin:0}
header p{margin:.1rem 0;color:var(--soft)}
.counts{display:flex;flex-wrap:wrap;gap:.5rem;margin:.8rem 0;padding:0;list-style:none}
.counts li{padding:.2rem .7rem;border:1px solid var(--line);border-radius:1rem;background:var(--card)}
article{padding:.7rem .9rem;margin:.5rem 0;background:var(--card);border:1px solid var(--line);
border-left:4px solid var(--mark);border-radius:6px}
article article{margin:.5rem 0 0;padding:.5rem .7rem;background:none}
.error{--mark:var(--error)}.warning{--mark:var(--warning)}.info{--mark:var(--info)}.pass{--mark:var(--pass)}
.word{color:var(--mark);font-size:.8rem;font-weight:600;text-transform:uppercase;letter-spacing:.04em}
.detail,.remedy,.command{margin:.25rem 0 0;white-space:pre-line}
.detail{color:var(--soft)}
code{font:.9em ui-monospace,Consolas,monospace}
summary{cursor:pointer;margin-top:.3rem;padding:.2rem 0}
@media (max-width:30rem){body{padding:.7rem;font-size:15px}article{padding:.6rem .7rem}}
@media print{:root{color-scheme:light;--page:#fff;--card:#fff;--text:#000;--soft:#333;--line:#999;
--error:#b42318;--warning:#8a5a00;--info:#0b5cad;--pass:#1a7f37}
body{max-width:none;padding:0;font-size:10pt}h2,h3,summary,.word{break-after:avoid-page}
article{print-color-adjust:exact}article:not(:has(article)){break-inside:avoid-page}
article details::details-content{content-visibility:visible;height:auto}}
)";

std::string EscapeHtml(std::string_view Text)
{
	std::string Result;
	for (const char Letter : Text)
	{
		switch (Letter)
		{
		case '&':
			Result += "&amp;";
			break;
		case '<':
			Result += "&lt;";
			break;
		case '>':
			Result += "&gt;";
			break;
		case '"':
			Result += "&quot;";
			break;
		case '\'':
			Result += "&#39;";
			break;
		default:
			Result += Letter;
		}
	}
	return Result;
}

/** Its lines stay lines; whatever else is no letter is told by its number. */
std::string Safe(std::string_view Text)
{
	std::vector<std::string> Lines;
	for (const std::string_view Line : FQVString::NonEmptyLines(Text))
	{
		Lines.push_back(EscapeHtml(EscapeControls(Line)));
	}
	return FQVString::Join(Lines, "\n");
}

std::string Paragraph(std::string_view Class, const std::string& SafeText)
{
	return SafeText.empty() ? "" : QVPrintf("<p class=\"%s\">%s</p>\n", Class, SafeText);
}

std::string FindingHtml(const FQVDiagnosticFinding& Finding, const std::string& Mod);

/** Many rows stand behind a click; paper shows them all. */
std::string ChildrenHtml(const FQVDiagnosticFinding& Finding, const std::string& Mod)
{
	constexpr std::size_t MostOpen = 12;
	std::string Rows;
	for (const FQVDiagnosticFinding& Child : Finding.Children)
	{
		Rows += FindingHtml(Child, Mod);
	}
	return Finding.Children.empty()
			   ? ""
			   : QVPrintf("<details%s><summary>%d in detail</summary>\n%s</details>\n",
					 Finding.Children.size() <= MostOpen ? " open" : "", Finding.Children.size(), Rows);
}

std::string FindingHtml(const FQVDiagnosticFinding& Finding, const std::string& Mod)
{
	constexpr std::string_view Words[] = {"OK", "Note", "Warning", "Error"};
	const std::string Remedy = Safe(Finding.Remedy.ToString());
	const std::string Command = Safe(CommandFor(Finding, Mod));
	return QVPrintf("<article class=\"%s\" title=\"%s\">\n<span class=\"word\">%s</span>\n<h3>%s</h3>\n",
			   SeverityWord(Finding.Severity), Safe(Finding.Id.ToView()),
			   Words[static_cast<std::size_t>(Finding.Severity)], Safe(Finding.Title.ToString())) +
		   Paragraph("detail", Safe(Finding.Detail.ToString())) +
		   Paragraph("remedy", Remedy.empty() ? "" : "<b>What to do:</b> " + Remedy) +
		   Paragraph("command", Command.empty() ? "" : "<code>" + Command + "</code>") + ChildrenHtml(Finding, Mod) +
		   "</article>\n";
}

/** A group: what asks for something first, and what passed behind a click. */
std::string GroupHtml(const FQVDiagnosticReport& Report, EQVDiagCategory Category)
{
	std::string Open;
	std::string Passed;
	std::size_t PassCount = 0;
	for (const FQVDiagnosticFinding* Finding : FQVDiagnosticModel::WorstFirst(Report, Category))
	{
		const bool bPass = Finding->Severity == EQVDiagSeverity::Pass;
		PassCount += bPass ? 1 : 0;
		(bPass ? Passed : Open) += FindingHtml(*Finding, Report.ModName);
	}
	if (Open.empty() && Passed.empty())
	{
		return {};
	}
	const std::string Heading = Safe(FQVDiagnosticModel::GetCategoryText(Category).ToString());
	return QVPrintf("<h2>%s</h2>\n", Heading) + Open +
		   (Passed.empty() ? std::string()
						   : QVPrintf("<details><summary>%d passed</summary>\n%s</details>\n", PassCount, Passed));
}

std::string HeadHtml(const FCheckReport& Report, const std::string& Title)
{
	return QVPrintf("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
					"<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
					"<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
					"style-src 'unsafe-inline'\">\n<title>%s</title>\n<style>%s</style>\n</head>\n<body>\n"
					"<header>\n<h1>%s</h1>\n",
			   Title, Style, Title) +
		   Paragraph("map", Safe(Report.Map)) + Paragraph("time", Safe(Report.Report.Timestamp.ToDisplayText())) +
		   "</header>\n";
}

std::string CountsHtml(const FQVDiagnosticReport& Report)
{
	std::string Items;
	const std::string Counts = FCheckCounts(Report).ToString() + (Report.bCancelled ? ", cancelled" : "");
	for (std::size_t Begin = 0; Begin < Counts.size();)
	{
		const std::size_t End = std::min(Counts.find(", ", Begin), Counts.size());
		Items += QVPrintf("<li>%s</li>", std::string_view(Counts).substr(Begin, End - Begin));
		Begin = End + 2;
	}
	return QVPrintf("<ul class=\"counts\">%s</ul>\n", Items);
}
} // namespace

std::string ToHtml(const FCheckReport& Report)
{
	const std::string& Mod = Report.Report.ModName;
	const std::string Title = Mod.empty() ? "No map" : "Check of " + Safe(Mod);
	std::string Html = HeadHtml(Report, Title) + CountsHtml(Report.Report) + "<main>\n";
	for (const EQVDiagCategory Category : {EQVDiagCategory::Environment, EQVDiagCategory::ModContent,
			 EQVDiagCategory::References, EQVDiagCategory::LastExport})
	{
		Html += GroupHtml(Report.Report, Category);
	}
	return Html + "</main>\n</body>\n</html>\n";
}
} // namespace QVCli
