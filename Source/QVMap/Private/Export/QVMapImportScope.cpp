// SPDX-License-Identifier: MIT
#include "Export/QVMapImportScope.h"

#include "Core/QVCheck.h"
#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"
#include "Export/QVMapAssetImporter.h"
#include "Export/QVMapImportRestore.h"

FQVImportScope::FQVImportScope(std::string_view InPluginName)
	: PluginName(InPluginName)
	, Result(FQVMapAssetImporter::BringInExternalAssets(PluginName))
{
}

FQVImportScope::~FQVImportScope()
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	std::string Error; // told in the log already
	FQVMapImportRestore::RestoreAfterPacking(PluginName, Result, Error);
}
