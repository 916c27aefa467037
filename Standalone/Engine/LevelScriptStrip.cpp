// SPDX-License-Identifier: MIT
#include "Standalone/Engine/LevelScriptStrip.h"

#include "Core/QVJson.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVClock.h"
#include "Engine/QVEngine.h"
#include "Engine/QVProcesses.h"
#include "Engine/QVProject.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/OsFile.h"
#include "Standalone/Engine/OsPath.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
constexpr double PollSeconds = 0.05;
constexpr std::size_t MostLines = 10;
constexpr std::string_view DispatcherSuffix = "__DelegateSignature";

constexpr std::string_view ScriptHead = R"(# Written by QVMap: takes the code out of one Level Blueprint.
import unreal


def take_out(name):
    graph = unreal.BlueprintEditorLibrary.find_graph(blueprint, name)
    if graph is None:
        raise RuntimeError("the Level Blueprint has no graph " + name)
    unreal.BlueprintEditorLibrary.remove_graph(blueprint, graph)


)";
constexpr std::string_view ScriptTail = R"(unreal.BlueprintEditorLibrary.compile_blueprint(blueprint)
if not unreal.EditorLoadingAndSavingUtils.save_packages([blueprint.get_outermost()], False):
    raise RuntimeError("the map could not be saved")
)";

std::string EngineFile(std::string_view Inner)
{
	return FQVPath::Combine(FQVEngine::Get().Project->EngineDir(), Inner);
}

std::string EditorProgram()
{
	return EngineFile("Binaries/Win64/UnrealEditor-Cmd.exe");
}

/** JSON's escapes are Python's, too. */
std::string Quoted(std::string_view Text)
{
	return FQVJson(Text).ToPrettyString();
}

std::string Arguments(std::string_view Script)
{
	return QVPrintf("\"%s\" -run=pythonscript -script=\"%s\" -unattended -nosplash -nullrhi -stdout "
					"-EnablePlugins=PythonScriptPlugin",
		FQVEngine::Get().Project->GetProjectFilePath(), Script);
}

struct FChildEnd
{
	bool bStarted = false;
	int Code = -1;
	std::string Output;
};

FChildEnd RunChild(const std::string& Program, const std::string& CommandLine)
{
	FChildEnd End;
	IQVProcesses& Processes = *FQVEngine::Get().Processes;
	FQVPipe Pipe = Processes.CreatePipe();
	FQVProcHandle Child = Processes.CreateProc(Program, CommandLine, Pipe);
	End.bStarted = Child.IsValid();
	if (End.bStarted)
	{
		while (Processes.IsProcRunning(Child))
		{
			End.Output += Processes.ReadPipe(Pipe);
			Processes.Sleep(PollSeconds);
		}
		End.Output += Processes.ReadPipe(Pipe);
		Processes.GetProcReturnCode(Child, End.Code);
		Processes.CloseProc(Child);
	}
	Processes.ClosePipe(Pipe);
	return End;
}

/** What the child itself gives as a reason to distrust it. */
std::string WhatFailed(const FChildEnd& End)
{
	if (FInterrupt::IsRaised())
	{
		return "interrupted";
	}
	if (!End.bStarted)
	{
		return QVPrintf("%s could not be started", EditorProgram());
	}
	return End.Code != 0 ? QVPrintf("%s ended with code %d", EditorProgram(), End.Code) : std::string();
}

std::string_view AsText(const std::vector<std::byte>& Bytes)
{
	return {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()};
}

std::string LastLines(std::string_view Output)
{
	const std::vector<std::string_view> Lines = FQVString::NonEmptyLines(Output);
	std::string Text;
	for (std::size_t Line = Lines.size() > MostLines ? Lines.size() - MostLines : 0; Line < Lines.size(); ++Line)
	{
		Text.append("\n  ").append(Lines[Line]);
	}
	return Text.empty() ? Text : "\nUnreal Editor's last lines:" + Text;
}
} // namespace

FLevelScriptStrip::FLevelScriptStrip(const FLevelScriptFile& InBefore)
	: Before(InBefore)
	, File(InBefore.Package->File)
	, BackupDir(FQVPath::Combine(FQVEngine::Get().Project->ProjectDir(), "Saved/QVPak/Backup",
		  "LevelBlueprint-" + FQVEngine::Get().Clock->Now().ToString()))
	, Copy(FQVPath::Combine(BackupDir, File.substr(FQVEngine::Get().Project->ProjectDir().size() + 1)))
	, Script(FQVPath::Combine(FQVEngine::Get().Project->ProjectDir(), "Saved/QVPak/Temp/StripLevelBlueprint.py"))
{
}

bool FLevelScriptStrip::HasEngine()
{
	return FFiles().FileExists(EngineFile("Plugins/Experimental/PythonScriptPlugin/PythonScriptPlugin.uplugin"));
}

