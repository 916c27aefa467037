// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/OutputFile.h"

#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Base/PathText.h"
#include "Standalone/Formats/Windows/Win32.h"

#include <atomic>
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

std::filesystem::path NextTemporaryName(const std::filesystem::path& Target)
{
	static std::atomic<unsigned> Counter{0};
	std::filesystem::path Name = Target;
	Name += "." + std::to_string(::GetCurrentProcessId()) + "-" + std::to_string(Counter++) + ".tmp";
	return Name;
}

/** While it is marked so, the file goes with its last handle, also when the program is ended from outside. */
void SetGoesWithHandle(HANDLE File, bool bGoes)
{
	FILE_DISPOSITION_INFO Info = {static_cast<BOOLEAN>(bGoes)};
	::SetFileInformationByHandle(File, FileDispositionInfo, &Info, sizeof(Info));
}

bool SetSize(HANDLE File, std::uint64_t Size)
{
	LARGE_INTEGER End = {};
	End.QuadPart = static_cast<LONGLONG>(Size);
	return ::SetFilePointerEx(File, End, nullptr, FILE_BEGIN) && ::SetEndOfFile(File);
}
} // namespace

TResult<FOutputFile> FOutputFile::Create(const std::filesystem::path& Target)
{
	constexpr int Attempts = 100;
	for (int Attempt = 0; Attempt < Attempts; ++Attempt)
	{
		std::filesystem::path Temporary = NextTemporaryName(Target);
		FWinHandle File(::CreateFileW(WidePath(Temporary).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE,
			FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
		if (File.IsValid())
		{
			SetGoesWithHandle(File.Get(), true);
			return FOutputFile(reinterpret_cast<std::intptr_t>(File.Release()), Target, std::move(Temporary));
		}
		if (::GetLastError() != ERROR_FILE_EXISTS)
		{
			break;
		}
	}
	const std::error_code Error = LastWinError();
	const bool bFileOnTheWay = FDisk::IsFile(Target.parent_path());
	return Failed(Target, "created", bFileOnTheWay ? std::make_error_code(std::errc::not_a_directory) : Error);
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
	FWinHandle File(HandleOf(std::exchange(Handle, -1)));
	if (File.IsValid())
	{
		File.Close();
		::DeleteFileW(WidePath(Temporary).c_str()); // where the mark was not understood
	}
}

FStatus FOutputFile::WriteAt(std::uint64_t Offset, FBytes Bytes)
{
	const std::error_code Error = WriteFileAt(HandleOf(Handle), Offset, Bytes.data(), Bytes.size());
	return Error ? FStatus(Failed(Target, "written", Error)) : Success();
}

FStatus FOutputFile::Commit(std::uint64_t Size)
{
	FWinHandle File(HandleOf(std::exchange(Handle, -1)));
	std::error_code Error = SetSize(File.Get(), Size) ? std::error_code() : LastWinError();
	SetGoesWithHandle(File.Get(), false);
	File.Close();
	Error = Error ? Error : RenameOver(Temporary, Target, true);
	if (Error)
	{
		::DeleteFileW(WidePath(Temporary).c_str());
		return Failed(Target, "written", Error);
	}
	return Success();
}
} // namespace QVFormats
