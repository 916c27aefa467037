// SPDX-License-Identifier: MIT
#include "Standalone/Cli/RegistryScan.h"

#include "Core/QVString.h"
#include "Standalone/Cli/NearestWord.h"
#include "Standalone/Cli/Session.h"
#include "Workspace/QVMapScanner.h"

namespace QVCli
{
bool ScanRegistry(FSession& Session)
{
	QVStandalone::FAssetRegistry& Registry = Session.Engine.GetAssetRegistry();
	Registry.StartScan();
	return Registry.FinishScan(
		[&Session](std::size_t Done, std::size_t Total)
		{
			const float Fraction = Total == 0 ? 0.0F : static_cast<float>(Done) / static_cast<float>(Total);
			Session.Console.Progress("scanning", Fraction, QVPrintf("%d of %d packages", Done, Total));
		});
}

bool ScanRegistryOnce(FSession& Session)
{
	Session.Engine.GetAssetRegistry().TrustLastScan();
	return ScanRegistry(Session);
}

bool ResolveMod(FSession& Session, std::string& MapOrMod)
{
	const FQVScanResult Scan = FQVMapScanner::ScanMods();
	std::vector<std::string> Names;
	for (const FQVModInfo& Mod : Scan.Mods)
	{
		Names.push_back(Mod.Name);
	}
	if (const FQVModInfo* Mod = Scan.Find(MapOrMod))
	{
		MapOrMod = Mod->Name;
		return true;
	}
	for (const FQVModInfo& Mod : Scan.Mods)
	{
		for (const FQVMapInfo& Map : Mod.Maps)
		{
			Names.push_back(Map.Name);
			if (FQVString::EqualsIgnoreCase(Map.Name, MapOrMod) ||
				FQVString::EqualsIgnoreCase(Map.CookPath, MapOrMod) ||
				FQVString::EqualsIgnoreCase(Map.GamePath, MapOrMod))
			{
				MapOrMod = Mod.Name;
				return true;
			}
		}
	}
	Session.Console.Fail(QVPrintf("there is no mod or map '%s': see qvmap maps", MapOrMod));
	const std::string Nearest = NearestWord(MapOrMod, Names);
	if (!Nearest.empty())
	{
		Session.Console.Say(QVPrintf("  did you mean '%s'?", Nearest));
	}
	return false;
}
} // namespace QVCli
