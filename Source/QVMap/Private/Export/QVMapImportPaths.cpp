// SPDX-License-Identifier: MIT
#include "Export/QVMapImportPaths.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Workspace/QVMapPaths.h"

std::string FQVMapImportPaths::MakeImportedName(std::string_view PluginName, std::string_view Source)
{
	return QVPrintf("/%s/%s%s", PluginName, CopiesFolder, Source);
}

bool FQVMapImportPaths::IsInPlugin(std::string_view PackagePath, std::string_view PluginName)
{
	return FQVString::StartsWithIgnoreCase(PackagePath, QVPrintf("/%s/", PluginName));
}

std::string FQVMapImportPaths::GetJournalRoot()
{
	return FQVPath::Combine(FQVMapPaths::GetTempDir(), "ImportBackup");
}

std::string FQVMapImportPaths::GetJournalFolder(std::string_view PluginName)
{
	return FQVPath::Combine(GetJournalRoot(), PluginName);
}

std::string FQVMapImportPaths::GetManifestPath(std::string_view PluginName)
{
	return FQVPath::Combine(GetJournalFolder(PluginName), "import.json");
}

std::string FQVMapImportPaths::GetCopiesFolder(std::string_view PluginName)
{
	return FQVPath::Combine(FQVMapPaths::GetPluginsDir(), PluginName, "Content", CopiesFolder);
}
