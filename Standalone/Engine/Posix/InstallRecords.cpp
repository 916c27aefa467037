// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"
#include "Standalone/Engine/EngineLocator.h"
#include "Standalone/Engine/Files.h"

#include <cstdlib>

namespace QVStandalone
{
std::vector<FInstallRecord> ReadInstallRecords()
{
	const char* ConfigHome = std::getenv("XDG_CONFIG_HOME");
	const char* Home = std::getenv("HOME");
	const std::string Config = ConfigHome != nullptr && *ConfigHome != '\0' ? std::string(ConfigHome)
							   : Home != nullptr							? FQVPath::Combine(Home, ".config")
																			: std::string();
	if (Config.empty())
	{
		return {};
	}
	FInstallRecord Record{FQVPath::Combine(Config, "Epic/UnrealEngine/Install.ini"), {}};
	std::string Text;
	if (FFiles().LoadFileToString(Text, Record.File))
	{
		Record.Engines = ParseInstallIni(Text);
	}
	return {Record};
}
} // namespace QVStandalone
