// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapImportResult.h"

#include <string>
#include <string_view>

/** Owns an import: it is made with this and undone with it, whichever way the pack ends. Game thread. */
class FQVImportScope
{
public:
	explicit FQVImportScope(std::string_view InPluginName);
	/** What cannot be put back is told in the log, and stays in the journal. */
	~FQVImportScope();

	const FQVImportResult& GetResult() const { return Result; }

	FQVImportScope(const FQVImportScope&) = delete;
	FQVImportScope& operator=(const FQVImportScope&) = delete;

private:
	const std::string PluginName;
	FQVImportResult Result;
};
