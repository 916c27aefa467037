// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"
#include "Standalone/Engine/EngineLocator.h"
#include "Standalone/Engine/Environment.h"
#include "Standalone/Engine/Files.h"

namespace QVStandalone
{
std::vector<FInstallRecord> ReadInstallRecords()
{
	const std::string ConfigHome = EnvironmentValue("XDG_CONFIG_HOME");
	const std::string Home = EnvironmentValue("HOME");
	const std::string Config = !ConfigHome.empty() || Home.empty() ? ConfigHome : FQVPath::Combine(Home, ".config");
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
