// SPDX-License-Identifier: MIT
#include "Export/QVMapPluginDisableGuard.h"

#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"

FQVPluginDisableGuard::~FQVPluginDisableGuard()
{
	IQVFiles& Files = *FQVEngine::Get().Files;
	for (const FQVDisabledPlugin& Plugin : Disabled)
	{
		if (!Files.FileExists(Plugin.DisabledPath))
		{
			continue;
		}
		const std::string_view Name = FQVPath::GetBaseFilename(Plugin.OriginalPath);
		if (Files.Move(Plugin.OriginalPath, Plugin.DisabledPath))
		{
			QVLog(EQVLogVerbosity::Log, "QVMap: Restored mod plugin (destructor fallback): %s", Name);
		}
		else
		{
			QVLog(EQVLogVerbosity::Error, "QVMap: FAILED to restore mod plugin in destructor fallback: %s", Name);
		}
	}
}

bool FQVPluginDisableGuard::Disable(const std::string& PluginDir, const std::string& PluginName)
{
	const std::string Original = FQVPath::Combine(PluginDir, PluginName + ".uplugin");
	const FQVDisabledPlugin Plugin{Original + ".disabled", Original};
	if (!FQVEngine::Get().Files->Move(Plugin.DisabledPath, Plugin.OriginalPath))
	{
		return false;
	}
	Disabled.push_back(Plugin);
	QVLog(EQVLogVerbosity::Log, "QVMap: Temporarily disabled mod plugin: %s", PluginName);
	return true;
}

bool FQVPluginDisableGuard::RestoreDisabledPlugins()
{
	IQVFiles& Files = *FQVEngine::Get().Files;
	bool bAllRestored = true;
	for (const FQVDisabledPlugin& Plugin : Disabled)
	{
		const std::string_view Name = FQVPath::GetBaseFilename(Plugin.OriginalPath);
		if (!Files.FileExists(Plugin.DisabledPath))
		{
			QVLog(EQVLogVerbosity::Warning, "QVMap: Cannot restore %s - disabled file not found", Name);
		}
		else if (Files.Move(Plugin.OriginalPath, Plugin.DisabledPath))
		{
			QVLog(EQVLogVerbosity::Log, "QVMap: Restored mod plugin: %s", Name);
		}
		else
		{
			QVLog(EQVLogVerbosity::Error, "QVMap: FAILED to restore mod plugin: %s", Name);
			bAllRestored = false;
		}
	}
	Disabled.clear();
	return bAllRestored;
}
