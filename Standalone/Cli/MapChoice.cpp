// SPDX-License-Identifier: MIT
#include "Standalone/Cli/MapChoice.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Standalone/Cli/Console.h"
#include "Workspace/QVMapScanner.h"

namespace QVCli
{
namespace
{
bool IsCalled(const FMapChoice& Choice, std::string_view Name)
{
	return FQVString::EqualsIgnoreCase(Choice.Mod, Name) || FQVString::EqualsIgnoreCase(Choice.Map, Name) ||
		   FQVString::EqualsIgnoreCase("/Game" + Choice.Map, Name) ||
		   FQVString::EqualsIgnoreCase(FQVPath::GetCleanFilename(Choice.Map), Name);
}
} // namespace

std::vector<FMapChoice> FindMaps(std::string_view Name)
{
	std::vector<FMapChoice> Found;
	for (const FQVModInfo& Mod : FQVMapScanner::ScanMods().Mods)
	{
		for (const FQVMapInfo& Map : Mod.Maps)
		{
			if (Name.empty() || IsCalled({Mod.Name, Map.CookPath}, Name))
			{
				Found.push_back({Mod.Name, Map.CookPath});
			}
		}
	}
	return Found;
}

void TellChoice(
	FConsole& Console, std::string_view Verb, std::string_view Name, const std::vector<FMapChoice>& Candidates)
{
	Console.Fail(Name.empty() ? QVPrintf("the project has %d maps: name one", Candidates.size())
							  : QVPrintf("'%s' has %d maps: name one by its package", Name, Candidates.size()));
	for (const FMapChoice& Each : Candidates)
	{
		Console.Say(QVPrintf("  qvmap %s %s", Verb, Each.Map));
	}
}
} // namespace QVCli
