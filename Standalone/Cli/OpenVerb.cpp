// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"
#include "Engine/QVFiles.h"
#include "Engine/QVProcesses.h"
#include "Standalone/Cli/MapChoice.h"
#include "Standalone/Cli/RegistryScan.h"
#include "Standalone/Cli/Session.h"
#include "Workspace/QVMapPaths.h"

namespace QVCli
{
namespace
{
/** Empty, with the error told, unless exactly one map is meant. */
std::string ResolveMap(FSession& Session, const std::string& Typed)
{
	const std::vector<FMapChoice> Found = FindMaps(Typed);
	if (Found.size() == 1)
	{
		return Found.front().Map;
	}
	std::string Unknown = Typed;
	Found.empty() ? static_cast<void>(ResolveMod(Session, Unknown)) // says so
				  : TellChoice(Session.Console, "open", Typed, Found);
	return {};
}

EExitCode TellHow(FSession& Session, const std::string& Map, const std::string& Editor)
{
	Session.Console.Fail(QVPrintf("there is no %s to open %s with", Editor, Map));
	Session.Console.Say(
		QVPrintf("  name an installed engine with --engine, or open %s in Unreal Editor and choose Open Map > %s there",
			FQVMapPaths::GetProjectFilePath(), FQVPath::GetCleanFilename(Map)));
	return EExitCode::Failed;
}

EExitCode OpenInEditor(FCommandLine& Line, const std::string& Typed)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	const std::string Map = Session != nullptr ? ResolveMap(*Session, Typed) : std::string();
	if (Map.empty())
	{
		return EExitCode::Failed;
	}
	const std::string Editor = FQVPath::Combine(FQVPath::GetPath(FQVMapPaths::GetEditorCmdPath()), "UnrealEditor.exe");
	if (!FQVEngine::Get().Files->FileExists(Editor))
	{
		return TellHow(*Session, Map, Editor);
	}
	const std::string Arguments = QVPrintf("\"%s\" %s", FQVMapPaths::GetProjectFilePath(), Map);
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
									  .Set("package", Map)
									  .Set("editor", Editor));
		return EExitCode::Done;
	}
	Session->Console.Result(QVPrintf("opening  %s", Map));
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
