// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/InputFile.h"

#include "Standalone/Formats/Base/PathText.h"
#include "Standalone/Formats/Windows/Win32.h"

#include <utility>

namespace QVFormats
{
namespace
{
FError Failed(const std::filesystem::path& Path, const char* Action, const std::error_code& Error)
{
	return {PathText(Path) + " could not be " + Action + ": " + Error.message()};
}

HANDLE HandleOf(std::intptr_t Number)
{
	return reinterpret_cast<HANDLE>(Number);
}
} // namespace

TResult<FInputFile> FInputFile::Open(const std::filesystem::path& Path)
{
	std::error_code Error;
	std::uint64_t Size = 0;
	FWinHandle File = OpenForReading(Path, Size, Error);
	if (Error)
	{
		const bool bNoFile = Error == std::errc::is_a_directory || Error == std::errc::invalid_argument;
		return bNoFile ? FError{PathText(Path) + " is not a file"} : Failed(Path, "opened", Error);
	}
	FInputFile Result(reinterpret_cast<std::intptr_t>(File.Release()), Path);
	Result.OpenedSize = Size;
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
	FWinHandle(HandleOf(Handle)).Close();
}

TResult<std::size_t> FInputFile::ReadAt(std::uint64_t Offset, std::span<std::byte> Out)
{
	std::size_t Done = 0;
	const std::error_code Error = ReadFileAt(HandleOf(Handle), Offset, Out.data(), Out.size(), Done);
	return Error ? TResult<std::size_t>(Failed(Path, "read", Error)) : TResult<std::size_t>(Done);
}

void FInputFile::WillRead(std::uint64_t /*Offset*/, std::uint64_t /*Count*/)
{
	// the system has no such request for a file; it reads ahead by itself
}
} // namespace QVFormats
