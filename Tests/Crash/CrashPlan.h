// SPDX-License-Identifier: MIT
#pragma once

#include "Tests/Crash/CrashTrial.h"

#include <array>

namespace QVTest
{
struct FCrashOptions
{
	std::vector<const FFaultKind*> Kinds;
	/** Every how manieth point is tried, and with which one that begins. */
	std::uint64_t Step = 1;
	std::uint64_t Seed = 0;
	/** Not 0: this point alone. */
	std::uint64_t Point = 0;
	/** How many interrupted packs are recovered with a second fault in that. */
	std::uint64_t Scenes = 6;
	unsigned Workers = 2;
	/** Where the project is copied before anything is packed; empty: nowhere. */
	std::filesystem::path Keep;

	/** False, with the usage told, if the words are not understood. */
	bool Read(int Count, const char* const* Words);
};

struct FCrashJob
{
	const FScene* Scene = nullptr;
	FDisturbance Fault;
};

/** The project as it was, and as interrupted packs left it. */
class FCrashScenes
{
public:
	/** Throws if the project cannot be packed without any fault. */
	explicit FCrashScenes(const FCrashOptions& Options);

	const FOwnFiles& OwnFiles() const { return Own; }
	const std::vector<FCrashJob>& Jobs() const { return AllJobs; }

private:
	const FCrashOptions& Options;
	FCrashProject Original;
	FTempFolder Kept;
	FCrashBench Bench;
	FOwnFiles Own;
	std::vector<FScene> Scenes;
	std::vector<FCrashJob> AllJobs;

	FRunEnd RunUndisturbed(const FScene& Scene) const;
	void BuildBaseRelease();
	void AddInterrupted(const FRunEnd& Whole);
	void AddJobs(const FScene& Scene, const FRunEnd& Whole);
};
} // namespace QVTest
