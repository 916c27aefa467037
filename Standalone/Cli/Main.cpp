// SPDX-License-Identifier: MIT
#include "Core/QVString.h"
#include "Standalone/Cli/CommandLine.h"
#include "Standalone/Cli/NearestWord.h"
#include "Standalone/Cli/Terminal.h"
#include "Standalone/Engine/Environment.h"
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

/** The verb that was reached, `list` of `pak list`; the program itself if none was. */
const CLI::App& Reached(const CLI::App& App)
{
	const std::vector<CLI::App*> Chosen = App.get_subcommands();
	return Chosen.empty() ? App : Reached(*Chosen.front());
}

/** As the user types it: "qvmap pak list". */
std::string CalledAs(const CLI::App& App)
{
	return App.get_parent() == nullptr ? App.get_name() : CalledAs(*App.get_parent()) + " " + App.get_name();
}

/** Why no verb was found. */
std::string DescribeMissingVerb(const CLI::App& Parent, const std::vector<std::string>& NotUnderstood)
{
	const std::vector<std::string> Verbs = VerbNames(Parent);
	if (NotUnderstood.empty())
	{
		return QVPrintf("%s needs a verb: %s", CalledAs(Parent), FQVString::Join(Verbs, ", "));
	}
	const std::string& Word = NotUnderstood.front();
	const std::string Nearest = NearestWord(Word, Verbs);
	return QVPrintf("'%s' is not %s of %s%s", Word, Word.starts_with('-') ? "an option" : "a verb", CalledAs(Parent),
		Nearest.empty() ? std::string() : QVPrintf(". Did you mean '%s'?", Nearest));
}

EExitCode ReportWrongUse(FCommandLine& Line, const CLI::ParseError& Error)
{
	const CLI::App& Verb = Reached(Line.App);
	const bool bVerbMissing = !VerbNames(Verb).empty() && dynamic_cast<const CLI::RequiredError*>(&Error) != nullptr;
	Line.Console.Fail(bVerbMissing ? DescribeMissingVerb(Verb, Line.App.remaining(true)) : Error.what());
	Line.Console.Say(QVPrintf("  see: %s --help", CalledAs(Verb)));
	return EExitCode::WrongUse;
}

void AddVerbs(FCommandLine& Line)
{
	AddNewVerb(Line);
	AddMapsVerb(Line);
	AddOpenVerb(Line);
	AddCheckVerb(Line);
	AddBaseReleaseVerb(Line);
	AddPackVerb(Line);
	AddPlayVerb(Line);
	AddPublishVerb(Line);
	AddWorkshopVerb(Line);
	AddReferencesVerb(Line);
	AddRedirectorsVerb(Line);
	AddRecoverVerb(Line);
	AddPakVerb(Line);
	AddInspectVerb(Line);
	AddSettingsVerb(Line);
	AddSetupVerb(Line);
	AddUpdateVerb(Line);
	AddSampleVerb(Line);
}

EExitCode RunChosen(FCommandLine& Line)
{
	const FGlobalOptions& Options = Line.Options;
	Line.Console.SetChatter(Options.bVerbose ? EChatter::Verbose : Options.bQuiet ? EChatter::Quiet : EChatter::Normal);
	EExitCode Code = Line.Chosen();
	if (QVStandalone::FInterrupt::IsRaised())
	{
		Line.Console.Fail("interrupted");
		Code = EExitCode::Interrupted;
	}
	if (Code == EExitCode::Done)
	{
		Line.Console.Succeed();
	}
	if (Options.bJson && Code != EExitCode::Done)
	{
		Line.Console.EnsureDocument();
	}
	return Code;
}

EExitCode Run(std::vector<std::string> Words)
{
	FCommandLine Line;
	Line.App.set_version_flag("--version", "qvmap " QVMAP_VERSION);
	AddVerbs(Line);
	try
	{
		std::reverse(Words.begin(), Words.end()); // as the parser wants them
		Line.App.parse(std::move(Words));
	}
	catch (const CLI::Success& Asked) // help or version: printed to standard output
	{
		return static_cast<EExitCode>(Line.App.exit(Asked));
	}
	catch (const CLI::ParseError& Error)
	{
		return ReportWrongUse(Line, Error);
	}
	return RunChosen(Line);
}
} // namespace
} // namespace QVCli

int main(int Count, char** Words)
{
	QVStandalone::FInterrupt::Install();
	QVCli::PrepareTerminal();
	return static_cast<int>(QVCli::Run(QVStandalone::BeginProgram(Count, Words)));
}