std::string FLevelScriptStrip::WhatPrevents(const FLevelScriptFile& File)
{
	const std::string& Path = File.Package->File;
	if (!FFiles().FileExists(EditorProgram()))
	{
		return QVPrintf("%s is not there", EditorProgram());
	}
	if (!FQVString::StartsWithIgnoreCase(Path, FQVEngine::Get().Project->ProjectDir() + "/"))
	{
		return QVPrintf("%s lies outside the project", Path);
	}
	if (IsMarkedReadOnly(ToOsPath(Path)))
	{
		return QVPrintf("%s is marked read-only", Path);
	}
	if (File.GetGraphs().empty())
	{
		return QVPrintf("%s holds none of its graphs", Path);
	}
	for (const std::string& Function : File.GetFunctions())
	{
		if (FQVString::EndsWithIgnoreCase(Function, DispatcherSuffix))
		{
			return QVPrintf("its event dispatcher %s is code, too, and can only be deleted by hand",
				Function.substr(0, Function.size() - DispatcherSuffix.size()));
		}
	}
	return {};
}

std::string FLevelScriptStrip::MakeScript(const FLevelScriptFile& File, std::span<const std::string> Graphs)
{
	std::string Text(ScriptHead);
	Text += QVPrintf("if unreal.EditorLoadingAndSavingUtils.load_map(%s) is None:\n"
					 "    raise RuntimeError(\"the map could not be loaded\")\n"
					 "blueprint = unreal.find_object(None, %s)\n"
					 "if blueprint is None:\n"
					 "    raise RuntimeError(\"the map has no Level Blueprint\")\n",
		Quoted(File.Package->Name), Quoted(File.GetBlueprintPath()));
	for (const std::string& Graph : Graphs)
	{
		Text += QVPrintf("take_out(%s)\n", Quoted(Graph));
	}
	return Text.append(ScriptTail);
}

FStatus FLevelScriptStrip::Run(std::span<const std::string> Graphs)
{
	if (const std::string Error = Prepare(Graphs); !Error.empty())
	{
		return FError{Error};
	}
	LogEngine(EQVLogVerbosity::Log, "Unreal Editor is started to take the code out of the Level Blueprint of %s",
		Before.Package->Name);
	const FChildEnd End = RunChild(EditorProgram(), Arguments(Script));
	std::string Wrong = WhatFailed(End);
	Wrong = Wrong.empty() ? WhatIsWrong() : Wrong;
	if (!Wrong.empty())
	{
		return FError{QVPrintf("%s. %s%s", Wrong, PutBack(), LastLines(End.Output))};
	}
	LogEngine(EQVLogVerbosity::Log, "The Level Blueprint of %s has no code any more. To undo, copy %s to %s",
		Before.Package->Name, Copy, File);
	return Success();
}

/** Keeps the copy and writes the script. */
std::string FLevelScriptStrip::Prepare(std::span<const std::string> Graphs) const
{
	if (FFiles().FileExists(Copy))
	{
		return QVPrintf("%s is there already", Copy);
	}
	std::error_code Error = MakeFolders(ToOsPath(Copy).parent_path());
	Error = Error ? Error : ReplaceFile(ToOsPath(Copy), AsText(Before.Package->Bytes));
	if (Error)
	{
		return QVPrintf("%s could not be kept as %s: %s", File, Copy, Error.message());
	}
	Error = MakeFolders(ToOsPath(Script).parent_path());
	Error = Error ? Error : ReplaceFile(ToOsPath(Script), MakeScript(Before, Graphs));
	return Error ? QVPrintf("%s could not be written: %s", Script, Error.message()) : std::string();
}

/** Reads what the editor has saved. */
std::string FLevelScriptStrip::WhatIsWrong() const
{
	const auto After = FLevelScriptFile::Read(Before.Package->Name, File);
	if (!After)
	{
		return QVPrintf("what Unreal Editor has saved cannot be read: %s", After.Error().Message);
	}
	if (After->Package->Bytes == Before.Package->Bytes)
	{
		return "Unreal Editor has saved nothing";
	}
	if (const std::vector<std::string> Left = After->GetFunctions(); !Left.empty())
	{
		return QVPrintf("what Unreal Editor has saved still has the function(s) %s", FQVString::Join(Left, ", "));
	}
	const std::vector<std::string> Wanted = Before.GetActors();
	const std::vector<std::string> Found = After->GetActors();
	std::vector<std::string> Lost;
	std::set_difference(Wanted.begin(), Wanted.end(), Found.begin(), Found.end(), std::back_inserter(Lost));
	return Lost.empty() ? std::string()
						: QVPrintf("what Unreal Editor has saved lost the actor(s) %s", FQVString::Join(Lost, ", "));
}

/** A sentence on what came of it. */
std::string FLevelScriptStrip::PutBack() const
{
	std::vector<std::byte> Now;
	const bool bSame = FFiles().LoadFileToArray(Now, File) && Now == Before.Package->Bytes;
	if (const std::error_code Error = bSame ? std::error_code() : CopyFileOver(ToOsPath(File), ToOsPath(Copy)))
	{
		return QVPrintf("%s could not be put back: %s; as it was it lies at %s", File, Error.message(), Copy);
	}
	RemoveTree(ToOsPath(BackupDir)); // tells nothing that the map does not
	return "The map's file is as it was";
}
} // namespace QVStandalone
