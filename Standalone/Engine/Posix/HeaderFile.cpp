// SPDX-License-Identifier: MIT
#include "Standalone/Engine/HeaderFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
FError LastError(const char* Action)
{
	return {std::string("could not be ") + Action + ": " + std::generic_category().message(errno)};
}
} // namespace

FHeaderFile::FHeaderFile(const std::string& Path)
	: Handle(::open(Path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) // a pipe would wait for its other end
{
	struct stat Info = {};
	if (Handle < 0 || ::fstat(static_cast<int>(Handle), &Info) != 0)
	{
		Opened = LastError("opened");
	}
	else if (!S_ISREG(Info.st_mode))
	{
		Opened = FError{"is not a file"};
	}
	FileSize = static_cast<std::uint64_t>(Info.st_size);
}

FHeaderFile::~FHeaderFile()
{
	if (Handle >= 0)
	{
		::close(static_cast<int>(Handle));
	}
}

TResult<std::size_t> FHeaderFile::ReadAt(std::uint64_t Offset, std::span<std::byte> Out) const
{
	std::size_t Done = 0;
	while (Done < Out.size())
	{
		const ssize_t Count =
			::pread(static_cast<int>(Handle), Out.data() + Done, Out.size() - Done, static_cast<off_t>(Offset + Done));
		if (Count < 0 && errno != EINTR)
		{
			return LastError("read");
		}
		if (Count == 0)
		{
			break;
		}
		Done += Count > 0 ? static_cast<std::size_t>(Count) : 0;
	}
	return Done;
}
} // namespace QVStandalone
