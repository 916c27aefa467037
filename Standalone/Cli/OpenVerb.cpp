// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"
#include "Engine/QVFiles.h"
#include "Engine/QVProcesses.h"
#include "Standalone/Cli/MapChoice.h"
#include "Standalone/Cli/Session.h"
#include "Workspace/QVMapPaths.h"

namespace QVCli
{
namespace
{
EExitCode TellHow(FSession& Session, const FMapChoice& Map, const std::string& Editor)
{
	Session.Console.Fail(QVPrintf("there is no %s to open %s with", Editor, Map.Package));
	Session.Console.Say(
		QVPrintf("  name an installed engine with --engine, or open %s in Unreal Editor and choose Open Map > %s there",
			FQVMapPaths::GetProjectFilePath(), Map.Name()));
	return EExitCode::Failed;
}

EExitCode OpenInEditor(FCommandLine& Line, const std::string& Typed)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	FMapChoice Map;
	if (Session == nullptr || !ChooseMap(*Session, "open", Typed, Map))
	{
		return EExitCode::Failed;
	}
	if (Map.Package.empty())
	{
		Session->Console.Fail(QVPrintf("%s holds no map: see qvmap maps", Map.Mod.empty() ? "the project" : Map.Mod));
		return EExitCode::Failed;
	}
	const std::string Editor = FQVPath::Combine(FQVPath::GetPath(FQVMapPaths::GetEditorCmdPath()), "UnrealEditor.exe");
	if (!FQVEngine::Get().Files->FileExists(Editor))
	{
		return TellHow(*Session, Map, Editor);
	}
	const std::string Arguments = QVPrintf("\"%s\" %s", FQVMapPaths::GetProjectFilePath(), Map.Package);
	if (!FQVEngine::Get().Processes->CreateDetachedProc(Editor, Arguments, FQVMapPaths::GetProjectDir()).IsValid())
	{
		Session->TellFailure(QVPrintf("%s could not be started", Editor));
		return EExitCode::Failed;
	}
	if (Line.Options.bJson)
	{
		Session->Console.Document(FQVJson::Object()
									  .Set("schema_version", 1)
									  .Set("project", FQVMapPaths::GetProjectFilePath())
									  .Set("package", Map.Package)
									  .Set("editor", Editor));
		return EExitCode::Done;
	}
	Session->Console.Result(QVPrintf("opening  %s", Map.Package));
	Session->Console.Result(QVPrintf("editor   %s", Editor));
	return EExitCode::Done;
}
} // namespace

void AddOpenVerb(FCommandLine& Line)
{
	const auto Typed = std::make_shared<std::string>();
	CLI::App* Verb = Line.AddVerb(Line.App, "open", "Opens a map in the installed Unreal Editor",
		"qvmap open Cave --engine \"C:/Program Files/Epic Games/UE_5.4\"",
		[&Line, Typed] { return OpenInEditor(Line, *Typed); });
	Verb->add_option("map", *Typed, "A map or its package; or a mod with one map")->required()->type_name("MAP");
	Line.AddFormat(*Verb);
}
} // namespace QVCli
