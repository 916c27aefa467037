// SPDX-License-Identifier: MIT
//
// The calls of FaultShim.cpp that read files or ask for them.
#include "Tests/Crash/Interposing.h"

#include <sys/mman.h>
#include <sys/stat.h>

using namespace QVTest;
using namespace QVTest::Shim;

extern "C"
{
	ssize_t read(int File, void* Bytes, size_t Count)
	{
		QV_NEXT(read);
		return Reading(File, [&](bool) { return Real(File, Bytes, Count); });
	}

	ssize_t pread(int File, void* Bytes, size_t Count, off_t Offset)
	{
		QV_NEXT(pread);
		return Reading(File, [&](bool) { return Real(File, Bytes, Count, Offset); });
	}

	ssize_t pread64(int File, void* Bytes, size_t Count, off64_t Offset)
	{
		QV_NEXT(pread64);
		return Reading(File, [&](bool) { return Real(File, Bytes, Count, Offset); });
	}

	void* mmap(void* Address, size_t Size, int Protection, int Flags, int File, off_t Offset) noexcept
	{
		QV_NEXT(mmap);
		const auto Do = [&](bool) { return Real(Address, Size, Protection, Flags, File, Offset); };
		return Mapping(Protection, Flags, File, Do);
	}

	void* mmap64(void* Address, size_t Size, int Protection, int Flags, int File, off64_t Offset) noexcept
	{
		QV_NEXT(mmap64);
		const auto Do = [&](bool) { return Real(Address, Size, Protection, Flags, File, Offset); };
		return Mapping(Protection, Flags, File, Do);
	}

	int stat(const char* Path, struct stat* Out) noexcept
	{
		QV_NEXT(stat);
		return Looking(AT_FDCWD, Path, [&](bool) { return Real(Path, Out); });
	}

	int stat64(const char* Path, struct stat64* Out) noexcept
	{
		QV_NEXT(stat64);
		return Looking(AT_FDCWD, Path, [&](bool) { return Real(Path, Out); });
	}

	int lstat(const char* Path, struct stat* Out) noexcept
	{
		QV_NEXT(lstat);
		return Looking(AT_FDCWD, Path, [&](bool) { return Real(Path, Out); });
	}

	int lstat64(const char* Path, struct stat64* Out) noexcept
	{
		QV_NEXT(lstat64);
		return Looking(AT_FDCWD, Path, [&](bool) { return Real(Path, Out); });
	}

	int fstatat(int Folder, const char* Path, struct stat* Out, int Flags) noexcept
	{
		QV_NEXT(fstatat);
		return Looking(Folder, Path, [&](bool) { return Real(Folder, Path, Out, Flags); });
	}

	int fstatat64(int Folder, const char* Path, struct stat64* Out, int Flags) noexcept
	{
		QV_NEXT(fstatat64);
		return Looking(Folder, Path, [&](bool) { return Real(Folder, Path, Out, Flags); });
	}
}
