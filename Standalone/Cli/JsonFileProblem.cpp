// SPDX-License-Identifier: MIT
#include "Standalone/Cli/JsonFileProblem.h"

#include "Core/QVPrintf.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVJsonReader.h"

namespace QVCli
{
std::string JsonFileProblem(const std::string& Path)
{
	std::string Text;
	std::string Error;
	FQVJson Json;
	const FQVEngine& Engine = FQVEngine::Get();
	if (!Engine.Files->FileExists(Path) || !Engine.Files->LoadFileToString(Text, Path))
	{
		return {};
	}
	if (!Engine.JsonReader->Parse(Text, Json, Error))
	{
		return QVPrintf("%s: %s", Path, Error);
	}
	return Json.IsObject() ? std::string() : QVPrintf("%s: expected a JSON object", Path);
}
} // namespace QVCli
