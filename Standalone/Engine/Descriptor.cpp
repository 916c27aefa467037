// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Descriptor.h"

#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/JsonReader.h"

namespace QVStandalone
{
std::optional<FQVJson> LoadDescriptor(const std::string& Path)
{
	std::string Text;
	if (!FFiles().LoadFileToString(Text, Path))
	{
		return std::nullopt;
	}
	FQVJson Json;
	std::string Error;
	if (!FJsonReader().Parse(Text, Json, Error))
	{
		LogEngine(EQVLogVerbosity::Warning, "%s: %s", Path, Error);
		return std::nullopt;
	}
	if (!Json.IsObject())
	{
		LogEngine(EQVLogVerbosity::Warning, "%s: expected a JSON object", Path);
		return std::nullopt;
	}
	return Json;
}
} // namespace QVStandalone
