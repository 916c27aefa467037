// SPDX-License-Identifier: MIT
#include "Standalone/Engine/FolderReader.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>

namespace QVStandalone
{
struct FFolderReader::FState
{
	DIR* Stream = nullptr;
};

namespace
{
std::string LastProblem()
{
	return std::generic_category().message(errno);
}

std::int64_t TimeOf(const struct stat& Info)
{
	return static_cast<std::int64_t>(Info.st_mtim.tv_sec) * 1'000'000'000 + Info.st_mtim.tv_nsec;
}
} // namespace

FFolderReader::FFolderReader(const std::string& Path)
	: State(new FState{::opendir(Path.c_str())})
	, bOpen(State->Stream != nullptr)
	, bMissing(!bOpen && errno == ENOENT)
	, Reason(bOpen || bMissing ? std::string() : LastProblem())
{
}

FFolderReader::~FFolderReader()
{
	if (bOpen)
	{
		::closedir(State->Stream);
	}
	delete State;
}

bool FFolderReader::Identify(FIdentity& Out)
{
	struct stat Info = {};
	if (::fstat(::dirfd(State->Stream), &Info) != 0)
	{
		Reason = LastProblem();
		return false;
	}
	Out = {static_cast<std::uint64_t>(Info.st_dev), static_cast<std::uint64_t>(Info.st_ino)};
	return true;
}

bool FFolderReader::Next()
{
	errno = 0;
	while (const dirent* Entry = ::readdir(State->Stream))
	{
		EntryName = Entry->d_name;
		EntryKind = Entry->d_type == DT_DIR									 ? EKind::Folder
					: Entry->d_type == DT_LNK || Entry->d_type == DT_UNKNOWN ? EKind::Unknown
																			 : EKind::File;
		if (EntryName != "." && EntryName != "..")
		{
			return true;
		}
	}
	Reason = errno != 0 ? LastProblem() : std::string();
	return false;
}

FFolderReader::FDetails FFolderReader::Examine() const
{
	const int Folder = ::dirfd(State->Stream);
	const char* const File = EntryName.data(); // ends in a zero, as the system gave it
	struct stat Info = {};
	if (::fstatat(Folder, File, &Info, 0) != 0)
	{
		return {EKind::Problem, 0, 0, "cannot be examined: " + LastProblem()};
	}
	if (!S_ISDIR(Info.st_mode))
	{
		const bool bFile = S_ISREG(Info.st_mode);
		return {bFile ? EKind::File : EKind::Problem, static_cast<std::int64_t>(Info.st_size), TimeOf(Info),
			bFile ? "" : "is not a file"};
	}
	const bool bItself = ::fstatat(Folder, File, &Info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(Info.st_mode);
	return {bItself ? EKind::Folder : EKind::LinkToFolder, 0, 0, {}};
}
} // namespace QVStandalone
