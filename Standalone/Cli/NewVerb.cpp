// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Interface/QVMapModWizard.h"
#include "Standalone/Cli/Session.h"
#include "Workspace/QVMapConfig.h"
#include "Workspace/QVMapPaths.h"

namespace QVCli
{
namespace
{
struct FNewOptions
{
	std::string Name;
	/** Not given: the one of the last map. */
	std::optional<std::string> Author;
	std::string Description;
};

std::string Trimmed(std::string_view Text)
{
	return std::string(FQVString::Trim(Text));
}

/** What is written for a window, on one line. */
std::string OnOneLine(const FQVText& Message)
{
	return FQVString::ReplaceAll(Message.ToString(), "\n\n", " ");
}

/** The template that the next map is copied from; empty if there is none. */
std::string FindTemplate()
{
	const std::string Configured = FQVMapConfig::GetMapTemplatePath();
	std::string File;
	return !Configured.empty() && FQVEngine::Get().Packages->DoesPackageExist(Configured, File) ? Configured
																								: std::string();
}

FQVJson ToJson(const FQVCreateModResult& Made, const std::string& Template)
{
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("project", FQVMapPaths::GetProjectFilePath())
		.Set("mod", Made.ModName)
		.Set("descriptor", FQVMapModWizard::GetModDescriptorPath(Made.ModName))
		.Set("content", FQVMapModWizard::GetModContentDir(Made.ModName))
		.Set("package", Made.MapPackagePath)
		.Set("file", FQVMapModWizard::GetMapFilePath(Made.ModName))
		.Set("template", Template);
}

void PrintText(FConsole& Console, const FQVCreateModResult& Made, const std::string& Template)
{
	const std::string& Name = Made.ModName;
	Console.Result(QVPrintf("map     %s", Made.MapPackagePath));
	Console.Result(QVPrintf("file    %s", FQVMapModWizard::GetMapFilePath(Name)));
	Console.Result(QVPrintf("assets  %s", FQVMapModWizard::GetModContentDir(Name)));
	if (!Template.empty())
	{
		Console.Say(QVPrintf("  the level is a copy of %s", Template));
	}
	else
	{
		const std::string Wanted = FQVMapConfig::GetMapTemplatePath();
		Console.Say(Wanted.empty() ? "  the level is empty: no template is set (map_template_path)"
								   : QVPrintf("  the level is empty: there is no template %s", Wanted));
	}
	Console.Say("  put everything the map uses in that folder of assets: what is left outside it gets copied into your "
				"pak");
	Console.Say(QVPrintf("  next: qvmap open %s, qvmap check %s", Name, Name));
}

void TellFailure(FSession& Session, const FQVCreateModResult& Result)
{
	Session.TellFailure(OnOneLine(Result.ErrorMessage));
	// until it is gone the name is taken
	const std::string Folder(FQVPath::GetPath(FQVMapModWizard::GetModDescriptorPath(Result.ModName)));
	if (!Result.MapPackagePath.empty())
	{
		Session.Console.Say(QVPrintf("  to try again, delete %s first", Folder));
	}
}

EExitCode MakeNew(FCommandLine& Line, const FNewOptions& Options)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	if (Session == nullptr)
	{
		return EExitCode::Failed;
	}
	const FQVCreateModRequest Request{Trimmed(Options.Name),
		Trimmed(Options.Author.value_or(FQVMapConfig::GetNewModAuthor())), Trimmed(Options.Description)};
	FQVText Refusal;
	if (!FQVMapModWizard::ValidateNewModName(Request.Name, Refusal))
	{
		Session->Console.Fail(OnOneLine(Refusal));
		return EExitCode::Failed;
	}
	if (Options.Author && !Request.Author.empty())
	{
		FQVMapConfig::SetNewModAuthor(Request.Author);
	}
	const std::string Template = FindTemplate();
	const FQVCreateModResult Result = FQVMapModWizard::CreateMod(Request);
	if (!Result.bCreated)
	{
		TellFailure(*Session, Result);
		return EExitCode::Failed;
	}
	Session->Console.Succeed();
	Line.Options.bJson ? Session->Console.Document(ToJson(Result, Template))
					   : PrintText(Session->Console, Result, Template);
	return EExitCode::Done;
}
} // namespace

void AddNewVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FNewOptions>();
	CLI::App* Verb = Line.AddVerb(Line.App, "new", "Makes a new map: a mod of its own with a starter level",
		"qvmap new Cave --author Ada --description \"A dark place\"",
		[&Line, Options] { return MakeNew(Line, *Options); });
	Verb->add_option("name", Options->Name, "Of the mod, of its folder and of its level")
		->required()
		->type_name("NAME");
	Verb->add_option("--author", Options->Author, "Who makes it (default: new_mod_author); remembered for the next")
		->type_name("TEXT");
	Verb->add_option("--description", Options->Description, "What it is")->type_name("TEXT");
	Line.AddFormat(*Verb);
}
} // namespace QVCli
