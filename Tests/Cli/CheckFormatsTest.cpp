// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Tests/Cli/CheckSupport.h"
#include "Tests/Support/TestPrograms.h"

#include <map>
#include <set>

using namespace QVTest;
using FJson = nlohmann::json;
namespace fs = std::filesystem;
using FCheckFormats = FCheckTest;

namespace
{
std::size_t CountOf(std::string_view Text, std::string_view Needle)
{
	std::size_t Found = 0;
	for (std::size_t At = Text.find(Needle); At != std::string_view::npos; At = Text.find(Needle, At + 1))
	{
		++Found;
	}
	return Found;
}

int Rank(const FJson& Finding)
{
	const std::string Severity = Finding.at("severity");
	return Severity == "error" ? 3 : Severity == "warning" ? 2 : Severity == "info" ? 1 : 0;
}

using FKeys = std::set<std::string>;

FKeys KeysOf(const FJson& Object)
{
	FKeys Keys;
	for (const auto& [Key, Value] : Object.items())
	{
		Keys.insert(Key);
	}
	return Keys;
}

void ExpectFinding(const FJson& Finding)
{
	EXPECT_EQ(KeysOf(Finding),
		(FKeys{"group", "id", "severity", "title", "detail", "remedy", "command", "action", "children"}));
	for (const char* Key : {"id", "title", "detail", "remedy", "command"})
	{
		EXPECT_TRUE(Finding.at(Key).is_string()) << Key;
	}
	const FJson& Action = Finding.at("action");
	EXPECT_EQ(KeysOf(Action), (FKeys{"kind", "label", "path", "assets"}));
	EXPECT_TRUE(FKeys({"none", "open_folder", "open_file", "browse_to_assets", "custom"}).contains(Action["kind"]));
	EXPECT_TRUE(Action["label"].is_string() && Action["path"].is_string() && Action["assets"].is_array());
	EXPECT_TRUE(FKeys({"pass", "info", "warning", "error"}).contains(Finding["severity"])) << Finding;
	EXPECT_FALSE(Finding.at("id").get<std::string>().empty());
	EXPECT_TRUE(Rank(Finding) > 0 || Finding.at("remedy") == "") << Finding;
	for (const FJson& Child : Finding.at("children"))
	{
		ExpectFinding(Child);
		EXPECT_EQ(Child.at("group"), Finding.at("group"));
	}
}

/** A text, as messages and descriptions are. */
void ExpectText(const FJson& Message)
{
	EXPECT_EQ(KeysOf(Message), FKeys{"text"});
	EXPECT_TRUE(Message.at("text").is_string() && Message["text"] != "") << Message;
}

/** What the format's schema asks of a log: members that it knows, required ones, types, and places that exist. */
void ExpectSarif(const FJson& Log)
{
	EXPECT_EQ(KeysOf(Log), (FKeys{"$schema", "version", "runs"}));
	EXPECT_TRUE(Log["$schema"].is_string());
	EXPECT_EQ(Log.at("version"), "2.1.0");
	ASSERT_EQ(Log.at("runs").size(), 1U);
	const FJson& Run = Log["runs"][0];
	const FJson& Driver = Run.at("tool").at("driver");
	EXPECT_EQ(KeysOf(Run), (FKeys{"tool", "originalUriBaseIds", "columnKind", "results"}));
	EXPECT_EQ(Run["columnKind"], "utf16CodeUnits");
	EXPECT_TRUE(Run["results"].is_array()) << "also when there are none";
	EXPECT_EQ(KeysOf(Run["tool"]), FKeys{"driver"});
	EXPECT_EQ(KeysOf(Driver), (FKeys{"name", "version", "rules"}));
	EXPECT_TRUE(Driver["name"].is_string() && Driver["version"].is_string() && Driver["rules"].is_array());
	std::set<std::string> Ids;
	for (const FJson& Rule : Driver.at("rules"))
	{
		EXPECT_TRUE(Ids.insert(Rule.at("id")).second) << "each rule once";
		EXPECT_EQ(KeysOf(Rule), (FKeys{"id", "shortDescription"}));
		ExpectText(Rule["shortDescription"]);
	}
	const std::string Root = Run.at("originalUriBaseIds").at("ROOT").at("uri");
	EXPECT_TRUE(Root.starts_with("file:///") && Root.ends_with("/")) << Root;
	for (const FJson& Result : Run.at("results"))
	{
		EXPECT_EQ(Driver["rules"].at(Result.at("ruleIndex").get<std::size_t>()).at("id"), Result.at("ruleId"));
		EXPECT_TRUE(Result.at("level") == "error" || Result["level"] == "warning");
		EXPECT_EQ(KeysOf(Result), (FKeys{"ruleId", "ruleIndex", "level", "message", "locations"}));
		ExpectText(Result.at("message"));
		EXPECT_EQ(Result.at("locations").size(), 1U) << "code scanning wants one";
		for (const FJson& Location : Result["locations"])
		{
			EXPECT_EQ(KeysOf(Location), FKeys{"physicalLocation"});
			EXPECT_EQ(KeysOf(Location["physicalLocation"]), FKeys{"artifactLocation"});
			EXPECT_EQ(KeysOf(Location["physicalLocation"]["artifactLocation"]), (FKeys{"uri", "uriBaseId"}));
			const FJson& Artifact = Location.at("physicalLocation").at("artifactLocation");
			EXPECT_EQ(Artifact.at("uriBaseId"), "ROOT");
			const std::string Uri = Artifact.at("uri");
			EXPECT_EQ(Uri.find_first_of(" <>\"\\"), std::string::npos) << Uri;
			EXPECT_FALSE(Uri.starts_with("/"));
		}
	}
}
} // namespace

