// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"

#include "Core/QVString.h"

#include <fstream>
#include <regex>
#include <set>

using namespace QVTest;

namespace
{
constexpr std::string_view ExitCodes =
	"Exit codes: 0 done, 1 failed or findings, 2 wrong use, 3 stopped at a question, 130 interrupted.\n";

class FUsage : public FCliTest
{
protected:
	/** All that can be called, from each page of help to the pages of the verbs that it names. Looks at them all. */
	std::set<std::string> ReadHelp(const FWords& Verb) const
	{
		FWords Words = Verb;
		Words.push_back("--help");
		const std::string Called = FQVString::Join(Verb, " ");
		const FProgramEnd End = Run(Words);
		SCOPED_TRACE("qvmap " + Called + " --help");
		EXPECT_EQ(End.Code, 0);
		EXPECT_EQ(End.Err, "");
		EXPECT_TRUE(End.Out.ends_with(ExitCodes)) << End.Out;
		EXPECT_TRUE(Verb.empty() || End.Out.find("Example:\n  qvmap " + Called) != std::string::npos) << End.Out;

		static const std::regex Row("\n  ([a-z][a-z-]*) {2,}[A-Z]");
		const std::size_t Table = End.Out.find("\nSubcommands:\n");
		std::set<std::string> Leaves = Table == std::string::npos ? std::set{Called} : std::set<std::string>();
		if (End.Out.find("\nPositionals:\n") != std::string::npos)
		{
			Leaves.insert(Called); // can be called itself, too
		}
		const std::string Rows = Table == std::string::npos ? "" : End.Out.substr(Table);
		for (std::sregex_iterator Each(Rows.begin(), Rows.end(), Row), Last; Each != Last; ++Each)
		{
			Words.back() = (*Each)[1];
			Leaves.merge(ReadHelp(Words));
		}
		return Leaves;
	}

	/** From rows such as "| `settings list`, `get` |": there the later ones are verbs of the same group. */
	static std::set<std::string> ReadTable(const std::filesystem::path& File)
	{
		static const std::regex Cell("^\\| (`[^|]*`) \\|");
		static const std::regex Name("`([a-z -]*[a-z])[^`]*`");
		std::set<std::string> Verbs;
		std::ifstream In(File);
		std::smatch Found;
		for (std::string Line; std::getline(In, Line);)
		{
			std::string Group;
			const std::string Names = std::regex_search(Line, Found, Cell) ? Found[1].str() : std::string();
			for (std::sregex_iterator Each(Names.begin(), Names.end(), Name), Last; Each != Last; ++Each)
			{
				const std::string Verb = (*Each)[1];
				Verbs.insert(Group + Verb);
				Group = Group.empty() ? Verb.substr(0, Verb.find(' ') + 1) : Group;
			}
		}
		return Verbs;
	}
};
} // namespace

TEST_F(FUsage, EveryVerbHasHelpAndStandsInTheReadme)
{
	EXPECT_EQ(ReadHelp({}), ReadTable(std::filesystem::path(QVMAP_SOURCE_DIR) / "README.md"));
	EXPECT_TRUE(std::regex_match(Run({"--version"}).Out, std::regex("qvmap [0-9]+\\.[0-9]+\\.[0-9]+\n")));
}

TEST_F(FUsage, WrongUseIsToldWithTheWayOut)
{
	const struct
	{
		FWords Words;
		const char* Error;
	} Cases[] = {
		{{}, "qvmap needs a verb: new, maps, open, check, base-release, pack, play, publish, workshop, references, "
			 "redirectors, recover, "
			 "pak, "
			 "inspect, "
			 "settings, "
			 "setup, update, sample\n  "
			 "see: qvmap --help\n"},
		{{"pakc"}, "'pakc' is not a verb of qvmap. Did you mean 'pak'?\n  see: qvmap --help\n"},
		{{"share", "now"}, "'share' is not a verb of qvmap\n  see: qvmap --help\n"},
		{{"--project", "X", "mapps"}, "'mapps' is not a verb of qvmap. Did you mean 'maps'?\n  see: qvmap --help\n"},
		{{"--loud"}, "'--loud' is not an option of qvmap\n  see: qvmap --help\n"},
		{{"base-release"}, "qvmap base-release needs a verb: status, build\n  see: qvmap base-release --help\n"},
		{{"pak", "verfy", "x.pak"},
			"'verfy' is not a verb of qvmap pak. Did you mean 'verify'?\n  see: qvmap pak --help\n"},
		{{"pack", "Cave", "--answer", "Yes"},
			"--answer: 'Yes' is no KEY=CHOICE, such as PreflightTitle=PackAnyway\n  see: qvmap pack --help\n"},
		{{"settings", "set", "verbose_logging"}, "value is required\n  see: qvmap settings set --help\n"},
		{{"pak", "extract", "a.pak"}, "folder is required\n  see: qvmap pak extract --help\n"},
		{{"maps", "--loud"}, "The following argument was not expected: --loud\n  see: qvmap maps --help\n"},
		{{"pack", "Cave", "Harbor"}, "The following argument was not expected: Harbor\n  see: qvmap pack --help\n"},
		{{"maps", "--format", "xml"}, "--format: xml not in {text,json}\n  see: qvmap maps --help\n"},
		{{"maps", "--project"}, "--project: 1 required PATH missing\n  see: qvmap maps --help\n"},
		{{"settings", "reset"}, "name the setting to reset, or --all\n"},
		{{"settings", "reset", "verbose_logging", "--all"}, "name the setting to reset, or --all\n"},
	};
	for (const auto& Case : Cases)
	{
		Expect(Case.Words, 2, "", std::string("error: ") + Case.Error);
	}

	EnterSample();
	Expect({"settings", "get", "verbose_loging"}, 2, "",
		"error: there is no setting 'verbose_loging'. Did you mean 'verbose_logging'?\n");
	Expect(
		{"settings", "set", "colour", "red"}, 2, "", "error: there is no setting 'colour': see qvmap settings list\n");
	Expect({"settings", "set", "verbose_logging", "maybe"}, 2, "",
		"error: verbose_logging takes true or false, not 'maybe'\n");
	EXPECT_FALSE(std::filesystem::exists(Folder / "Saved/QVPak"));
}
