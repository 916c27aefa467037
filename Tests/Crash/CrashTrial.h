// SPDX-License-Identifier: MIT
#pragma once

#include "Tests/Crash/CrashProject.h"
#include "Tests/Crash/DisturbedRun.h"

namespace QVTest
{
/** What is run and disturbed, and on what. */
struct FScene
{
	/** Short, for what scenes have in common. */
	std::string Label;
	std::string Name;
	std::filesystem::path Template;
	std::vector<std::string> Words;
	/** The template is what an earlier run left that was cut off where it could not note its copies. */
	bool bCopiesMayStay = false;
	/** ... or in the middle of writing a file. */
	bool bTemporariesMayStay = false;
};

enum class EEnding
{
	/** The program came to its end before the point. */
	NotReached,
	WholeAtOnce,
	AfterRecovery,
	AfterSecondRecovery,
	Lost
};

struct FTrialResult
{
	EEnding Ending = EEnding::NotReached;
	/** The program ended well in spite of the fault. */
	bool bDone = false;
	/** Left behind in the end: a file of a save that was cut off; copies of outside content; a journal that says
	 * nothing. */
	bool bTemporaryLeft = false;
	bool bCopiesLeft = false;
	bool bJournalLeft = false;
	FNotedOperation Struck;
	/** Whatever should not be. */
	std::vector<std::string> Failures;
};

/** Runs a scene with one fault, then recovers, and holds the project against what it was. */
class FCrashTrial
{
public:
	FCrashTrial(const FCrashBench& InBench, const FOwnFiles& InOwn, const FScene& InScene, const FDisturbance& InFault)
		: Bench(InBench)
		, Own(InOwn)
		, Scene(InScene)
		, Fault(InFault)
	{
	}

	FTrialResult Run();

	/** Whether a run that did not come to its end has left copies that its manifest does not name. */
	static bool CopiesMayStay(const FRunEnd& End, const FDisturbance& Fault);

private:
	struct FState
	{
		bool bWhole = true;
		bool bTemporaries = false;
		bool bCopies = false;
	};

	const FCrashBench& Bench;
	const FOwnFiles& Own;
	const FScene& Scene;
	const FDisturbance Fault;
	FTrialResult Result;
	std::string Told;

	bool IsKilled() const { return Fault.Kind->bKills && Result.Struck.Letter != 0; }
	void Fail(std::string What) { Result.Failures.push_back(std::move(What)); }
	void JudgeEnd(const FRunEnd& End);
	/** What is wrong is a failure if the project should be in order by now. */
	FState Look(bool bFinal);
	void JudgeAfterFault(const FState& State);
	bool IsJournalIntact() const;
	FState Recover(const std::vector<std::string>& Words);
	void RecoverAll(FState State);
	bool IsSame(const std::string& Was, const std::string& Is) const;
	void JudgeFinal(const FState& State, bool bCopiesMayStay);
	void PackAgain();
};
} // namespace QVTest