TEST_F(FCheckFormats, DocumentIsGroupedWorstFirst)
{
	PutMissing(2);
	PutDamaged(1);
	const FJson Document = CheckJson({"Cave"}, 1);
	EXPECT_EQ(KeysOf(Document), (FKeys{"schema_version", "mod", "map", "time", "cancelled", "errors", "warnings",
									"notes", "passes", "findings"}));
	EXPECT_EQ(Document["schema_version"], 1);
	EXPECT_EQ(Document["mod"], "Cave");
	EXPECT_EQ(Document["cancelled"], false);
	std::map<std::string, int> Counts;
	std::vector<std::string> Groups;
	int Worst = 3;
	for (const FJson& Finding : Document["findings"])
	{
		ExpectFinding(Finding);
		const std::string Group = Finding["group"];
		const bool bNew = Groups.empty() || Groups.back() != Group;
		if (bNew)
		{
			Groups.push_back(Group);
		}
		EXPECT_LE(Rank(Finding), bNew ? 3 : Worst) << Finding;
		Worst = Rank(Finding);
		++Counts[Finding["severity"]];
	}
	EXPECT_EQ(Groups, (FWords{"environment", "map_content", "references", "last_export"}));
	EXPECT_EQ(Document["errors"], Counts["error"]);
	EXPECT_EQ(Document["warnings"], Counts["warning"]);
	EXPECT_EQ(Document["notes"], Counts["info"]);
	EXPECT_EQ(Document["passes"], Counts["pass"]);
	EXPECT_EQ(FindById(Document, "Ref.Missing")->at("children").size(), 2U);
	EXPECT_EQ(FindById(Document, "Ref.Unreadable")->at("children")[0]["action"]["kind"], "open_folder");
	EXPECT_EQ(FindById(Document, "Env.BaseRelease")->at("command"), "qvmap base-release build");
}

