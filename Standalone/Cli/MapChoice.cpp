// SPDX-License-Identifier: MIT
#include "Standalone/Cli/MapChoice.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVFiles.h"
#include "Standalone/Cli/RegistryScan.h"
#include "Workspace/QVMapPaths.h"
#include "Workspace/QVMapScanner.h"

namespace QVCli
{
namespace
{
std::vector<FMapChoice> ListMaps()
{
	std::vector<FMapChoice> Maps;
	for (const FQVModInfo& Mod : FQVMapScanner::ScanMods().Mods)
	{
		for (const FQVMapInfo& Map : Mod.Maps)
		{
			Maps.push_back({Mod.Name, Map.CookPath});
		}
	}
	return Maps;
}

bool IsCalled(const FMapChoice& Map, std::string_view Typed)
{
	for (const std::string& Name : {Map.Mod, Map.Package, Map.GamePath(), Map.Name()})
	{
		if (FQVString::EqualsIgnoreCase(Name, Typed))
		{
			return true;
		}
	}
	return false;
}

bool FindBarePlugin(std::string_view Typed, FMapChoice& Out)
{
	const std::string Folder = FQVPath::Combine(FQVMapPaths::GetPluginsDir(), Typed);
	const bool bPlain = !Typed.empty() && Typed.find_first_of("/\\.") == std::string_view::npos;
	Out = {std::string(Typed), {}};
	return bPlain && FQVEngine::Get().Files->DirectoryExists(Folder);
}

void TellChoice(
	FConsole& Console, std::string_view Verb, const std::string& Typed, const std::vector<FMapChoice>& Candidates)
{
	Console.Fail(Typed.empty() ? QVPrintf("the project has %d maps: name one", Candidates.size())
							   : QVPrintf("'%s' has %d maps: name one by its package", Typed, Candidates.size()));
	for (const FMapChoice& Each : Candidates)
	{
		Console.Say(QVPrintf("  qvmap %s %s", Verb, Each.Package));
	}
}
} // namespace

std::string FMapChoice::Name() const
{
	return std::string(FQVPath::GetCleanFilename(Package));
}

bool ChooseMap(FSession& Session, std::string_view Verb, const std::string& Typed, FMapChoice& Out)
{
	std::vector<FMapChoice> Candidates = ListMaps();
	if (!Typed.empty())
	{
		std::erase_if(Candidates, [&](const FMapChoice& Each) { return !IsCalled(Each, Typed); });
	}
	if (Candidates.size() > 1)
	{
		TellChoice(Session.Console, Verb, Typed, Candidates);
		return false;
	}
	if (Candidates.size() == 1)
	{
		Out = Candidates.front();
		return true;
	}
	std::string Unknown = Typed;
	return Typed.empty() || FindBarePlugin(Typed, Out) || ResolveMod(Session, Unknown);
}
} // namespace QVCli
