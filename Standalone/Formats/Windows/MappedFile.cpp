// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/MappedFile.h"

#include "Standalone/Formats/Base/PathText.h"
#include "Standalone/Formats/Windows/Win32.h"

#include <utility>

namespace QVFormats
{
namespace
{
/** Nobody may replace or shorten a file that is mapped, the editor not and we not: smaller ones are read instead. */
constexpr std::uint64_t LargeFileBytes = std::uint64_t{128} << 20;

FError Failed(const std::filesystem::path& Path, const char* Action, const std::error_code& Error)
{
	return {PathText(Path) + " could not be " + Action + ": " + Error.message()};
}

/** Of a file, or of memory that stands for none; null on failure. */
std::byte* Map(HANDLE File, std::uint64_t Size, DWORD Protection, DWORD Access)
{
	const FWinHandle Section(::CreateFileMappingW(
		File, nullptr, Protection, static_cast<DWORD>(Size >> 32), static_cast<DWORD>(Size), nullptr));
	void* Address = Section.Get() != nullptr ? ::MapViewOfFile(Section.Get(), Access, 0, 0, 0) : nullptr;
	return static_cast<std::byte*>(Address);
}
} // namespace

TResult<FMappedFile> FMappedFile::Open(const std::filesystem::path& Path)
{
	std::error_code Error;
	std::uint64_t Size = 0;
	const FWinHandle File = OpenForReading(Path, Size, Error);
	if (Error)
	{
		const bool bNoFile = Error == std::errc::is_a_directory || Error == std::errc::invalid_argument;
		return bNoFile ? FError{PathText(Path) + " is not a file"} : Failed(Path, "opened", Error);
	}
	FMappedFile Result;
	if (Size == 0)
	{
		return Result;
	}
	const bool bLarge = Size > LargeFileBytes;
	std::byte* const Address = bLarge ? Map(File.Get(), Size, PAGE_READONLY, FILE_MAP_READ)
									  : Map(INVALID_HANDLE_VALUE, Size, PAGE_READWRITE, FILE_MAP_WRITE);
	if (Address == nullptr)
	{
		return Failed(Path, "mapped", LastWinError());
	}
	std::size_t Done = static_cast<std::size_t>(Size);
	Error = bLarge ? Error : ReadFileAt(File.Get(), 0, Address, Done, Done);
	Result.View = FBytes(Address, static_cast<std::size_t>(Size));
	if (Error)
	{
		return Failed(Path, "read", Error);
	}
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

void FMappedFile::WillRead(std::uint64_t /*Offset*/) const
{
	// small files are read whole already, large ones are wanted in part only
}

FMappedFile::~FMappedFile()
{
	if (!View.empty())
	{
		::UnmapViewOfFile(View.data());
	}
}
} // namespace QVFormats
