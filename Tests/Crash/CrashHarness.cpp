// SPDX-License-Identifier: MIT
//
// Disturbs `qvmap pack` at every operation on the disk, in every way, and sees that the user's files survive it.
#include "Tests/Crash/CrashPlan.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <exception>
#include <map>
#include <mutex>
#include <thread>

using namespace QVTest;

namespace
{
/** For ctest: not run. */
[[maybe_unused]] constexpr int Skipped = 77;

struct FTally
{
	int Tried = 0;
	std::array<int, static_cast<std::size_t>(EEnding::Lost) + 1> Endings = {};
	int Done = 0;
	int TemporariesLeft = 0;
	int CopiesLeft = 0;
	int JournalsLeft = 0;
	int Failed = 0;

	void Add(const FTrialResult& Result)
	{
		++Tried;
		++Endings[static_cast<std::size_t>(Result.Ending)];
		Done += Result.bDone ? 1 : 0;
		TemporariesLeft += Result.bTemporaryLeft ? 1 : 0;
		CopiesLeft += Result.bCopiesLeft ? 1 : 0;
		JournalsLeft += Result.bJournalLeft ? 1 : 0;
		Failed += Result.Failures.empty() ? 0 : 1;
	}

	int Of(EEnding Ending) const { return Endings[static_cast<std::size_t>(Ending)]; }
};

/** By the label of the scene, and fault. */
using FTallies = std::map<std::pair<std::string, EFault>, FTally>;

void TellFailures(const FCrashJob& Job, const FTrialResult& Result)
{
	std::printf("FAILED  %s, %s at %llu: %s\n", Job.Scene->Name.c_str(), Job.Fault.Kind->Name.data(),
		static_cast<unsigned long long>(Job.Fault.Point), Result.Struck.Describe().c_str());
	for (const std::string& Failure : Result.Failures)
	{
		std::printf("        %s\n", Failure.c_str());
	}
	std::fflush(stdout);
}

FTallies RunAll(const FCrashScenes& Scenes, unsigned Workers)
{
	FTallies Tallies;
	std::mutex Lock;
	std::atomic<std::size_t> Next{0};
	const std::vector<FCrashJob>& Jobs = Scenes.Jobs();
	const auto Work = [&]
	{
		const FCrashBench Bench;
		for (std::size_t Index = Next++; Index < Jobs.size(); Index = Next++)
		{
			const FCrashJob& Job = Jobs[Index];
			const FTrialResult Result = FCrashTrial(Bench, Scenes.OwnFiles(), *Job.Scene, Job.Fault).Run();
			const std::lock_guard Guard(Lock);
			Tallies[{Job.Scene->Label, Job.Fault.Kind->Fault}].Add(Result);
			if (!Result.Failures.empty())
			{
				TellFailures(Job, Result);
			}
		}
	};
	std::vector<std::jthread> Threads;
	for (unsigned Index = 0; Index < Workers; ++Index)
	{
		Threads.emplace_back(Work);
	}
	Threads.clear();
	return Tallies;
}

int Tell(const FTallies& Tallies)
{
	constexpr const char* Columns[] = {"tried", "at-once", "recovery", "second", "lost", "unreached", "done",
		"temporary", "copies", "journal", "FAILED"};
	std::printf("%-24s", "");
	for (const char* Column : Columns)
	{
		std::printf(" %9s", Column);
	}
	int Failed = 0;
	for (const auto& [Key, Tally] : Tallies)
	{
		const std::string_view Kind = FaultKinds[static_cast<std::size_t>(Key.second)].Name;
		std::printf("\n%-8s %-15s", Key.first.c_str(), Kind.data());
		for (const int Number : {Tally.Tried, Tally.Of(EEnding::WholeAtOnce), Tally.Of(EEnding::AfterRecovery),
				 Tally.Of(EEnding::AfterSecondRecovery), Tally.Of(EEnding::Lost), Tally.Of(EEnding::NotReached),
				 Tally.Done, Tally.TemporariesLeft, Tally.CopiesLeft, Tally.JournalsLeft, Tally.Failed})
		{
			std::printf(" %9d", Number);
		}
		Failed += Tally.Failed;
	}
	std::printf("\n"
				"at-once, recovery, second, lost: when the user's files were as they had been; done: the program came\n"
				"to a good end all the same; temporary, copies, journal: trials that left such a thing behind for "
				"good.\n");
	return Failed;
}
} // namespace

int main(int Count, char** Words)
{
#ifdef QVTEST_SANITIZED
	std::puts("skipped: a sanitizer and the library that brings the faults cannot stand before the same program");
	return Skipped;
#endif
	FCrashOptions Options;
	if (!Options.Read(Count, Words))
	{
		return 2;
	}
	try
	{
		const FCrashScenes Scenes(Options);
		std::printf("%zu trials\n", Scenes.Jobs().size());
		std::fflush(stdout);
		return Tell(RunAll(Scenes, Options.Workers)) == 0 && !Scenes.Jobs().empty() ? 0 : 1;
	}
	catch (const std::exception& Error)
	{
		std::printf("crash-harness: %s\n", Error.what());
		return 1;
	}
}
