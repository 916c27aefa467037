// SPDX-License-Identifier: MIT
#include "Tests/Crash/FaultInjector.h"

#include "Tests/Crash/RawFile.h"

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>

namespace QVTest
{
namespace
{
std::string Value(const char* Name)
{
	const char* Text = std::getenv(Name);
	return Text != nullptr ? Text : "";
}

bool IsChosenProgram()
{
	const std::string Wanted = Value(FaultEnvironment::Program);
	char Own[PATH_MAX];
	const long Size = Wanted.empty() ? 0 : ::syscall(SYS_readlink, "/proc/self/exe", Own, sizeof(Own));
	return Size > 0 && Wanted == std::string_view(Own, static_cast<std::size_t>(Size));
}
} // namespace

FFaultInjector* FFaultInjector::Get()
{
	// never deleted: files are written until the very end
	static FFaultInjector* const Injector = IsChosenProgram() ? new FFaultInjector : nullptr;
	return Injector != nullptr && Injector->Process == ::getpid() ? Injector : nullptr;
}

FFaultInjector::FFaultInjector()
	: Process(::getpid())
	, Root(Value(FaultEnvironment::Root) + "/")
	, Shadow(Value(FaultEnvironment::Shadow))
	, Kind(FindFaultKind(Value(FaultEnvironment::Kind)))
	, Point(std::strtoull(Value(FaultEnvironment::Point).c_str(), nullptr, 10))
	, PowerCut(Shadow)
{
	Log = Raw::Open(Shadow + "/" + std::string(OperationsLog), O_WRONLY | O_CREAT | O_APPEND);
	bPowerCut = Kind != nullptr && (Kind->Fault == EFault::PowerOrdered || Kind->Fault == EFault::PowerStrict);
	if (Kind == nullptr || Log < 0)
	{
		std::abort(); // an undisturbed run must not be taken for one that stood the fault
	}
}

void FFaultInjector::SetError(int Error)
{
	errno = Error;
}

void FFaultInjector::Note(
	char Letter, std::uint64_t Number, std::string_view Name, const std::string& Path, const std::string& Other)
{
	std::string Line(1, Letter);
	Line.append("\t").append(std::to_string(Number)).append("\t").append(Name);
	Line.append("\t").append(Path).append("\t").append(Other).append("\n");
	Raw::Write(Log, Line.data(), Line.size());
}

bool FFaultInjector::IsBelowRoot(const std::string& Path) const
{
	return Path.starts_with(Root) || (Path.size() + 1 == Root.size() && Root.starts_with(Path));
}

bool FFaultInjector::Concerns(EOperation Operation, const std::string& Path, const std::string& Other)
{
	const FOperationKind& Which = KindOf(Operation);
	const bool bChange = Which.Operations == EOperations::Changes;
	const auto IsStray = [&](const std::string& Each) {
		return Each.starts_with("/") && !IsBelowRoot(Each) && !Each.starts_with("/dev/") && !Each.starts_with("/proc/");
	};
	if (bChange && (IsStray(Path) || IsStray(Other)))
	{
		// while a power cut is played, files that are still written lie in the shadow; nobody gets past it
		const std::lock_guard Guard(Lock);
		Note(OutsideLetter, 0, Which.Name, Path, Other);
	}
	const bool bBelow = IsBelowRoot(Path) || IsBelowRoot(Other);
	return bBelow && (bChange || Which.Operations == Kind->Operations || Kind->Fault == EFault::Count);
}

FFaultInjector::FVerdict FFaultInjector::Enter(EOperation Operation, const std::string& Path, const std::string& Other)
{
	const FOperationKind& Which = KindOf(Operation);
	const auto Place = static_cast<std::size_t>(Which.Operations);
	const std::uint64_t Number = ++Counts[Place];
	Note(OperationLetters[Place], Number, Which.Name, Path, Other);
	const std::string& File = Other.empty() ? Path : Other;
	if (!IsReached(Number, File) || Which.Operations != Kind->Operations || !CanStrike(*Kind, Which))
	{
		return {};
	}
	const bool bFirst = !bStruck;
	bStruck = true;
	StruckFile = bFirst ? File : StruckFile;
	if (bFirst)
	{
		Note(StruckLetter, Number, Which.Name, Path, Other);
	}
	if (Kind->Fault == EFault::Full && bFirst && Operation == EOperation::Write)
	{
		return {0, true};
	}
	return Strike(Which);
}

bool FFaultInjector::IsReached(std::uint64_t Number, const std::string& File) const
{
	switch (Kind->Fault)
	{
	case EFault::Full:
	case EFault::Refused:
		return Number >= Point;
	case EFault::Held:
	case EFault::Unreadable:
		return bStruck ? File == StruckFile : Number >= Point;
	default:
		return !bStruck && Number >= Point;
	}
}

FFaultInjector::FVerdict FFaultInjector::Strike(const FOperationKind& Operation)
{
	switch (Kind->Fault)
	{
	case EFault::KillBefore:
	case EFault::PowerOrdered:
	case EFault::PowerStrict:
		Die();
	case EFault::NoSpace:
	case EFault::Full:
		return {ENOSPC, false};
	case EFault::NoAccess:
	case EFault::Refused:
	case EFault::Held:
		return {Operation.Operation == EOperation::Mark ? EPERM : EACCES, false};
	case EFault::ShortWrite:
		return {0, true};
	case EFault::KillAfter:
		return {};
	default:
		return {Operation.Operations == EOperations::Looks ? EACCES : EIO, false};
	}
}

void FFaultInjector::Leave(EOperation Operation)
{
	if (Kind->Fault == EFault::KillAfter && bStruck && KindOf(Operation).Operations == EOperations::Changes)
	{
		Die();
	}
}

void FFaultInjector::Die()
{
	if (bPowerCut)
	{
		PowerCut.Strike(Kind->Fault == EFault::PowerStrict);
		for (const std::string& Trouble : PowerCut.Troubles)
		{
			Note(TroubleLetter, 0, Trouble, {});
		}
	}
	::kill(Process, SIGKILL);
	::_exit(127);
}
} // namespace QVTest
