// SPDX-License-Identifier: MIT
#pragma once

#include "Tests/Crash/FaultInjector.h"
#include "Tests/Crash/RawFile.h"

#include <algorithm>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace QVTest::Shim
{
inline constexpr auto NothingToPrepare = [](FPowerCut&) {};

/** What the function of that name stands in front of. */
#define QV_NEXT(Name) static const auto Real = Next(&::Name, #Name)

template<class FFunction>
FFunction* Next(FFunction*, const char* Name)
{
	return reinterpret_cast<FFunction*>(::dlsym(RTLD_NEXT, Name));
}

inline std::string PathOf(int File)
{
	char Buffer[PATH_MAX];
	const std::string Link = "/proc/self/fd/" + std::to_string(File);
	const long Size = ::syscall(SYS_readlink, Link.c_str(), Buffer, sizeof(Buffer));
	return Size > 0 ? std::string(Buffer, static_cast<std::size_t>(Size)) : std::string();
}

/** Without links in the folders that lead to it. */
inline std::string PathOf(int Folder, const char* Path)
{
	std::string Full = Path[0] == '/' ? Path : (Folder == AT_FDCWD ? std::string(".") : PathOf(Folder)) + "/" + Path;
	while (Full.size() > 1 && Full.back() == '/')
	{
		Full.pop_back();
	}
	const std::size_t Slash = Full.rfind('/');
	char Resolved[PATH_MAX];
	const bool bResolved = ::realpath(Full.substr(0, Slash + 1).c_str(), Resolved) != nullptr;
	return bResolved ? (std::string_view(Resolved) == "/" ? "" : Resolved) + Full.substr(Slash) : Full;
}

template<class TResult, class FPrepare, class FDo>
TResult Guard(EOperation Operation, const std::string& Path, const std::string& Other, TResult Failure,
	const FPrepare& Prepare, const FDo& Do)
{
	FFaultInjector* const Injector = FFaultInjector::Get();
	return Injector == nullptr ? Do(false) : Injector->Run(Operation, Path, Other, Failure, Prepare, Do);
}

inline bool IsActive()
{
	return FFaultInjector::Get() != nullptr;
}

template<class TResult, class FDo>
TResult Opening(int Folder, const char* Path, int Flags, TResult Failure, const FDo& Do)
{
	if (!IsActive())
	{
		return Do(false);
	}
	const std::string Full = PathOf(Folder, Path);
	if ((Flags & (O_CREAT | O_TRUNC)) == 0)
	{
		// opening for writing alone changes nothing: the writes will
		return (Flags & O_ACCMODE) == O_RDONLY && (Flags & O_DIRECTORY) == 0
				   ? Guard(EOperation::Open, Full, {}, Failure, NothingToPrepare, Do)
				   : Do(false);
	}
	const auto Prepare = [&](FPowerCut& Cut)
	{
		Cut.BeforeName(Full);
		if ((Flags & O_TRUNC) != 0)
		{
			Cut.BeforeData(Full);
		}
	};
	return Guard(EOperation::Create, Full, {}, Failure, Prepare, Do);
}

/** Do gets how many bytes it may write. */
template<class FDo>
ssize_t Writing(int File, std::size_t Count, const FDo& Do)
{
	if (!IsActive())
	{
		return Do(Count);
	}
	return Guard(
		EOperation::Write, PathOf(File), {}, ssize_t{-1}, [File](FPowerCut& Cut) { Cut.BeforeData(File); },
		[&](bool bHalf) { return Do(bHalf ? (Count + 1) / 2 : Count); });
}

template<class FDo>
ssize_t Reading(int File, const FDo& Do)
{
	if (!IsActive())
	{
		return Do(false);
	}
	return Guard(EOperation::Read, PathOf(File), {}, ssize_t{-1}, NothingToPrepare, Do);
}

/** A mapping that writes through would pass us by. */
template<class FDo>
void* Mapping(int Protection, int Flags, int File, const FDo& Do)
{
	if (File < 0 || !IsActive())
	{
		return Do(false);
	}
	if ((Protection & PROT_WRITE) != 0 && (Flags & MAP_SHARED) != 0)
	{
		std::abort();
	}
	return Guard(EOperation::Map, PathOf(File), {}, MAP_FAILED, NothingToPrepare, Do);
}

/** From where a file is read next to its end. */
inline std::size_t BytesLeft(int File)
{
	struct stat Info = {};
	const off_t At = ::lseek(File, 0, SEEK_CUR);
	return Raw::Look(File, Info) && At >= 0 && At < Info.st_size ? static_cast<std::size_t>(Info.st_size - At) : 0;
}

template<class FDo>
int ChangingName(EOperation Operation, int Folder, const char* Path, const FDo& Do)
{
	if (!IsActive())
	{
		return Do(false);
	}
	const std::string Full = PathOf(Folder, Path);
	return Guard(
		Operation, Full, {}, -1, [&Full](FPowerCut& Cut) { Cut.BeforeName(Full); }, Do);
}

template<class FDo>
int Renaming(int FromFolder, const char* From, int ToFolder, const char* To, const FDo& Do)
{
	if (!IsActive())
	{
		return Do(false);
	}
	const std::string Old = PathOf(FromFolder, From);
	const std::string New = PathOf(ToFolder, To);
	return Guard(
		EOperation::Rename, Old, New, -1, [&](FPowerCut& Cut) { Cut.BeforeRename(Old, New); }, Do);
}

template<class FDo>
int Marking(const std::string& Path, const FDo& Do)
{
	return Guard(EOperation::Mark, Path, {}, -1, NothingToPrepare, Do);
}

template<class FDo>
int Looking(int Folder, const char* Path, const FDo& Do)
{
	return !IsActive() || Path[0] == '\0' ? Do(false)
										  : Guard(EOperation::Look, PathOf(Folder, Path), {}, -1, NothingToPrepare, Do);
}

/** It is believed, not done: nothing here outlives the machine, and it takes long. */
inline int Flushing(int File)
{
	return Guard(
		EOperation::Flush, PathOf(File), {}, -1, [File](FPowerCut& Cut) { Cut.Flushed(File); }, [](bool) { return 0; });
}

inline mode_t ModeOf(int Flags, va_list Rest)
{
	return (Flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(Rest, mode_t) : 0;
}

inline int FlagsOf(const char* Mode)
{
	const bool bBoth = std::strchr(Mode, '+') != nullptr;
	const int Access = bBoth ? O_RDWR : O_WRONLY;
	return Mode[0] == 'w' ? Access | O_CREAT | O_TRUNC : Mode[0] == 'a' ? Access | O_CREAT : bBoth ? O_RDWR : O_RDONLY;
}
} // namespace QVTest::Shim
