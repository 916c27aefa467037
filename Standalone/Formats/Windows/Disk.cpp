// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/Disk.h"

#include "Standalone/Formats/Windows/Win32.h"

#include <optional>

namespace QVFormats
{
namespace fs = std::filesystem;

namespace
{
constexpr std::int64_t TicksFrom1601To1970 = 116'444'736'000'000'000;

/** What a path leads to, links followed. */
std::optional<BY_HANDLE_FILE_INFORMATION> Examine(const fs::path& Path, std::error_code& OutError)
{
	const FWinHandle Entry = OpenExisting(Path, FILE_READ_ATTRIBUTES, FILE_FLAG_BACKUP_SEMANTICS);
	BY_HANDLE_FILE_INFORMATION Info = {};
	if (!Entry.IsValid() || !::GetFileInformationByHandle(Entry.Get(), &Info))
	{
		OutError = LastWinError();
		return std::nullopt;
	}
	OutError.clear();
	return Info;
}

bool IsFolderMark(DWORD Marks)
{
	return (Marks & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

/** A link, or a folder in which another one is mounted; not a file that lies in the cloud. */
bool IsLinkTag(DWORD Marks, DWORD Tag)
{
	return (Marks & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
		   (Tag == IO_REPARSE_TAG_SYMLINK || Tag == IO_REPARSE_TAG_MOUNT_POINT);
}
} // namespace

fs::path FDisk::SystemPath(const fs::path& Path)
{
	return WidePath(Path);
}

bool FDisk::Exists(const fs::path& Path)
{
	std::error_code Error;
	return Examine(Path, Error).has_value();
}

bool FDisk::IsFile(const fs::path& Path)
{
	std::error_code Error;
	const auto Info = Examine(Path, Error);
	return Info && !IsFolderMark(Info->dwFileAttributes);
}

bool FDisk::IsFolder(const fs::path& Path)
{
	std::error_code Error;
	const auto Info = Examine(Path, Error);
	return Info && IsFolderMark(Info->dwFileAttributes);
}

bool FDisk::IsLink(const fs::path& Path)
{
	WIN32_FIND_DATAW Found = {};
	const HANDLE Search = ::FindFirstFileW(WidePath(Path).c_str(), &Found);
	if (Search == INVALID_HANDLE_VALUE)
	{
		return false;
	}
	::FindClose(Search);
	return IsLinkTag(Found.dwFileAttributes, Found.dwReserved0);
}

std::uint64_t FDisk::SizeOf(const fs::path& Path, std::error_code& OutError)
{
	const auto Info = Examine(Path, OutError);
	if (Info && IsFolderMark(Info->dwFileAttributes))
	{
		OutError = std::make_error_code(std::errc::is_a_directory);
	}
	return OutError ? ~std::uint64_t{0} : (static_cast<std::uint64_t>(Info->nFileSizeHigh) << 32) | Info->nFileSizeLow;
}

std::int64_t FDisk::TimeOf(const fs::path& Path, std::error_code& OutError)
{
	const auto Info = Examine(Path, OutError);
	if (!Info)
	{
		return 0;
	}
	const FILETIME& Time = Info->ftLastWriteTime;
	const auto Ticks = (static_cast<std::int64_t>(Time.dwHighDateTime) << 32) | Time.dwLowDateTime;
	return (Ticks - TicksFrom1601To1970) * 100;
}

fs::path FDisk::Spelled(const fs::path& Folder, const fs::path& Below)
{
	fs::path Result;
	for (const fs::path& Name : Below)
	{
		WIN32_FIND_DATAW Found = {};
		const HANDLE Search = ::FindFirstFileW(WidePath(Folder / Result / Name).c_str(), &Found);
		if (Search == INVALID_HANDLE_VALUE)
		{
			return Below;
		}
		::FindClose(Search);
		Result /= Found.cFileName;
	}
	return Result;
}

fs::path FDisk::RealPath(const fs::path& Path, std::error_code& OutError)
{
	const FWinHandle Entry = OpenExisting(Path, FILE_READ_ATTRIBUTES, FILE_FLAG_BACKUP_SEMANTICS);
	OutError = Entry.IsValid() ? std::error_code() : LastWinError();
	if (OutError)
	{
		return {};
	}
	const DWORD Room = ::GetFinalPathNameByHandleW(Entry.Get(), nullptr, 0, FILE_NAME_NORMALIZED);
	std::wstring Real(Room, L'\0');
	Real.resize(Room > 0 ? ::GetFinalPathNameByHandleW(Entry.Get(), Real.data(), Room, FILE_NAME_NORMALIZED) : 0);
	return Real.empty() ? WidePath(Path) : Real; // some drives, and some systems of long paths, cannot tell
}

std::vector<FDisk::FEntry> FDisk::List(const fs::path& Folder)
{
	std::vector<FEntry> Entries;
	WIN32_FIND_DATAW Found = {};
	const HANDLE Search = ::FindFirstFileExW(WidePath(Folder / "*").c_str(), FindExInfoBasic, &Found,
		FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
	if (Search == INVALID_HANDLE_VALUE)
	{
		return Entries;
	}
	do
	{
		const std::wstring_view Name = Found.cFileName;
		if (Name != L"." && Name != L"..")
		{
			FEntry& Entry = Entries.emplace_back(FEntry{Folder / Name, IsFolderMark(Found.dwFileAttributes)});
			// the mark of a link says what it was made for, not what is there
			Entry.bIsFolder =
				IsLinkTag(Found.dwFileAttributes, Found.dwReserved0) ? IsFolder(Entry.Path) : Entry.bIsFolder;
		}
	} while (::FindNextFileW(Search, &Found));
	::FindClose(Search);
	return Entries;
}

bool FDisk::MakeFolder(const fs::path& Folder, std::error_code& OutError)
{
	const bool bMade = ::CreateDirectoryW(WidePath(Folder).c_str(), nullptr);
	OutError = bMade ? std::error_code() : LastWinError();
	if (OutError && IsFolder(Folder))
	{
		OutError.clear();
	}
	else if (OutError == std::errc::file_exists ||
			 (OutError == std::errc::no_such_file_or_directory && IsFile(Folder.parent_path())))
	{
		OutError = std::make_error_code(std::errc::not_a_directory);
	}
	return bMade;
}

bool FDisk::MakeFolders(const fs::path& Folder, std::error_code& OutError)
{
	OutError.clear();
	const fs::path Named = Folder.has_filename() ? Folder : Folder.parent_path();
	if (Named.empty() || IsFolder(Named))
	{
		return false;
	}
	if (Named.has_relative_path() && Named.parent_path() != Named)
	{
		MakeFolders(Named.parent_path(), OutError);
	}
	return !OutError && MakeFolder(Named, OutError);
}

void FDisk::Rename(const fs::path& From, const fs::path& To, std::error_code& OutError)
{
	OutError = RenameOver(From, To, false);
}
} // namespace QVFormats
