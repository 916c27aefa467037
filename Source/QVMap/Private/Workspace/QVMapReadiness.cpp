// SPDX-License-Identifier: MIT
#include "Workspace/QVMapReadiness.h"

#include "Core/QVCheck.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVWorld.h"
#include "Workspace/QVMapPaths.h"

#include <vector>

namespace
{
constexpr std::string_view Namespace = "FQVMapReadiness";

FQVText NotOfAPlugin(const std::string& World)
{
	return {Namespace, "NotPluginMap",
		"The open map is not set up for packing.\n\nMaps saved in the project's own Content folder cannot be packed. "
		"Use New Map to create one that can, then move your work across.\n\nCurrent: {0}",
		World};
}

FQVText OfTheBridge(const std::string& World)
{
	return {Namespace, "BridgeTemplateOpen",
		"The open map is the template that ships with QUARVEL, not a map of yours.\n\nIt cannot be packed: it lives in "
		"the toolkit's own folder, it is replaced every time you update the toolkit, and anything you build in it "
		"counts as content from outside the map being packed.\n\nUse New Map to start one of your own. To keep what "
		"you have already built here, use File > Save Current Level As and save it into "
		"Plugins/<YourMap>/Content/Maps/ first.\n\nCurrent: {0}",
		World};
}

FQVText WithoutDescriptor(const std::string& Mod)
{
	return {Namespace, "PluginNotFound",
		"The open map is not set up for packing.\n\nIts folder '{0}' is missing its {0}.uplugin file - it may have "
		"been deleted, or renamed to .uplugin.disabled by an interrupted base release build.\n\nUse Open Map to switch "
		"to a working map, or New Map to start a fresh one.",
		Mod};
}

bool HasDescriptor(const std::string& Mod)
{
	return FQVEngine::Get().Files->FileExists(FQVPath::Combine(FQVMapPaths::GetPluginsDir(), Mod, Mod + ".uplugin"));
}

bool Refuse(FQVText Reason, FQVText& OutError)
{
	OutError = std::move(Reason);
	return false;
}
} // namespace

bool FQVMapReadiness::ResolveOpenMap(
	std::string& OutMod, std::string& OutMap, FQVText& OutError, std::string* OutGamePath)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	OutError = {};
	IQVEditor* Editor = FQVEngine::Get().Editor;
	const IQVWorld* World = Editor == nullptr ? nullptr : Editor->GetOpenWorld();
	if (World == nullptr)
	{
		return Refuse({Namespace, "NoMapOpen", "Please open a map first."}, OutError);
	}
	const std::string Path(World->GetPathName());
	const std::vector<std::string_view> Parts = FQVString::Split(Path, '/');
	if (Parts.size() < 2 || FQVString::EqualsIgnoreCase(Parts.front(), "Game"))
	{
		return Refuse(NotOfAPlugin(Path), OutError);
	}
	if (FQVString::EqualsIgnoreCase(Parts.front(), "QUARVEL"))
	{
		return Refuse(OfTheBridge(Path), OutError);
	}
	const std::string Mod(Parts.front());
	if (!HasDescriptor(Mod))
	{
		OutMod.clear();
		OutMap.clear();
		return Refuse(WithoutDescriptor(Mod), OutError);
	}
	OutMod = Mod;
	OutMap = Parts.back().substr(0, Parts.back().find('.'));
	OutMap = OutMap.empty() ? OutMod : OutMap;
	if (OutGamePath != nullptr)
	{
		*OutGamePath = "/Game" + Path.substr(0, Path.rfind('.'));
	}
	return true;
}
