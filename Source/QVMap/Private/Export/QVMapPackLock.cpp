// SPDX-License-Identifier: MIT
#include "Export/QVMapPackLock.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Engine/QVEngine.h"
#include "Export/QVMapImportPaths.h"
#include "Workspace/QVMapPaths.h"

FQVMapPackLock::FQVMapPackLock(std::string_view PluginName)
{
	const std::string Folder = FQVMapImportPaths::GetJournalRoot();
	if (!FQVMapPaths::EnsureDirectory(Folder))
	{
		Obstacle = QVPrintf("Could not create the backup folder: %s", Folder);
		return;
	}
	Held = FQVEngine::Get().Files->TryLock(FQVPath::Combine(Folder, PluginName) + ".lock");
	if (Held == nullptr)
	{
		Obstacle =
			QVPrintf("'%s' is being packed by another run of QVMap. Nothing was changed. Wait until that one has "
					 "ended, then pack again. (If there is none, %s cannot be written to.)",
				PluginName, Folder);
	}
}
