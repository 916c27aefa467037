// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticReport.h"

/** What shows the things that a finding's button leads to. Game thread. */
class IQVFindingView
{
public:
	virtual ~IQVFindingView() = default;

	virtual void ShowFolder(const std::string& Folder) = 0;
	virtual void OpenFile(const std::string& File) = 0;
	virtual void BrowseToAssets(const std::vector<FQVAssetData>& Assets) = 0;
};

/** The finding has a button that does something. */
bool QVHasAction(const FQVDiagnosticFinding& Finding);
/** Does what the finding's button does; true if what it was found by is to be run again. */
bool QVRunAction(const FQVDiagnosticFinding& Finding, IQVFindingView& View);
