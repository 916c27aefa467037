// SPDX-License-Identifier: MIT
#include "Standalone/Engine/HeaderFile.h"

#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Windows/Win32.h"

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
FError Failed(const char* Action, const std::error_code& Error)
{
	return {std::string("could not be ") + Action + ": " + Error.message()};
}
} // namespace

FHeaderFile::FHeaderFile(const std::string& Path)
{
	std::error_code Error;
	FWinHandle File = OpenForReading(ToOsPath(Path), FileSize, Error);
	if (Error == std::errc::is_a_directory || Error == std::errc::invalid_argument)
	{
		Opened = FError{"is not a file"};
	}
	else if (Error)
	{
		Opened = Failed("opened", Error);
	}
	else
	{
		Handle = reinterpret_cast<std::intptr_t>(File.Release());
	}
}

FHeaderFile::~FHeaderFile()
{
	FWinHandle(reinterpret_cast<HANDLE>(Handle)).Close();
}

TResult<std::size_t> FHeaderFile::ReadAt(std::uint64_t Offset, std::span<std::byte> Out) const
{
	std::size_t Done = 0;
	const std::error_code Error = ReadFileAt(reinterpret_cast<HANDLE>(Handle), Offset, Out.data(), Out.size(), Done);
	return Error ? TResult<std::size_t>(Failed("read", Error)) : TResult<std::size_t>(Done);
}
} // namespace QVStandalone
