// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/MappedFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
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
	return {Path.string() + " could not be " + Action + ": " + std::generic_category().message(errno)};
}
} // namespace

TResult<FMappedFile> FMappedFile::Open(const std::filesystem::path& Path)
{
	const int File = ::open(Path.c_str(), O_RDONLY | O_CLOEXEC);
	if (File < 0)
	{
		return LastError(Path, "opened");
	}
	struct stat Info = {};
	FMappedFile Result;
	if (::fstat(File, &Info) != 0)
	{
		const FError Error = LastError(Path, "examined");
		::close(File);
		return Error;
	}
	if (!S_ISREG(Info.st_mode))
	{
		::close(File);
		return FError{Path.string() + " is not a file"};
	}
	if (Info.st_size > 0)
	{
		const auto Size = static_cast<std::size_t>(Info.st_size);
		void* Address = ::mmap(nullptr, Size, PROT_READ, MAP_PRIVATE, File, 0);
		if (Address == MAP_FAILED)
		{
			const FError Error = LastError(Path, "mapped");
			::close(File);
			return Error;
		}
		Result.View = FBytes(static_cast<const std::byte*>(Address), Size);
	}
	::close(File);
	return Result;
}

FMappedFile::FMappedFile(FMappedFile&& Other) noexcept
	: View(std::exchange(Other.View, {}))
{
}

FMappedFile& FMappedFile::operator=(FMappedFile&& Other) noexcept
{
	std::swap(View, Other.View);
	return *this;
}

void FMappedFile::WillRead(std::uint64_t Offset) const
{
	const auto Page = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
	if (Offset < View.size())
	{
		const std::uint64_t Begin = Offset / Page * Page;
		::madvise(const_cast<std::byte*>(View.data()) + Begin, View.size() - Begin, MADV_WILLNEED);
	}
}

FMappedFile::~FMappedFile()
{
	if (!View.empty())
	{
		::munmap(const_cast<std::byte*>(View.data()), View.size());
	}
}
} // namespace QVFormats
