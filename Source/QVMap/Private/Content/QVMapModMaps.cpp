// SPDX-License-Identifier: MIT
#include "Content/QVMapModMaps.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Workspace/QVMapPaths.h"

bool FQVModMaps::ScanContent(std::string_view PluginName, std::string& OutContentDir)
{
	OutContentDir = FQVPath::Combine(FQVMapPaths::GetPluginsDir(), PluginName, "Content");
	if (!FQVEngine::Get().Files->DirectoryExists(OutContentDir))
	{
		return false;
	}
	FQVEngine::Get().AssetRegistry->ScanPathsSynchronous(OutContentDir);
	return true;
}

std::vector<FQVAssetData> FQVModMaps::Find(std::string_view PluginName)
{
	std::vector<FQVAssetData> Maps;
	const FQVAssetFilter Filter{QVPrintf("/%s", PluginName), FQVName(FQVAssetData::WorldClass)};
	FQVEngine::Get().AssetRegistry->GetAssets(Filter, Maps);
	return Maps;
}
