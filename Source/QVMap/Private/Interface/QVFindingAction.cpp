// SPDX-License-Identifier: MIT
#include "Interface/QVFindingAction.h"

bool QVHasAction(const FQVDiagnosticFinding& Finding)
{
	if (Finding.ActionLabel.ToString().empty())
	{
		return false;
	}
	switch (Finding.ActionKind)
	{
	case EQVDiagAction::None:
		return false;
	case EQVDiagAction::OpenFolder:
	case EQVDiagAction::OpenFile:
		return !Finding.ActionPath.empty();
	case EQVDiagAction::BrowseToAssets:
		return !Finding.ActionAssets.empty();
	case EQVDiagAction::Custom:
		return Finding.ActionCallback != nullptr;
	}
	return false;
}

bool QVRunAction(const FQVDiagnosticFinding& Finding, IQVFindingView& View)
{
	switch (Finding.ActionKind)
	{
	case EQVDiagAction::OpenFolder:
		View.ShowFolder(Finding.ActionPath);
		break;
	case EQVDiagAction::OpenFile:
		View.OpenFile(Finding.ActionPath);
		break;
	case EQVDiagAction::BrowseToAssets:
		View.BrowseToAssets(Finding.ActionAssets);
		break;
	case EQVDiagAction::Custom:
		return Finding.ActionCallback();
	case EQVDiagAction::None:
		break;
	}
	return false;
}
