// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapFindingMaker.h"

#include "Core/QVPath.h"

void FQVFindingMaker::OfferFolderOf(FQVDiagnosticFinding& Finding, std::string_view File)
{
	Finding.ActionKind = EQVDiagAction::OpenFolder;
	Finding.ActionLabel = Text("OpenFolder", "Open Folder");
	Finding.ActionPath = FQVPath::GetPath(File);
}

void FQVFindingMaker::OfferFile(FQVDiagnosticFinding& Finding, FQVText Label, std::string_view File)
{
	Finding.ActionKind = EQVDiagAction::OpenFile;
	Finding.ActionLabel = std::move(Label);
	Finding.ActionPath = File;
}

void FQVFindingMaker::OfferReferencer(FQVDiagnosticFinding& Finding, const FQVAssetData& Referencer)
{
	if (Referencer.IsValid())
	{
		Finding.ActionKind = EQVDiagAction::BrowseToAssets;
		Finding.ActionLabel = Text("ShowReferencer", "Show Referencer");
		Finding.ActionAssets = {Referencer};
	}
}
