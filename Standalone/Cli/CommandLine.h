// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Cli/Console.h"
#include "Standalone/Cli/ExitCode.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <string>

namespace QVCli
{
/** What any verb may be given. */
struct FGlobalOptions
{
	std::string Project;
	std::string Engine;
	bool bVerbose = false;
	bool bQuiet = false;
	bool bJson = false;
};

/** The command line while it is parsed: verbs add themselves, and the one that is chosen leaves what is to be run. */
struct FCommandLine
{
	FConsole Console;
	FGlobalOptions Options;
	std::function<EExitCode()> Chosen;
	CLI::App App{"Cooks and packs maps for QUARVEL."};

	FCommandLine();

	/** A verb below a parent, with its one line of description and an example. Run is called once all is parsed. */
	CLI::App* AddVerb(CLI::App& Parent, const std::string& Name, const std::string& Description,
		const std::string& Example, std::function<EExitCode()> Run);
	/** A verb that only groups others. */
	CLI::App* AddGroup(const std::string& Name, const std::string& Description, const std::string& Example);
	/** `--format text|json`, for a verb that has a result. */
	void AddFormat(CLI::App& Verb);
};

/** Each adds its verb, with its options, to the line. */
void AddBaseReleaseVerb(FCommandLine& Line);
void AddCheckVerb(FCommandLine& Line);
void AddInspectVerb(FCommandLine& Line);
void AddMapsVerb(FCommandLine& Line);
void AddNewVerb(FCommandLine& Line);
void AddOpenVerb(FCommandLine& Line);
void AddPackVerb(FCommandLine& Line);
void AddPakVerb(FCommandLine& Line);
void AddPlayVerb(FCommandLine& Line);
void AddPublishVerb(FCommandLine& Line);
void AddRecoverVerb(FCommandLine& Line);
void AddRedirectorsVerb(FCommandLine& Line);
void AddReferencesVerb(FCommandLine& Line);
void AddSampleVerb(FCommandLine& Line);
void AddSettingsVerb(FCommandLine& Line);
void AddSetupVerb(FCommandLine& Line);
void AddUpdateVerb(FCommandLine& Line);
void AddWorkshopVerb(FCommandLine& Line);
} // namespace QVCli
