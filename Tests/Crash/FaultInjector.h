// SPDX-License-Identifier: MIT
#pragma once

#include "Tests/Crash/FaultPlan.h"
#include "Tests/Crash/PowerCut.h"

#include <array>
#include <mutex>
#include <string>

namespace QVTest
{
/** Counts the operations of this process and disturbs the chosen one. Any thread. */
class FFaultInjector
{
public:
	/** Null where nothing is to be disturbed: in other programs, and in a fork of this one. */
	static FFaultInjector* Get();

	struct FVerdict
	{
		/** 0: the operation is done. */
		int Error = 0;
		/** ... but for half of its bytes only. */
		bool bHalf = false;
	};

	/**
	 * One operation, from its decision to its end; no other one comes in between. Prepare tells a power cut what is
	 * about to change.
	 */
	template<class TResult, class FPrepare, class FDo>
	TResult Run(EOperation Operation, const std::string& Path, const std::string& Other, TResult Failure,
		const FPrepare& Prepare, const FDo& Do)
	{
		if (!Concerns(Operation, Path, Other))
		{
			return Do(false);
		}
		const std::lock_guard Guard(Lock);
		const FVerdict Verdict = Enter(Operation, Path, Other);
		if (Verdict.Error != 0)
		{
			SetError(Verdict.Error);
			return Failure;
		}
		if (bPowerCut)
		{
			Prepare(PowerCut);
		}
		const TResult Result = Do(Verdict.bHalf);
		Leave(Operation);
		return Result;
	}

	FFaultInjector();

private:
	const int Process;
	const std::string Root;
	const std::string Shadow;
	const FFaultKind* Kind = nullptr;
	std::uint64_t Point = 0;
	int Log = -1;
	bool bPowerCut = false;
	FPowerCut PowerCut;
	std::mutex Lock;
	std::array<std::uint64_t, OperationsKinds> Counts = {};
	bool bStruck = false;
	/** What was to be changed or read where it struck. */
	std::string StruckFile;

	bool IsBelowRoot(const std::string& Path) const;
	bool Concerns(EOperation Operation, const std::string& Path, const std::string& Other);
	FVerdict Enter(EOperation Operation, const std::string& Path, const std::string& Other);
	/** Threads may trade places from run to run: what cannot strike at the very point strikes at the next one. */
	bool IsReached(std::uint64_t Number, const std::string& File) const;
	FVerdict Strike(const FOperationKind& Operation);
	void Leave(EOperation Operation);
	[[noreturn]] void Die();
	void Note(char Letter, std::uint64_t Number, std::string_view Name, const std::string& Path,
		const std::string& Other = {});
	static void SetError(int Error);
};
} // namespace QVTest
