// SPDX-License-Identifier: MIT
//
// Put before a program with LD_PRELOAD, stands between it and the calls of the C library that change, read or ask for
// files, and disturbs one of them as its environment says (FaultPlan.h). Here are those that change.
#include "Tests/Crash/Interposing.h"

#include <cstdio>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <sys/uio.h>

using namespace QVTest;
using namespace QVTest::Shim;

extern "C"
{
	int open(const char* Path, int Flags, ...)
	{
		QV_NEXT(open);
		va_list Rest;
		va_start(Rest, Flags);
		const mode_t Mode = ModeOf(Flags, Rest);
		va_end(Rest);
		return Opening(AT_FDCWD, Path, Flags, -1, [&](bool) { return Real(Path, Flags, Mode); });
	}

	int open64(const char* Path, int Flags, ...)
	{
		QV_NEXT(open64);
		va_list Rest;
		va_start(Rest, Flags);
		const mode_t Mode = ModeOf(Flags, Rest);
		va_end(Rest);
		return Opening(AT_FDCWD, Path, Flags, -1, [&](bool) { return Real(Path, Flags, Mode); });
	}

	int openat(int Folder, const char* Path, int Flags, ...)
	{
		QV_NEXT(openat);
		va_list Rest;
		va_start(Rest, Flags);
		const mode_t Mode = ModeOf(Flags, Rest);
		va_end(Rest);
		return Opening(Folder, Path, Flags, -1, [&](bool) { return Real(Folder, Path, Flags, Mode); });
	}

	int openat64(int Folder, const char* Path, int Flags, ...)
	{
		QV_NEXT(openat64);
		va_list Rest;
		va_start(Rest, Flags);
		const mode_t Mode = ModeOf(Flags, Rest);
		va_end(Rest);
		return Opening(Folder, Path, Flags, -1, [&](bool) { return Real(Folder, Path, Flags, Mode); });
	}

	int creat(const char* Path, mode_t Mode)
	{
		QV_NEXT(creat);
		return Opening(AT_FDCWD, Path, O_CREAT | O_TRUNC, -1, [&](bool) { return Real(Path, Mode); });
	}

	int creat64(const char* Path, mode_t Mode)
	{
		QV_NEXT(creat64);
		return Opening(AT_FDCWD, Path, O_CREAT | O_TRUNC, -1, [&](bool) { return Real(Path, Mode); });
	}

	FILE* fopen(const char* Path, const char* Mode)
	{
		QV_NEXT(fopen);
		const auto Do = [&](bool) { return Real(Path, Mode); };
		return Opening(AT_FDCWD, Path, FlagsOf(Mode), static_cast<FILE*>(nullptr), Do);
	}

	FILE* fopen64(const char* Path, const char* Mode)
	{
		QV_NEXT(fopen64);
		const auto Do = [&](bool) { return Real(Path, Mode); };
		return Opening(AT_FDCWD, Path, FlagsOf(Mode), static_cast<FILE*>(nullptr), Do);
	}

	ssize_t write(int File, const void* Bytes, size_t Count)
	{
		QV_NEXT(write);
		return Writing(File, Count, [&](std::size_t Allowed) { return Real(File, Bytes, Allowed); });
	}

	ssize_t pwrite(int File, const void* Bytes, size_t Count, off_t Offset)
	{
		QV_NEXT(pwrite);
		return Writing(File, Count, [&](std::size_t Allowed) { return Real(File, Bytes, Allowed, Offset); });
	}

	ssize_t pwrite64(int File, const void* Bytes, size_t Count, off64_t Offset)
	{
		QV_NEXT(pwrite64);
		return Writing(File, Count, [&](std::size_t Allowed) { return Real(File, Bytes, Allowed, Offset); });
	}

	ssize_t writev(int File, const iovec* Parts, int Count)
	{
		QV_NEXT(writev);
		const auto Parted = static_cast<std::size_t>(Count);
		return Writing(File, Parted, [&](std::size_t Allowed) { return Real(File, Parts, static_cast<int>(Allowed)); });
	}

	ssize_t copy_file_range(int In, off64_t* InAt, int Out, off64_t* OutAt, size_t Count, unsigned Flags)
	{
		QV_NEXT(copy_file_range);
		// much is asked for, little is there: half of what is asked for would be all
		const std::size_t Bytes = std::min(Count, BytesLeft(In));
		return Writing(Out, Bytes,
			[&](std::size_t Allowed) { return Real(In, InAt, Out, OutAt, Allowed < Bytes ? Allowed : Count, Flags); });
	}

	ssize_t sendfile(int Out, int In, off_t* At, size_t Count)
	{
		QV_NEXT(sendfile);
		return Writing(Out, Count, [&](std::size_t Allowed) { return Real(Out, In, At, Allowed); });
	}

	ssize_t sendfile64(int Out, int In, off64_t* At, size_t Count)
	{
		QV_NEXT(sendfile64);
		return Writing(Out, Count, [&](std::size_t Allowed) { return Real(Out, In, At, Allowed); });
	}

	int ftruncate(int File, off_t Size) noexcept
	{
		QV_NEXT(ftruncate);
		const auto Prepare = [File](FPowerCut& Cut) { Cut.BeforeData(File); };
		return Guard(EOperation::Resize, PathOf(File), {}, -1, Prepare, [&](bool) { return Real(File, Size); });
	}

	int ftruncate64(int File, off64_t Size) noexcept
	{
		QV_NEXT(ftruncate64);
		const auto Prepare = [File](FPowerCut& Cut) { Cut.BeforeData(File); };
		return Guard(EOperation::Resize, PathOf(File), {}, -1, Prepare, [&](bool) { return Real(File, Size); });
	}

	int truncate(const char* Path, off_t Size) noexcept
	{
		QV_NEXT(truncate);
		const std::string Full = PathOf(AT_FDCWD, Path);
		const auto Prepare = [&Full](FPowerCut& Cut) { Cut.BeforeData(Full); };
		return Guard(EOperation::Resize, Full, {}, -1, Prepare, [&](bool) { return Real(Path, Size); });
	}

	int truncate64(const char* Path, off64_t Size) noexcept
	{
		QV_NEXT(truncate64);
		const std::string Full = PathOf(AT_FDCWD, Path);
		const auto Prepare = [&Full](FPowerCut& Cut) { Cut.BeforeData(Full); };
		return Guard(EOperation::Resize, Full, {}, -1, Prepare, [&](bool) { return Real(Path, Size); });
	}

	int fsync(int File)
	{
		QV_NEXT(fsync);
		return IsActive() ? Flushing(File) : Real(File);
	}

	int fdatasync(int File)
	{
		QV_NEXT(fdatasync);
		return IsActive() ? Flushing(File) : Real(File);
	}

	int rename(const char* From, const char* To) noexcept
	{
		QV_NEXT(rename);
		return Renaming(AT_FDCWD, From, AT_FDCWD, To, [&](bool) { return Real(From, To); });
	}

	int renameat(int FromFolder, const char* From, int ToFolder, const char* To) noexcept
	{
		QV_NEXT(renameat);
		return Renaming(FromFolder, From, ToFolder, To, [&](bool) { return Real(FromFolder, From, ToFolder, To); });
	}

	int renameat2(int FromFolder, const char* From, int ToFolder, const char* To, unsigned Flags) noexcept
	{
		QV_NEXT(renameat2);
		return Renaming(
			FromFolder, From, ToFolder, To, [&](bool) { return Real(FromFolder, From, ToFolder, To, Flags); });
	}

	int unlink(const char* Path) noexcept
	{
		QV_NEXT(unlink);
		return ChangingName(EOperation::Remove, AT_FDCWD, Path, [&](bool) { return Real(Path); });
	}

	int unlinkat(int Folder, const char* Path, int Flags) noexcept
	{
		QV_NEXT(unlinkat);
		const EOperation Which = (Flags & AT_REMOVEDIR) != 0 ? EOperation::RemoveFolder : EOperation::Remove;
		return ChangingName(Which, Folder, Path, [&](bool) { return Real(Folder, Path, Flags); });
	}

	int remove(const char* Path) noexcept
	{
		QV_NEXT(remove);
		return ChangingName(EOperation::Remove, AT_FDCWD, Path, [&](bool) { return Real(Path); });
	}

	int rmdir(const char* Path) noexcept
	{
		QV_NEXT(rmdir);
		return ChangingName(EOperation::RemoveFolder, AT_FDCWD, Path, [&](bool) { return Real(Path); });
	}

	int mkdir(const char* Path, mode_t Mode) noexcept
	{
		QV_NEXT(mkdir);
		return ChangingName(EOperation::MakeFolder, AT_FDCWD, Path, [&](bool) { return Real(Path, Mode); });
	}

	int mkdirat(int Folder, const char* Path, mode_t Mode) noexcept
	{
		QV_NEXT(mkdirat);
		return ChangingName(EOperation::MakeFolder, Folder, Path, [&](bool) { return Real(Folder, Path, Mode); });
	}

	int link(const char* From, const char* To) noexcept
	{
		QV_NEXT(link);
		return ChangingName(EOperation::Link, AT_FDCWD, To, [&](bool) { return Real(From, To); });
	}

	int linkat(int FromFolder, const char* From, int ToFolder, const char* To, int Flags) noexcept
	{
		QV_NEXT(linkat);
		return ChangingName(
			EOperation::Link, ToFolder, To, [&](bool) { return Real(FromFolder, From, ToFolder, To, Flags); });
	}

	int symlink(const char* Target, const char* Path) noexcept
	{
		QV_NEXT(symlink);
		return ChangingName(EOperation::Link, AT_FDCWD, Path, [&](bool) { return Real(Target, Path); });
	}

	int symlinkat(const char* Target, int Folder, const char* Path) noexcept
	{
		QV_NEXT(symlinkat);
		return ChangingName(EOperation::Link, Folder, Path, [&](bool) { return Real(Target, Folder, Path); });
	}

	int chmod(const char* Path, mode_t Mode) noexcept
	{
		QV_NEXT(chmod);
		return Marking(PathOf(AT_FDCWD, Path), [&](bool) { return Real(Path, Mode); });
	}

	int fchmod(int File, mode_t Mode) noexcept
	{
		QV_NEXT(fchmod);
		return Marking(PathOf(File), [&](bool) { return Real(File, Mode); });
	}

	int fchmodat(int Folder, const char* Path, mode_t Mode, int Flags) noexcept
	{
		QV_NEXT(fchmodat);
		return Marking(PathOf(Folder, Path), [&](bool) { return Real(Folder, Path, Mode, Flags); });
	}
}
