// SPDX-License-Identifier: MIT
#include "Content/QVMapRedirectors.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Engine/QVAssetTools.h"
#include "Engine/QVDialogs.h"
#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVPackages.h"

namespace
{
constexpr std::string_view Namespace = "FQVMapRedirectors";

bool Refuse(FQVText Reason, FQVText& OutError)
{
	QVLog(EQVLogVerbosity::Warning, "QVMap: Redirector fixup did not run - %s", Reason.ToString());
	OutError = std::move(Reason);
	return false;
}

std::vector<FQVAssetData> LoadRedirectors(std::span<const FQVAssetData> Records)
{
	std::vector<FQVAssetData> Loaded;
	for (const FQVAssetData& Record : Records)
	{
		if (!Record.IsValid())
		{
			continue;
		}
		if (FQVEngine::Get().Packages->LoadAsset(Record).bRedirector)
		{
			Loaded.push_back(Record);
			continue;
		}
		QVLog(EQVLogVerbosity::Warning, "QVMap: Could not load redirector %s - skipping", Record.PackageName.ToView());
	}
	return Loaded;
}
} // namespace

bool FQVMapRedirectors::FixRedirectors(std::span<const FQVAssetData> Redirectors, FQVText& OutError)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	if (FQVEngine::Get().AssetRegistry->IsLoadingAssets())
	{
		return Refuse(FQVText(Namespace, "StillScanning",
						  "The asset registry is still scanning, so the assets referencing these redirectors cannot be "
						  "found yet.\n\nWait for the scan to finish and try again."),
			OutError);
	}
	const std::vector<FQVAssetData> Loaded = LoadRedirectors(Redirectors);
	if (Loaded.empty())
	{
		return Refuse(FQVText(Namespace, "NoneLoaded",
						  "None of the redirectors could be loaded. They may already have been cleaned up - refresh "
						  "the report."),
			OutError);
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Fixing up %d redirector(s)", Loaded.size());
	FQVEngine::Get().AssetTools->FixupReferencers(Loaded);
	return true;
}

bool FQVMapRedirectors::FixRedirectorsWithDialog(std::span<const FQVAssetData> Redirectors)
{
	FQVText Error;
	const bool bFixed = FixRedirectors(Redirectors, Error);
	if (!bFixed && !Error.ToString().empty())
	{
		FQVEngine::Get().Dialogs->ShowMessage(Error);
	}
	return bFixed;
}
