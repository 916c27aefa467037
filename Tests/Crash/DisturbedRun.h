// SPDX-License-Identifier: MIT
#pragma once

#include "Tests/Crash/FaultPlan.h"
#include "Tests/Support/TempFolder.h"

#include <filesystem>
#include <string>
#include <vector>

namespace QVTest
{
/** A line of the shim's log. */
struct FNotedOperation
{
	char Letter = 0;
	std::uint64_t Number = 0;
	std::string Name;
	std::string Path;
	std::string Other;

	/** "rename A -> B" */
	std::string Describe() const;
};

struct FDisturbance
{
	const FFaultKind* Kind = nullptr;
	/** 0: never. */
	std::uint64_t Point = 0;
};

struct FRunEnd
{
	int Code = 0;
	std::string Out;
	std::string Err;
	bool bNothingLeft = false;
	std::vector<FNotedOperation> Operations;
	/** The disturbed one; its letter is 0 if the program came to its end before. */
	FNotedOperation Struck;

	bool WasStruck() const { return Struck.Letter != 0; }
	std::vector<const FNotedOperation*> OfLetter(char Letter) const;
};

/** A place of its own in which qvmap is run, over and over, on copies of projects. One thread. */
class FCrashBench
{
public:
	FCrashBench();

	/** Instead of the one before. */
	void TakeCopyOf(const std::filesystem::path& Template) const;
	/** With the bundled engine. */
	FRunEnd Run(const std::vector<std::string>& Words, const FDisturbance& Disturbance = {}) const;

	const std::filesystem::path& Project() const { return ProjectFolder; }
	/** Nothing may come to lie there. */
	bool IsHomeEmpty() const;

private:
	FTempFolder Temp;
	const std::filesystem::path Root;
	const std::filesystem::path ProjectFolder;
	const std::filesystem::path Shadow;
	const std::filesystem::path Home;

	void ReadLog(FRunEnd& End) const;
};
} // namespace QVTest
