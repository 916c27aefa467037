// SPDX-License-Identifier: MIT
#include "Standalone/Cli/CommandLine.h"
#include "Standalone/Cli/NearestWord.h"
#include "Standalone/Engine/Interrupt.h"

#include <algorithm>

namespace QVCli
{
namespace
{
std::vector<std::string> VerbNames(const CLI::App& Parent)
{
	std::vector<std::string> Names;
	for (const CLI::App* Verb : Parent.get_subcommands(nullptr))
	{
		Names.push_back(Verb->get_name());
	}
	return Names;
}

/** The word that stands where a verb should, if it is none. */
std::string UnknownVerb(const std::vector<std::string>& Verbs, const std::vector<std::string>& Words)
{
	const auto Word = std::find_if(Words.begin(), Words.end(), [](const auto& Each) { return !Each.starts_with('-'); });
	const bool bKnown = Word == Words.end() || std::find(Verbs.begin(), Verbs.end(), *Word) != Verbs.end();
	return bKnown ? std::string() : *Word;
}

EExitCode ReportWrongUse(FCommandLine& Line, const CLI::ParseError& Error, const std::vector<std::string>& Words)
{
	const std::vector<CLI::App*> Chosen = Line.App.get_subcommands();
	const std::string Unknown = Chosen.empty() ? UnknownVerb(VerbNames(Line.App), Words) : std::string();
	if (Unknown.empty())
	{
		Line.Console.Fail(Error.what());
	}
	else
	{
		const std::string Nearest = NearestWord(Unknown, VerbNames(Line.App));
		Line.Console.Fail(QVPrintf("'%s' is not a verb of qvmap%s", Unknown,
			Nearest.empty() ? std::string() : QVPrintf(". Did you mean '%s'?", Nearest)));
	}
	Line.Console.Say(QVPrintf("  see: qvmap%s --help", Chosen.empty() ? "" : " " + Chosen.front()->get_name()));
	return EExitCode::WrongUse;
}

void AddVerbs(FCommandLine& Line)
{
	AddMapsVerb(Line);
	AddBaseReleaseVerb(Line);
	AddPackVerb(Line);
	AddPakVerb(Line);
	AddSettingsVerb(Line);
	AddSampleVerb(Line);
}

EExitCode RunChosen(FCommandLine& Line)
{
	const FGlobalOptions& Options = Line.Options;
	Line.Console.SetChatter(Options.bVerbose ? EChatter::Verbose : Options.bQuiet ? EChatter::Quiet : EChatter::Normal);
	const EExitCode Code = Line.Chosen();
	if (QVStandalone::FInterrupt::IsRaised())
	{
		Line.Console.Fail("interrupted");
		return EExitCode::Interrupted;
	}
	return Code;
}

EExitCode Run(int Count, char** Words)
{
	FCommandLine Line;
	Line.App.set_version_flag("--version", "qvmap " QVMAP_VERSION);
	AddVerbs(Line);
	try
	{
		Line.App.parse(Count, Words);
	}
	catch (const CLI::Success& Asked) // help or version: printed to standard output
	{
		return static_cast<EExitCode>(Line.App.exit(Asked));
	}
	catch (const CLI::ParseError& Error)
	{
		return ReportWrongUse(Line, Error, {Words + 1, Words + Count});
	}
	return RunChosen(Line);
}
} // namespace
} // namespace QVCli

int main(int Count, char** Words)
{
	QVStandalone::FInterrupt::Install();
	return static_cast<int>(QVCli::Run(Count, Words));
}
