// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"
#include "Standalone/Engine/Environment.h"
#include "Standalone/Engine/ExecutablePath.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/EngineTools/CookCommandlet.h"

/** Stands for UnrealEditor-Cmd.exe on machines without Unreal: `<project> -run=cook ...`. */
int main(int Count, char** Words)
{
	using namespace QVEngineTools;
	QVStandalone::FInterrupt::Install();
	FToolLog Log;
	Log.Display("LogInit", "This is QVMap's stand-in for UnrealEditor-Cmd: content is laid out, not converted, and the "
						   "game will not load it.");
	const std::vector<std::string> Arguments = QVStandalone::BeginProgram(Count, Words);
	const std::string EngineDir =
		FQVPath::ConvertRelativePathToFull(FQVPath::GetPath(QVStandalone::ExecutablePath()), "../..");
	return RunCook(ParseCookCommand(Arguments), EngineDir, Log);
}
