// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OsFile.h"
#include "Standalone/Engine/Posix/OsFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace QVStandalone
{
namespace
{
/** Whether the file still has its name: its last owner may have deleted it between our opening and locking it. */
bool IsFileAt(int File, const std::filesystem::path& Path)
{
	struct stat Ours = {};
	struct stat There = {};
	return ::fstat(File, &Ours) == 0 && ::lstat(Path.c_str(), &There) == 0 && Ours.st_dev == There.st_dev &&
		   Ours.st_ino == There.st_ino;
}

std::error_code Lock(int File)
{
	while (::flock(File, LOCK_EX | LOCK_NB) != 0)
	{
		if (errno != EINTR)
		{
			return LastError();
		}
	}
	return {};
}
} // namespace

FOsFileLock::FOsFileLock(std::intptr_t InHandle, std::filesystem::path InPath)
	: Handle(InHandle)
	, Path(std::move(InPath))
{
}

std::unique_ptr<FOsFileLock> FOsFileLock::TryLock(const std::filesystem::path& Path, std::error_code& OutError)
{
	constexpr mode_t Everybody = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
	while (true)
	{
		const int File = ::open(Path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, Everybody);
		if (File < 0)
		{
			OutError = LastError();
			return nullptr;
		}
		OutError = Lock(File);
		if (!OutError && IsFileAt(File, Path))
		{
			return std::make_unique<FOsFileLock>(File, Path);
		}
		::close(File);
		if (OutError)
		{
			return nullptr;
		}
	}
}

FOsFileLock::~FOsFileLock()
{
	// still locked: whoever has opened the file meanwhile sees that it has lost its name
	if (IsFileAt(static_cast<int>(Handle), Path))
	{
		::unlink(Path.c_str());
	}
	::close(static_cast<int>(Handle));
}
} // namespace QVStandalone
