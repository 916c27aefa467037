// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/** What a finished pak holds and what it lacks. */
struct FQVPakContentSummary
{
	/** Files packed in all. */
	std::int32_t FileCount = 0;
	/** Of these, map files. */
	std::int32_t MapFiles = 0;
	/** Of these, files that belong to no map; the shader archives among them. */
	std::int32_t PayloadFiles = 0;
	std::int32_t ShaderArchives = 0;
	std::int64_t PakBytes = 0;
	/** Cooked packages that stayed outside the pak, below the staged root; sorted, ignoring case. */
	std::vector<std::string> UnpackableFiles;

	/** No map, nothing but maps, or packages that stayed outside. */
	bool HasProblem() const;
	/** "12 file(s) packed, 3.40 MB." */
	std::string Describe() const;
	/** The problems as a list for the user, one or more lines each. */
	std::string DescribeProblems() const;
};

/** What one export gives back. */
struct FQVExportResult
{
	/** Whether the pak was built; a content problem does not clear it. */
	bool bSuccess = false;
	/** Empty on failure. */
	std::string PakPath;
	/** For the user; empty on success. */
	std::string ErrorMessage;
	FQVPakContentSummary Content;
};
