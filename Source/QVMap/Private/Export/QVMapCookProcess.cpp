// SPDX-License-Identifier: MIT
#include "Export/QVMapCookProcess.h"

#include "Core/QVPrintf.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVGameThread.h"
#include "Workspace/QVMapPaths.h"

namespace
{
constexpr float FractionPerLine = 0.0001f;
}

bool FQVMapCookProcess::FindEditorCmd(std::string& OutProgram, std::string& OutError)
{
	OutProgram = FQVMapPaths::GetEditorCmdPath();
	if (!FQVEngine::Get().Files->FileExists(OutProgram))
	{
		OutError = QVPrintf("UnrealEditor-Cmd.exe not found: %s", OutProgram);
		return false;
	}
	return true;
}

void FQVMapCookProcess::FinishCompilation()
{
	FQVEngine::Get().GameThread->RunOnGameThreadAndWait([] { FQVEngine::Get().Editor->FinishAllCompilation(); });
}

FQVChildRun FQVMapCookProcess::Run(
	const std::string& EditorCmd, const std::string& Arguments, const FQVCookProgress& Progress)
{
	return FQVMapChildProcess::Run(EditorCmd, Arguments, Stage, FractionPerLine, Progress);
}
