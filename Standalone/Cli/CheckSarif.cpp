// SPDX-License-Identifier: MIT
#include "Core/QVPrintf.h"
#include "Core/QVUnicode.h"
#include "Standalone/Cli/CheckReport.h"

#include <algorithm>
#include <cctype>
#include <map>

namespace QVCli
{
namespace
{
/** Bytes that may stand in a path of an address as they are; all others are escaped. */
bool IsPlain(unsigned char Byte)
{
	constexpr std::string_view Marks = "-._~/";
	return (Byte < 0x80 && std::isalnum(Byte) != 0) || Marks.find(static_cast<char>(Byte)) != std::string_view::npos;
}

std::string UriText(std::string_view Path)
{
	std::string Uri;
	for (const char Each : Path)
	{
		const auto Byte = static_cast<unsigned char>(Each);
		Uri += IsPlain(Byte) ? std::string(1, Each) : QVPrintf("%%%02X", Byte);
	}
	return Uri;
}

FQVJson TextJson(std::string_view Text)
{
	return FQVJson::Object().Set("text", FQVUnicode::Repair(Text));
}

std::string_view LevelOf(EQVDiagSeverity Severity)
{
	return Severity == EQVDiagSeverity::Error ? "error" : "warning";
}

/** The checks that were run, in the order in which they are shown; a result names its rule by its place. */
class FRules
{
public:
	explicit FRules(const FQVDiagnosticReport& Report)
	{
		for (const FQVDiagnosticFinding* Finding : InShownOrder(Report))
		{
			const std::string Id = Finding->Id.ToString();
			if (Places.emplace(Id, Places.size()).second)
			{
				Rules.Add(FQVJson::Object().Set("id", Id).Set("shortDescription", TextJson(Finding->Title.ToString())));
			}
		}
	}

	FQVJson Rules = FQVJson::Array();
	std::map<std::string, std::size_t> Places;
};

FQVJson ResultJson(const FCheckProblem& Problem, const FRules& Rules)
{
	FQVJson Result = FQVJson::Object()
						 .Set("ruleId", Problem.Id)
						 .Set("ruleIndex", Rules.Places.at(Problem.Id))
						 .Set("level", LevelOf(Problem.Severity))
						 .Set("message", TextJson(Problem.Title + ": " + Problem.Message));
	if (!Problem.File.empty())
	{
		FQVJson Artifact = FQVJson::Object().Set("uri", UriText(Problem.File)).Set("uriBaseId", "ROOT");
		FQVJson Physical = FQVJson::Object().Set("artifactLocation", std::move(Artifact));
		Result.Set("locations", FQVJson::Array().Add(FQVJson::Object().Set("physicalLocation", std::move(Physical))));
	}
	return Result;
}
} // namespace

FQVJson ToSarif(const FCheckReport& Report, std::string_view Version)
{
	FRules Rules(Report.Report);
	FQVJson Results = FQVJson::Array();
	for (const FCheckProblem& Problem : ListProblems(Report))
	{
		Results.Add(ResultJson(Problem, Rules));
	}
	const std::string Slash = Report.Root.starts_with('/') ? "" : "/";
	const std::string Root = "file://" + Slash + UriText(Report.Root) + "/";
	FQVJson Driver =
		FQVJson::Object().Set("name", "qvmap").Set("version", Version).Set("rules", std::move(Rules.Rules));
	FQVJson Run = FQVJson::Object()
					  .Set("tool", FQVJson::Object().Set("driver", std::move(Driver)))
					  .Set("originalUriBaseIds", FQVJson::Object().Set("ROOT", FQVJson::Object().Set("uri", Root)))
					  .Set("columnKind", "utf16CodeUnits")
					  .Set("results", std::move(Results));
	return FQVJson::Object()
		.Set("$schema", "https://json.schemastore.org/sarif-2.1.0.json")
		.Set("version", "2.1.0")
		.Set("runs", FQVJson::Array().Add(std::move(Run)));
}
} // namespace QVCli
