// SPDX-License-Identifier: MIT
#include "Standalone/Cli/CommandLine.h"

#include "Core/QVPrintf.h"

namespace QVCli
{
FCommandLine::FCommandLine()
{
	App.name("qvmap");
	App.require_subcommand(1);
	App.allow_windows_style_options(false); // names of packages begin with a slash
	App.option_defaults()->always_capture_default(false);
	App.add_option("--project", Options.Project, "The .uproject file or its folder (default: found upward from here)")
		->type_name("PATH");
	App.add_option("--engine", Options.Engine,
		   "The engine's folder (default: QVMAP_ENGINE_DIR, the project's engine, or the bundled one)")
		->type_name("FOLDER");
	App.add_flag("-v,--verbose", Options.bVerbose, "Show all log lines, and which engine folders were tried");
	App.add_flag("-q,--quiet", Options.bQuiet, "Show errors only");
	App.footer(QVPrintf("`qvmap <verb> --help` tells more of each.\n%s", std::string_view(ExitCodeHelp)));
}

CLI::App* FCommandLine::AddVerb(CLI::App& Parent, const std::string& Name, const std::string& Description,
	const std::string& Example, std::function<EExitCode()> Run)
{
	CLI::App* Verb = Parent.add_subcommand(Name, Description);
	Verb->fallthrough();
	Verb->footer(QVPrintf("Example:\n  %s\n\n%s", Example, std::string_view(ExitCodeHelp)));
	Verb->callback([this, Run = std::move(Run)] { Chosen = Run; });
	return Verb;
}

CLI::App* FCommandLine::AddGroup(const std::string& Name, const std::string& Description, const std::string& Example)
{
	CLI::App* Group = App.add_subcommand(Name, Description);
	Group->fallthrough();
	Group->require_subcommand(1);
	Group->footer(QVPrintf("Example:\n  %s\n\n%s", Example, std::string_view(ExitCodeHelp)));
	return Group;
}

void FCommandLine::AddFormat(CLI::App& Verb)
{
	Verb.add_option_function<std::string>(
			"--format", [this](const std::string& Format) { Options.bJson = Format == "json"; }, "text or json")
		->check(CLI::IsMember({"text", "json"}));
}
} // namespace QVCli
