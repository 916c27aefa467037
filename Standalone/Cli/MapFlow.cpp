// SPDX-License-Identifier: MIT
#include "Standalone/Cli/MapFlow.h"

#include "Core/QVPath.h"
#include "Diagnostics/QVMapPreflight.h"
#include "Engine/QVFiles.h"
#include "Export/QVMapCooker.h"
#include "Export/QVMapImportPaths.h"
#include "Export/QVMapPackLock.h"
#include "Standalone/Cli/CheckReport.h"
#include "Standalone/Cli/ProgressTasks.h"
#include "Standalone/Cli/RegistryScan.h"
#include "Workspace/QVMapConfig.h"
#include "Workspace/QVMapPaths.h"

namespace QVCli
{
namespace
{
/** What the flow reaches for is the terminal's as long as this lives. */
class FFlowSurroundings
{
public:
	FFlowSurroundings(FSession& InSession, FConsoleDialogs& Dialogs, const FMapChoice& Map)
		: Session(InSession)
		, Before(Session.Engine.Interfaces)
		, Tasks(Session.Console, "preparing")
	{
		Session.Engine.Interfaces.Dialogs = &Dialogs;
		Session.Engine.Interfaces.SlowTasks = &Tasks;
		FQVMapPreflight::SetOpenDiagnostics(
			[&Console = Session.Console, Package = Map.Package](const auto& Report) {
				Console.Tell(ToText({Report, Package, {}}));
			});
	}
	~FFlowSurroundings()
	{
		FQVMapPreflight::SetOpenDiagnostics({});
		Session.Engine.Interfaces = Before;
	}
	FFlowSurroundings(const FFlowSurroundings&) = delete;
	FFlowSurroundings& operator=(const FFlowSurroundings&) = delete;

private:
	FSession& Session;
	const FQVEngine Before;
	FProgressTasks Tasks;
};

/** A map that we cannot read may still be one that the engine can cook: that is for the user to say. */
bool OpenMap(FSession& Session, FConsoleDialogs& Dialogs, const FMapChoice& Map)
{
	if (Map.Package.empty())
	{
		return true;
	}
	const QVFormats::FStatus Opened = Session.Engine.OpenMap(Map.Package);
	if (Opened)
	{
		return true;
	}
	const auto Text = [](std::string_view Key, std::string_view Source, auto&&... Arguments)
	{ return FQVText("QVMapCli", Key, Source, Arguments...); };
	FQVCustomDialog Dialog;
	Dialog.Title = Text("MapUnreadableTitle", "Map Not Readable");
	Dialog.Body = Text("MapUnreadableBody",
		"{0} could not be opened:\n\n{1}\n\nWhat stands in it cannot be checked. Restore the file, or open and save "
		"the map in the editor.",
		Map.Name(), Opened.Error().Message);
	Dialog.Buttons = {Text("CancelAndFix", "Cancel and Fix"), Text("PackAnyway", "Pack Anyway")};
	Dialog.GoOn = 1;
	return Dialogs.ShowCustomDialog(Dialog) == Dialog.GoOn;
}

/** False, with the way out told, if a pack has changed the mod, this one or one before, and that could not be undone.
 */
bool IsPutBack(FSession& Session, const std::string& Mod)
{
	if (!Session.Engine.Interfaces.Files->FileExists(FQVMapImportPaths::GetManifestPath(Mod)))
	{
		return true;
	}
	Session.Console.Fail(QVPrintf("%s is not as it was before it was packed, and could not be put back. Its original "
								  "files are in %s",
		Mod, FQVMapImportPaths::GetJournalFolder(Mod)));
	Session.Console.Say("  fix: qvmap recover");
	return false;
}
} // namespace

EExitCode FFlowEnd::Code(bool bCompleted) const
{
	if (bPutBack && bCompleted)
	{
		return EExitCode::Done;
	}
	return bPutBack && !StoppedAt.empty() ? EExitCode::StoppedAtQuestion : EExitCode::Failed;
}

std::string DescribeUnpackable(const FMapChoice& Map)
{
	std::string Error;
	const std::string Plugins = FQVMapPaths::GetPluginsDir();
	if (!Map.Package.empty())
	{
		return Error;
	}
	if (Map.Mod.empty())
	{
		return QVPrintf("there is no map to pack: no plugin below %s holds a .umap", Plugins);
	}
	if (!FQVMapCooker::ValidatePluginName(Map.Mod, Error))
	{
		return Error;
	}
	return FQVEngine::Get().Files->FileExists(FQVPath::Combine(Plugins, Map.Mod, Map.Mod + ".uplugin"))
			   ? QVPrintf("No maps found in plugin: %s", Map.Mod)
			   : QVPrintf(
					 "No plugin found for '%s'. You can only export maps that live inside a Plugin folder.", Map.Mod);
}

FFlowEnd RunFlow(FSession& Session, const FMapChoice& Map, const FAnswers& Answers, const std::function<void()>& Start)
{
	FQVMapPackLock Lock(Map.Mod);
	if (!Lock.GetObstacle().empty())
	{
		Session.TellFailure(Lock.GetObstacle());
		return {{}, Lock.GetObstacle()};
	}
	if (!IsPutBack(Session, Map.Mod))
	{
		return {{}, "an earlier pack could not be undone", false};
	}
	if (FQVMapConfig::GetImportExternalAssets())
	{
		Lock = FQVMapPackLock(); // the import locks the mod itself
	}
	FConsoleDialogs Dialogs(Session, Answers);
	const FFlowSurroundings Surroundings(Session, Dialogs, Map);
	if (ScanRegistry(Session) && OpenMap(Session, Dialogs, Map))
	{
		Start();
		Session.Engine.GetGameThread().RunUntilIdle();
	}
	return {Dialogs.GetStoppedAt(), Dialogs.GetFailure(), IsPutBack(Session, Map.Mod)};
}
} // namespace QVCli
