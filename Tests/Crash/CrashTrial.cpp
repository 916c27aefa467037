// SPDX-License-Identifier: MIT
#include "Tests/Crash/CrashTrial.h"

#include "Tests/Formats/TestContent.h"

#include <algorithm>
#include <csignal>

namespace fs = std::filesystem;

namespace QVTest
{
namespace
{
constexpr std::size_t MostTold = 600;

bool IsTemporary(const std::string& Path)
{
	return Path.ends_with(".tmp");
}

bool IsCopy(const std::string& Path)
{
	return Path.starts_with(FCrashProject::Copies);
}

/** The bytes of a file, without its marks. */
std::string_view BytesOf(const std::string& Own)
{
	return std::string_view(Own).substr(Own.find(' ') + 1);
}
} // namespace

bool FCrashTrial::CopiesMayStay(const FRunEnd& End, const FDisturbance& Fault)
{
	const std::string Manifest = std::string("/") + FCrashProject::Mod + "/" + FCrashProject::Manifest;
	const bool bDoneItself = Fault.Kind->Fault == EFault::KillAfter;
	int Flushed = 0;
	int Written = 0;
	for (const FNotedOperation* Each : End.OfLetter(OperationLetters[0]))
	{
		if (Each->Number > End.Struck.Number || (Each->Number == End.Struck.Number && !bDoneItself))
		{
			break;
		}
		Written += Each->Name == KindOf(EOperation::Rename).Name && Each->Other.ends_with(Manifest) ? 1 : 0;
		const bool bFlush = Each->Name == KindOf(EOperation::Flush).Name &&
							Each->Path.ends_with(std::string(FCrashProject::Journals) + "/" + FCrashProject::Mod);
		Flushed = bFlush ? Written : Flushed;
	}
	return (Fault.Kind->Fault == EFault::PowerStrict ? Flushed : Written) == 1;
}

FTrialResult FCrashTrial::Run()
{
	Bench.TakeCopyOf(Scene.Template);
	const FRunEnd End = Bench.Run(Scene.Words, Fault);
	Result.Struck = End.Struck;
	Told = End.Err.substr(0, MostTold);
	JudgeEnd(End);
	const FState State = Look(false);
	JudgeAfterFault(State);
	RecoverAll(State);
	// who cannot put the files back leaves the copies that they refer to
	const bool bCutOff = IsKilled() || !State.bWhole;
	JudgeFinal(Look(true), Scene.bCopiesMayStay || (bCutOff && CopiesMayStay(End, Fault)));
	if (Result.Failures.empty() && Fault.Point % 8 == 3)
	{
		PackAgain();
	}
	if (!Result.Failures.empty())
	{
		Fail("it had said: " + Told);
	}
	return Result;
}

void FCrashTrial::JudgeEnd(const FRunEnd& End)
{
	Result.bDone = End.Code == 0;
	// what cannot be read may be asked about, and nobody is there to answer
	const bool bStopped = End.Code == 1 || End.Code == 3;
	if (IsKilled() ? End.Code != -SIGKILL : End.Code != 0 && (!bStopped || !End.WasStruck()))
	{
		Fail("ended with code " + std::to_string(End.Code));
	}
	if (bStopped && End.Err.find(End.Code == 1 ? "error:" : "question:") == std::string::npos)
	{
		Fail("failed without a word");
	}
	if (!End.bNothingLeft)
	{
		Fail("left a process behind");
	}
	for (const FNotedOperation* Each : End.OfLetter(OutsideLetter))
	{
		Fail("changed something outside the project: " + Each->Describe());
	}
	for (const FNotedOperation* Each : End.OfLetter(TroubleLetter))
	{
		Fail("the power cut could not be played: " + Each->Describe());
	}
	if (!Bench.IsHomeEmpty())
	{
		Fail("left something in the user's home");
	}
}

/** Where it is the marks that could not be set, they may differ: some disks have none. */
bool FCrashTrial::IsSame(const std::string& Was, const std::string& Is) const
{
	const bool bMarkFailed = Result.Struck.Name == KindOf(EOperation::Mark).Name && !Fault.Kind->bKills;
	return Was == Is || (bMarkFailed && BytesOf(Was) == BytesOf(Is));
}

FCrashTrial::FState FCrashTrial::Look(bool bFinal)
{
	FState State;
	const FOwnFiles Now = ReadOwnFiles(Bench.Project());
	for (const auto& [Path, Content] : Own)
	{
		const auto Found = Now.find(Path);
		if (Found != Now.end() && IsSame(Content, Found->second))
		{
			continue;
		}
		State.bWhole = false;
		if (bFinal)
		{
			Fail((Found == Now.end() ? "LOST " : "CHANGED ") + Path);
		}
	}
	for (const auto& [Path, Content] : Now)
	{
		const bool bNew = !Own.contains(Path);
		State.bTemporaries |= bNew && IsTemporary(Path);
		State.bCopies |= bNew && !IsTemporary(Path) && IsCopy(Path);
		if (bNew && !IsTemporary(Path) && !IsCopy(Path))
		{
			Fail("made " + Path);
		}
	}
	return State;
}

/** Each file that is not as it was lies in the journal as it was, and the journal can be read. */
bool FCrashTrial::IsJournalIntact() const
{
	const fs::path Journal = FCrashProject::Journal(Bench.Project());
	if (!fs::exists(Journal / FCrashProject::Manifest))
	{
		return false;
	}
	std::vector<std::string> Kept;
	for (const fs::directory_entry& Entry : fs::directory_iterator(Journal))
	{
		Kept.push_back(ReadText(Entry.path()));
	}
	const FOwnFiles Now = ReadOwnFiles(Bench.Project());
	return std::all_of(Own.begin(), Own.end(),
		[&](const auto& Each)
		{
			const auto Found = Now.find(Each.first);
			return (Found != Now.end() && IsSame(Each.second, Found->second)) ||
				   std::find(Kept.begin(), Kept.end(), BytesOf(Each.second)) != Kept.end();
		});
}

void FCrashTrial::JudgeAfterFault(const FState& State)
{
	const bool bMayTidyUp = !IsKilled() && Fault.Kind->Fault != EFault::Refused;
	if (State.bTemporaries && bMayTidyUp && !Scene.bTemporariesMayStay)
	{
		Fail("left a temporary file");
	}
	if (!State.bWhole && !IsJournalIntact())
	{
		Fail("the project is not as it was, and not all of it is in the journal");
	}
	if (Result.bDone && !State.bWhole)
	{
		Fail("ended well, though the project is not as it was");
	}
}

FCrashTrial::FState FCrashTrial::Recover(const std::vector<std::string>& Words)
{
	const FRunEnd End = Bench.Run(Words);
	if (End.Code != 0)
	{
		Fail("the recovery ended with code " + std::to_string(End.Code) + ": " + End.Err.substr(0, MostTold));
	}
	return Look(false);
}

void FCrashTrial::RecoverAll(FState State)
{
	Result.Ending = !Result.Struck.Letter ? EEnding::NotReached : EEnding::WholeAtOnce;
	const bool bJournal = fs::exists(FCrashProject::Journal(Bench.Project()));
	if (State.bWhole && !State.bCopies && !bJournal)
	{
		return;
	}
	Result.Ending = State.bWhole ? Result.Ending : EEnding::AfterRecovery;
	// any verb that opens the project recovers it
	State = Recover(
		Fault.Point % 4 == 1 ? std::vector<std::string>{"-q", "maps"} : std::vector<std::string>{"-q", "recover"});
	if (State.bWhole)
	{
		return;
	}
	if (!IsJournalIntact())
	{
		Fail("after a recovery the project is not as it was, and not all of it is in the journal");
	}
	Result.Ending = Recover({"-q", "recover"}).bWhole ? EEnding::AfterSecondRecovery : EEnding::Lost;
}

void FCrashTrial::JudgeFinal(const FState& State, bool bCopiesMayStay)
{
	Result.bTemporaryLeft = State.bTemporaries;
	Result.bCopiesLeft = State.bCopies;
	const fs::path Journal = FCrashProject::Journal(Bench.Project());
	Result.bJournalLeft = fs::exists(Journal);
	if (State.bCopies && !bCopiesMayStay)
	{
		Fail("copies of outside content stay in the mod");
	}
	if (fs::exists(Journal / FCrashProject::Manifest))
	{
		Fail("the journal is still there");
	}
}

void FCrashTrial::PackAgain()
{
	const FRunEnd End = Bench.Run({"-q", "pack", FCrashProject::Map});
	if (End.Code != 0)
	{
		Fail("the next pack ended with code " + std::to_string(End.Code) + ": " + End.Err.substr(0, MostTold));
	}
	Look(true);
}
} // namespace QVTest
