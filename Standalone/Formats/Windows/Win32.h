// SPDX-License-Identifier: MIT
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

// names of ours that the system's header turns into others
#undef CopyFile
#undef CreateFile
#undef DeleteFile
#undef MoveFile
#undef ReplaceFile

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace QVFormats
{
/** Bad bytes and halves of letters become U+FFFD. */
std::wstring ToWide(std::string_view Utf8);
std::string FromWide(std::wstring_view Wide);

/** Absolute, with backslashes, and with the prefix that lifts the limit of 260 letters where that is needed. */
std::wstring WidePath(const std::filesystem::path& Path);

/**
 * An error of the system: as the number that the standard library has for it where there is one, so that messages are
 * the same on every system, else with the system's own words.
 */
std::error_code WinError(DWORD Code);
inline std::error_code LastWinError()
{
	return WinError(::GetLastError());
}

/** An open file, or whatever else the system has a handle for; closed with this. */
class FWinHandle
{
public:
	FWinHandle() = default;
	explicit FWinHandle(HANDLE InHandle)
		: Handle(InHandle)
	{
	}
	FWinHandle(FWinHandle&& Other) noexcept
		: Handle(Other.Release())
	{
	}
	FWinHandle& operator=(FWinHandle&& Other) noexcept
	{
		std::swap(Handle, Other.Handle);
		return *this;
	}
	~FWinHandle() { Close(); }

	bool IsValid() const { return Handle != nullptr && Handle != INVALID_HANDLE_VALUE; }
	HANDLE Get() const { return Handle; }
	HANDLE Release() { return std::exchange(Handle, nullptr); }
	void Close()
	{
		if (IsValid())
		{
			::CloseHandle(Handle);
		}
		Handle = nullptr;
	}

private:
	HANDLE Handle = nullptr;
};

/** What others may do meanwhile: everything. */
constexpr DWORD ShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

/** A file, or a folder, that is there. Not valid: see LastWinError(). */
FWinHandle OpenExisting(const std::filesystem::path& Path, DWORD Access, DWORD Flags = 0);

/** A file that is there, for reading; a folder or a device gives an error. */
FWinHandle OpenForReading(const std::filesystem::path& Path, std::uint64_t& OutSize, std::error_code& OutError);

/** Fewer bytes only where the file ends. */
std::error_code ReadFileAt(HANDLE File, std::uint64_t Offset, std::byte* Out, std::size_t Count, std::size_t& OutDone);
std::error_code WriteFileAt(HANDLE File, std::uint64_t Offset, const std::byte* Bytes, std::size_t Count);

/**
 * Gives a file another name, over a file that is there; one that is marked read-only is replaced only if asked for.
 * Scanners that look at new files are waited for a moment.
 */
std::error_code RenameOver(const std::filesystem::path& From, const std::filesystem::path& To, bool bEvenReadOnly);

/** Takes the mark that keeps a file from being deleted off it. */
void ClearReadOnly(const std::wstring& Path);
} // namespace QVFormats
