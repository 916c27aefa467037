// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapImportResult.h"

/**
 * Reads back what an import has saved, since a file can be replaced behind the editor's back: all copies are there, and
 * each is mentioned by another file of the import. Gives the sentence for the user, empty if all is well. Any thread.
 */
struct FQVMapImportVerification
{
	static std::string VerifyImportedReferences(const FQVImportResult& Import);
};
