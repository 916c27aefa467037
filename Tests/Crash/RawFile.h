// SPDX-License-Identifier: MIT
#pragma once

#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace QVTest::Raw
{
/*
 * The system's own calls, by number: the shim stands in the way of those of the C library, also for itself.
 */

inline int Open(const std::string& Path, int Flags, mode_t Mode = 0600)
{
	return static_cast<int>(::syscall(SYS_openat, AT_FDCWD, Path.c_str(), Flags | O_CLOEXEC, Mode));
}

inline bool Write(int File, const void* Bytes, std::size_t Count)
{
	return ::syscall(SYS_write, File, Bytes, Count) == static_cast<long>(Count);
}

inline bool Look(const std::string& Path, struct stat& Out)
{
	return ::syscall(SYS_newfstatat, AT_FDCWD, Path.c_str(), &Out, AT_SYMLINK_NOFOLLOW) == 0;
}

inline bool Look(int File, struct stat& Out)
{
	return ::syscall(SYS_fstat, File, &Out) == 0;
}

inline bool Link(const std::string& From, const std::string& To)
{
	return ::syscall(SYS_linkat, AT_FDCWD, From.c_str(), AT_FDCWD, To.c_str(), 0) == 0;
}

inline bool Rename(const std::string& From, const std::string& To)
{
	return ::syscall(SYS_renameat2, AT_FDCWD, From.c_str(), AT_FDCWD, To.c_str(), 0) == 0;
}

inline bool Remove(const std::string& File)
{
	return ::syscall(SYS_unlinkat, AT_FDCWD, File.c_str(), 0) == 0;
}

inline bool MakeFolder(const std::string& Path, mode_t Mode)
{
	return ::syscall(SYS_mkdirat, AT_FDCWD, Path.c_str(), Mode) == 0;
}

/** From the beginning of one to the beginning of the other, which is cut first. */
inline bool CopyAll(int From, int To)
{
	char Buffer[16 * 1024];
	bool bGood = ::syscall(SYS_ftruncate, To, 0) == 0 && ::syscall(SYS_lseek, To, 0, SEEK_SET) == 0;
	long Count = 0;
	for (off_t Offset = 0; bGood && (Count = ::syscall(SYS_pread64, From, Buffer, sizeof(Buffer), Offset)) > 0;
		 Offset += Count)
	{
		bGood = Write(To, Buffer, static_cast<std::size_t>(Count));
	}
	return bGood && Count == 0;
}

inline void Close(int File)
{
	::syscall(SYS_close, File);
}
} // namespace QVTest::Raw
