// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVNameSet.h"
#include "Export/QVMapBackgroundRun.h"
#include "Export/QVMapImportScope.h"
#include "HandOff/QVMapPlayRequest.h"

#include <memory>

using FQVExportState = TQVBackgroundRun<FQVExportResult>;

/** An export in the background, and what is done with its result. There may be several at a time. */
struct FQVMapExportRun
{
	/**
	 * Game thread. Returns at once. The import, which may be null, is held until the run has ended and the user has
	 * seen how.
	 */
	static void Start(
		const FQVPlayRequest& Request, const FQVNameSet& UsedPackages, const std::shared_ptr<FQVImportScope>& Import);
};
