// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/OutputFile.h"

#include "Standalone/Formats/Base/PathText.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
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

std::filesystem::path NextTemporaryName(const std::filesystem::path& Target)
{
	static std::atomic<unsigned> Counter{0};
	std::filesystem::path Name = Target;
	Name += "." + std::to_string(::getpid()) + "-" + std::to_string(Counter++) + ".tmp";
	return Name;
}
} // namespace

TResult<FOutputFile> FOutputFile::Create(const std::filesystem::path& Target)
{
	constexpr int Attempts = 100;
	for (int Attempt = 0; Attempt < Attempts; ++Attempt)
	{
		std::filesystem::path Temporary = NextTemporaryName(Target);
		// O_EXCL: a link that somebody laid there is not written through.
		const int File = ::open(Temporary.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
		if (File >= 0)
		{
			return FOutputFile(File, Target, std::move(Temporary));
		}
		if (errno != EEXIST)
		{
			break;
		}
	}
	return LastError(Target, "created");
}

FOutputFile::FOutputFile(std::intptr_t InHandle, std::filesystem::path InTarget, std::filesystem::path InTemporary)
	: Handle(InHandle)
	, Target(std::move(InTarget))
	, Temporary(std::move(InTemporary))
{
}

FOutputFile::FOutputFile(FOutputFile&& Other) noexcept
	: Handle(std::exchange(Other.Handle, -1))
	, Target(std::move(Other.Target))
	, Temporary(std::move(Other.Temporary))
{
}

FOutputFile& FOutputFile::operator=(FOutputFile&& Other) noexcept
{
	std::swap(Handle, Other.Handle);
	Target.swap(Other.Target);
	Temporary.swap(Other.Temporary);
	return *this;
}

FOutputFile::~FOutputFile()
{
	Discard();
}

void FOutputFile::Discard()
{
	if (Handle >= 0)
	{
		::close(static_cast<int>(std::exchange(Handle, -1)));
		::unlink(Temporary.c_str());
	}
}

FStatus FOutputFile::WriteAt(std::uint64_t Offset, FBytes Bytes)
{
	while (!Bytes.empty())
	{
		const ssize_t Count =
			::pwrite(static_cast<int>(Handle), Bytes.data(), Bytes.size(), static_cast<off_t>(Offset));
		if (Count < 0 && errno == EINTR)
		{
			continue;
		}
		if (Count <= 0)
		{
			return LastError(Target, "written");
		}
		Offset += static_cast<std::uint64_t>(Count);
		Bytes = Bytes.subspan(static_cast<std::size_t>(Count));
	}
	return Success();
}

FStatus FOutputFile::Commit(std::uint64_t Size)
{
	const int File = static_cast<int>(std::exchange(Handle, -1));
	const bool bSized = ::ftruncate(File, static_cast<off_t>(Size)) == 0;
	// A full network disk reports it only here.
	if (::close(File) == 0 && bSized && ::rename(Temporary.c_str(), Target.c_str()) == 0)
	{
		return Success();
	}
	const FError Error = LastError(Target, "written");
	::unlink(Temporary.c_str());
	return Error;
}
} // namespace QVFormats
