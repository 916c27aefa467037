// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/InputFile.h"

#include "Standalone/Formats/Base/PathText.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace QVFormats
{
namespace
{
FError LastError(const std::filesystem::path& Path, const char* Action)
{
	return {PathText(Path) + " could not be " + Action + ": " + std::generic_category().message(errno)};
}
} // namespace

TResult<FInputFile> FInputFile::Open(const std::filesystem::path& Path)
{
	// A pipe of that name would otherwise wait for its other end.
	const int File = ::open(Path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
	if (File < 0)
	{
		return LastError(Path, "opened");
	}
	FInputFile Result(File, Path);
	struct stat Info = {};
	if (::fstat(File, &Info) != 0)
	{
		return LastError(Path, "examined");
	}
	if (!S_ISREG(Info.st_mode))
	{
		return FError{PathText(Path) + " is not a file"};
	}
	Result.OpenedSize = static_cast<std::uint64_t>(Info.st_size);
	return Result;
}

FInputFile::FInputFile(std::intptr_t InHandle, std::filesystem::path InPath)
	: Handle(InHandle)
	, Path(std::move(InPath))
{
}

FInputFile::FInputFile(FInputFile&& Other) noexcept
	: Handle(std::exchange(Other.Handle, -1))
	, OpenedSize(Other.OpenedSize)
	, Path(std::move(Other.Path))
{
}

FInputFile& FInputFile::operator=(FInputFile&& Other) noexcept
{
	std::swap(Handle, Other.Handle);
	std::swap(OpenedSize, Other.OpenedSize);
	Path.swap(Other.Path);
	return *this;
}

FInputFile::~FInputFile()
{
	if (Handle >= 0)
	{
		::close(static_cast<int>(Handle));
	}
}

TResult<std::size_t> FInputFile::ReadAt(std::uint64_t Offset, std::span<std::byte> Out)
{
	std::size_t Done = 0;
	while (Done < Out.size())
	{
		const ssize_t Count =
			::pread(static_cast<int>(Handle), Out.data() + Done, Out.size() - Done, static_cast<off_t>(Offset + Done));
		if (Count < 0 && errno == EINTR)
		{
			continue;
		}
		if (Count < 0)
		{
			return LastError(Path, "read");
		}
		if (Count == 0)
		{
			break;
		}
		Done += static_cast<std::size_t>(Count);
	}
	return Done;
}

void FInputFile::WillRead(std::uint64_t Offset, std::uint64_t Count)
{
	::posix_fadvise(
		static_cast<int>(Handle), static_cast<off_t>(Offset), static_cast<off_t>(Count), POSIX_FADV_WILLNEED);
}
} // namespace QVFormats