TEST_F(FCheckFormats, SarifNamesRulesAndFilesOfTheRepository)
{
	PutDamaged(1);
	WriteBytes(Folder / "Plugins/Cave/Content/Maps/Hall.umap",
		QVFormats::BuildLevelPackage({.PackageName = "/Cave/Maps/Hall"}));
	FJson Log = FJson::parse(Check({"Cave", "--format", "sarif"}, 1).Out);
	ExpectSarif(Log);
	const auto UriOf = [&Log](const std::string& Rule)
	{
		for (const FJson& Result : Log["runs"][0]["results"])
		{
			if (Result["ruleId"] == Rule)
			{
				return Result["locations"][0]["physicalLocation"]["artifactLocation"]["uri"].get<std::string>();
			}
		}
		return std::string("none");
	};
	EXPECT_EQ(UriOf("Ref.Unreadable"), "Plugins/Cave/Content/Bad%200.uasset");
	EXPECT_EQ(UriOf("Content.LevelDoor"), "Plugins/Cave/Content/Maps/Hall.umap");
	EXPECT_EQ(Log["runs"][0]["results"][0]["level"], "error");
	fs::create_directories(Temp.Path() / ".git");
	Log = FJson::parse(Check({"Cave", "--format", "sarif"}, 1).Out);
	ExpectSarif(Log);
	EXPECT_EQ(
		UriOf("Content.LevelDoor"), "%D0%9F%D1%80%D0%B8%D0%BC%D0%B5%D1%80%201/Plugins/Cave/Content/Maps/Hall.umap");
}

TEST_F(FCheckFormats, SarifOfAMapWithNothingToTell)
{
	BuildRelease();
	QVFormats::FLevelPackageSpec Level;
	Level.PackageName = "/Cave/Maps/Hall";
	Level.Actors = QVFormats::PlayableActors();
	WriteBytes(Folder / "Plugins/Cave/Content/Maps/Hall.umap", QVFormats::BuildLevelPackage(Level));
	const FJson Log = FJson::parse(Check({"Cave", "--format", "sarif", "--fail-on", "warning"}, 0).Out);
	ExpectSarif(Log);
	EXPECT_EQ(Log["runs"][0]["results"], FJson::array());
	EXPECT_GT(Log["runs"][0]["tool"]["driver"]["rules"].size(), 20U) << "the checks that passed";
}

TEST_F(FCheckFormats, AnnotationsTenOfAKindAndEscaped)
{
	PutMissing(14);
	PutDamaged(12);
	Put("Plugins/Cave/Content/A,b:c%d.uasset", "no package");
	const std::string Out = Check({"Cave", "--format", "github"}, 1).Out;
	EXPECT_EQ(CountOf(Out, "::error "), 10U);
	EXPECT_EQ(CountOf(Out, "::warning "), 10U);
	EXPECT_LT(Out.rfind("::error "), Out.find("::warning "));
	EXPECT_NE(Out.find("file=Plugins/Cave/Content/A%2Cb%3Ac%25d.uasset,title=Packages readable::"), std::string::npos)
		<< Out;
	EXPECT_EQ(CountOf(Out, "\n"), 21U) << Out;
	EXPECT_TRUE(Out.ends_with(", 5 errors not annotated, 6 warnings not annotated\n")) << Out;
}

TEST_F(FCheckFormats, PageIsOneFileAndSafe)
{
	QV_SKIP_ON_WINDOWS("no file can have such a name here");
	Put("Plugins/Cave/Content/<script>alert(1)<&'\x1b.uasset", "no package");
	const std::string Page = Check({"Cave", "--format", "html"}, 1).Out;
	EXPECT_TRUE(Page.starts_with("<!DOCTYPE html>\n") && Page.ends_with("</html>\n"));
	for (const char* Never : {"<script", "src=", "href=", "http://", "https://", "url(", "@import", "\x1b"})
	{
		EXPECT_EQ(Page.find(Never), std::string::npos) << Never;
	}
	EXPECT_NE(Page.find("&lt;script&gt;alert(1)&lt;&amp;&#39;\\x1b.uasset"), std::string::npos);
	for (const char* Needed :
		{"name=\"viewport\"", "prefers-color-scheme:dark", "@media print", "details::details-content", "lang=\"en\""})
	{
		EXPECT_NE(Page.find(Needed), std::string::npos) << Needed;
	}
	for (const char* Tag : {"article", "details", "summary", "h2", "h3", "p", "main", "ul", "li"})
	{
		const std::string Name = Tag;
		EXPECT_EQ(CountOf(Page, "<" + Name + ">") + CountOf(Page, "<" + Name + " "), CountOf(Page, "</" + Name + ">"))
			<< Tag;
	}
}
