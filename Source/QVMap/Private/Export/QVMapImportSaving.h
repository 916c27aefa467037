// SPDX-License-Identifier: MIT
#pragma once

#include "Export/QVMapImportResult.h"

#include <span>
#include <unordered_map>

class IQVSlowTask;

/** Saves what an import has changed and made in memory, and notes in its result how the files are left. Game thread. */
class FQVMapImportSaving
{
public:
	/** Task may be null; it is asked whether to go on. */
	FQVMapImportSaving(FQVImportResult& InResult, IQVSlowTask* InTask)
		: Result(InResult)
		, Task(InTask)
	{
	}

	/** The user's own packages first. Gives the sentence for the user; empty if all is well. */
	std::string Save(const std::vector<FQVName>& Repointed, const std::vector<FQVName>& Copies);

private:
	FQVImportResult& Result;
	IQVSlowTask* const Task;

	std::string SaveSome(std::span<const FQVName> Some, std::vector<std::string>& OutSaved) const;
	void NoteStamps(std::span<const FQVName> All, std::span<const std::string> Saved);
	std::unordered_map<FQVName, FQVFileStamp*> StampsByPackage();
};
